#include "plist/OpenStepReader.h"

namespace quorlin::plist {

Expected<Value, ParseError> OpenStepReader::read(const QByteArray&, const ReadLimits&) {
    return fail(ParseError{QStringLiteral("not implemented")});
}

} // namespace quorlin::plist
