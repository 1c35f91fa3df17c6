#include "plist/XmlWriter.h"

namespace quorlin::plist {

Expected<QByteArray, QString> XmlWriter::write(const Value&) {
    return fail(QStringLiteral("not implemented"));
}

} // namespace quorlin::plist
