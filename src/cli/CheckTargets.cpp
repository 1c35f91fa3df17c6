#include "cli/CheckTargets.h"

#include "cli/ToolSettings.h"
#include "schema/PFMSupportedPlatforms.h"

#include <QRegularExpression>

namespace quorlin::cli {

namespace {

using Model = PFMSupportedPlatforms::Model;

std::optional<Model> modelNamed(const QString& name) {
    for (const Model model : PFMSupportedPlatforms::allModels) {
        if (name.compare(PFMSupportedPlatforms::displayName(model), Qt::CaseInsensitive) == 0)
            return model;
    }
    return std::nullopt;
}

// Dotted numbers, as the manifests write versions: "14", "14.2", "10.15.7".
std::optional<QString> versionFault(const char* option, const std::optional<QString>& version) {
    static const QRegularExpression dotted(QStringLiteral(R"(^\d+(\.\d+){0,3}$)"));
    if (!version || dotted.match(*version).hasMatch())
        return std::nullopt;
    return QStringLiteral("%1 takes a version such as 14 or 13.5.1, not '%2'")
        .arg(QLatin1String(option), *version);
}

} // namespace

CheckTargets::CheckTargets()
    : m_settings(ToolSettings::defaults()) {
    for (const Model model : PFMSupportedPlatforms::allModels)
        m_editorBounds[int(model)] = {m_settings.minimumVersion(model), m_settings.maximumVersion(model)};
    m_settings.setSuspendSavingToDefaults(true);
    m_settings.resetWithoutSaving();
}

Expected<std::unique_ptr<CheckTargets>, QString> CheckTargets::make(const QStringList& platforms,
                                                                    const std::optional<QString>& minimum,
                                                                    const std::optional<QString>& maximum) {
    for (const auto& fault : {versionFault("--os-min", minimum), versionFault("--os-max", maximum)}) {
        if (fault)
            return fail(*fault);
    }
    std::unique_ptr<CheckTargets> targets(new CheckTargets());
    ValidationSettings& settings = targets->m_settings;
    for (const QString& list : platforms) {
        for (const QString& name : list.split(u',', Qt::SkipEmptyParts)) {
            const auto model = modelNamed(name.trimmed());
            if (!model)
                return fail(QStringLiteral("unknown platform '%1' (use %2)").arg(name, platformNames()));
            settings.setTargeting(*model, true);
            const auto& [editorMinimum, editorMaximum] = targets->m_editorBounds[int(*model)];
            settings.setMinimumVersion(*model, minimum.value_or(editorMinimum));
            settings.setMaximumVersion(*model, maximum.value_or(editorMaximum));
        }
    }
    if ((minimum || maximum) && !settings.targetingAnyPlatform())
        return fail(QStringLiteral("--os-min and --os-max need a platform (--platform NAME)"));
    return targets;
}

QString CheckTargets::platformNames() {
    QStringList names;
    for (const Model model : PFMSupportedPlatforms::allModels)
        names << PFMSupportedPlatforms::displayName(model);
    return names.join(QStringLiteral(", "));
}

} // namespace quorlin::cli
