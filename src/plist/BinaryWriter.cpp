#include "plist/BinaryWriter.h"

namespace quorlin::plist {

Expected<QByteArray, QString> BinaryWriter::write(const Value&) {
    return fail(QStringLiteral("not implemented"));
}

} // namespace quorlin::plist
