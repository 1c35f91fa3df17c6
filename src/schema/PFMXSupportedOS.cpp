#include "schema/PFMXSupportedOS.h"

#include "schema/PFMXFieldReader.h"

namespace quorlin {

Expected<PFMXSupportedOS, PFMXDecodingError> PFMXSupportedOS::decode(const plist::Dictionary& dictionary,
                                                                     const QString& codingPath) {
    PFMXFieldReader reader(dictionary, codingPath);
    PFMXSupportedOS os;
    reader.read(QStringLiteral("pfmx_introduced"), os.introduced);
    reader.read(QStringLiteral("pfmx_deprecated"), os.deprecated);
    reader.read(QStringLiteral("pfmx_removed"), os.removed);
    reader.read(QStringLiteral("pfmx_device_channel"), os.deviceChannel);
    reader.read(QStringLiteral("pfmx_user_channel"), os.userChannel);
    reader.read(QStringLiteral("pfmx_supervised"), os.supervised);
    reader.read(QStringLiteral("pfmx_requires_dep"), os.requiresDEP);
    reader.read(QStringLiteral("pfmx_user_approved_mdm"), os.userApprovedMDM);
    reader.read(QStringLiteral("pfmx_allow_manual_install"), os.allowManualInstall);
    reader.readRecord(QStringLiteral("pfmx_shared_ipad"), os.sharedIPad);
    reader.readRecord(QStringLiteral("pfmx_user_enrollment"), os.userEnrollment);
    reader.read(QStringLiteral("pfmx_always_skippable"), os.alwaysSkippable);
    reader.read(QStringLiteral("pfmx_multiple"), os.multiple);
    if (reader.error())
        return fail(*reader.error());
    return os;
}

bool PFMXSupportedOS::isNeverIntroduced() const {
    return introduced == QStringLiteral("n/a");
}

std::optional<PFMSupportedPlatforms::StageVersions> PFMXSupportedOS::stageVersions() const {
    using Stage = PFMSupportedPlatforms::LifeCycleStage;
    PFMSupportedPlatforms::StageVersions versions;
    if (introduced)
        versions[Stage::introduction] = *introduced;
    if (deprecated)
        versions[Stage::deprecation] = *deprecated;
    if (removed)
        versions[Stage::removal] = *removed;
    if (versions.empty())
        return std::nullopt;
    return versions;
}

} // namespace quorlin
