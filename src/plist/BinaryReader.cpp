#include "plist/BinaryReader.h"

namespace quorlin::plist {

Expected<Value, ParseError> BinaryReader::read(const QByteArray&, const ReadLimits&) {
    return fail(ParseError{QStringLiteral("not implemented")});
}

} // namespace quorlin::plist
