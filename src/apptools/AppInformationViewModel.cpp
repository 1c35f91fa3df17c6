#include "apptools/AppInformationViewModel.h"

#include "validation/ByteCountFormatter.h"

#include <array>
#include <utility>

namespace quorlin::apptools {

namespace {

using Architecture = AppBundle::CPUArchitecture;

constexpr std::array<std::pair<Architecture, const char*>, 5> architecturePhrases{{
    {Architecture::arm, "Apple Silicon 32-bit"},
    {Architecture::arm64, "Apple Silicon 64-bit"},
    {Architecture::i386, "Intel 32-bit"},
    {Architecture::x86_64, "Intel 64-bit"},
    {Architecture::ppc, "PowerPC 32-bit"},
}};

std::optional<QString> platformOf(std::optional<AppBundle::OS> os) {
    if (!os)
        return std::nullopt;
    return *os == AppBundle::OS::iOSOnMac ? QStringLiteral("macOS (Designed for iOS)")
                                          : QStringLiteral("macOS");
}

void appendRow(QList<AppInformationViewModel::Row>& rows, const char* field, const QString& qualifier,
               const std::optional<QString>& information) {
    if (information && !information->isEmpty())
        rows.append({QLatin1String(field), qualifier, *information});
}

} // namespace

AppInformationViewModel::AppInformationViewModel(const AppBundle& appBundle)
    : name(appBundle.name())
    , version(appBundle.shortVersion())
    , build(appBundle.buildVersion())
    , icon(appBundle.icon())
    , bundleID(appBundle.bundleIdentifier())
    , teamID(appBundle.teamIdentifier())
    , copyright(appBundle.copyright())
    , platform(platformOf(appBundle.os()))
    , minOSVersion(appBundle.minimumOSVersion())
    , developerName(appBundle.developerName())
    , codeRequirement(appBundle.codeRequirement())
    , entitlements(appBundle.entitlements()) {
    const auto found = appBundle.architectures();
    architectures = found ? architectureSentence(*found) : std::nullopt;
    architecturesQualifer =
        found && found->size() >= 2 ? QStringLiteral("Architectures") : QStringLiteral("Architecture");
    if (const auto bytes = appBundle.size())
        size = ByteCountFormatter::fileStyle(*bytes);
}

std::optional<QString>
AppInformationViewModel::architectureSentence(const QList<Architecture>& architectures) {
    QStringList phrases;
    for (const auto& [architecture, phrase] : architecturePhrases) {
        if (architectures.contains(architecture))
            phrases << QLatin1String(phrase);
    }
    if (phrases.isEmpty())
        return std::nullopt;
    // The input's own length decides the joining, as it always has: two
    // entries naming one architecture twice still read as a pair.
    if (architectures.size() <= 2)
        return phrases.join(QLatin1String(" and "));
    const QString last = phrases.takeLast();
    return phrases.isEmpty() ? last : phrases.join(QLatin1String(", ")) + QLatin1String(" and ") + last;
}

std::optional<QString> AppInformationViewModel::versionAndBuildNumber() const {
    if (version && build)
        return QStringLiteral("%1 (%2)").arg(*version, *build);
    return version ? version : build;
}

QList<AppInformationViewModel::Row> AppInformationViewModel::identityRows() const {
    QList<Row> rows;
    appendRow(rows, "bundleID", bundleIDQualifier, bundleID);
    appendRow(rows, "teamID", teamIDQualifier, teamID);
    appendRow(rows, "copyright", copyrightQualifier, copyright);
    return rows;
}

QList<AppInformationViewModel::Row> AppInformationViewModel::characteristicsRows() const {
    QList<Row> rows;
    appendRow(rows, "architectures", architecturesQualifer, architectures);
    appendRow(rows, "platform", platformQualifer, platform);
    appendRow(rows, "minOSVersion", minOSVersionQualifer, minOSVersion);
    appendRow(rows, "size", sizeQualifer, size);
    appendRow(rows, "codeRequirement", codeRequirementQualifer, codeRequirement);
    return rows;
}

} // namespace quorlin::apptools
