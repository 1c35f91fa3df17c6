#include "schema/PFMXUserEnrollment.h"

#include "schema/PFMXFieldReader.h"

namespace quorlin {

Expected<PFMXUserEnrollment, PFMXDecodingError>
PFMXUserEnrollment::decode(const plist::Dictionary& dictionary, const QString& codingPath) {
    PFMXFieldReader reader(dictionary, codingPath);
    std::optional<Mode> mode;
    PFMXUserEnrollment userEnrollment;
    reader.readWord(QStringLiteral("pfmx_mode"), mode, &PFMXSharedIPad::modeFromRawValue);
    reader.require(QStringLiteral("pfmx_mode"), mode);
    reader.read(QStringLiteral("pfmx_behavior"), userEnrollment.behavior);
    if (reader.error())
        return fail(*reader.error());
    userEnrollment.mode = *mode;
    return userEnrollment;
}

} // namespace quorlin
