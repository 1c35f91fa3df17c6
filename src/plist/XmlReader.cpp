#include "plist/XmlReader.h"

namespace quorlin::plist {

Expected<Value, ParseError> XmlReader::read(const QByteArray&, const ReadLimits&) {
    return fail(ParseError{QStringLiteral("not implemented")});
}

} // namespace quorlin::plist
