#include "validation/ValidationSettings.h"

#include "plist/DefaultsKey.h"

namespace quorlin {

namespace {

using Model = PFMSupportedPlatforms::Model;

// The stored names, in the order the fields are read and written.
struct PlatformNames {
    Model model;
    QString targeting;
    QString minimum;
    QString maximum;
};

const std::array<PlatformNames, 4>& platformNames() {
    static const std::array<PlatformNames, 4> names{
        PlatformNames{Model::macOS, QStringLiteral("targetingMacOS"), QStringLiteral("macOSMin"),
                      QStringLiteral("macOSMax")},
        PlatformNames{Model::iOS, QStringLiteral("targetingIOS"), QStringLiteral("iOSMin"),
                      QStringLiteral("iOSMax")},
        PlatformNames{Model::tvOS, QStringLiteral("targetingTvOS"), QStringLiteral("tvOSMin"),
                      QStringLiteral("tvOSMax")},
        PlatformNames{Model::watchOS, QStringLiteral("targetingWatchOS"), QStringLiteral("watchOSMin"),
                      QStringLiteral("watchOSMax")},
    };
    return names;
}

const QString deprecationName = QStringLiteral("deprecationInvalidates");
const QString supervisionName = QStringLiteral("supervisionInvalidates");

void readBoolean(const plist::Dictionary& stored, const QString& name, bool& field) {
    if (const auto value = stored.value(name).toBoolean())
        field = *value;
}

void readString(const plist::Dictionary& stored, const QString& name, QString& field) {
    if (const auto value = stored.value(name).toString())
        field = *value;
}

} // namespace

ValidationSettings::ValidationSettings(UserDefaults& defaults)
    : m_defaults(defaults) {
    readLastChoice();
}

int ValidationSettings::indexOf(Model model) {
    return int(model);
}

bool ValidationSettings::targetingAnyPlatform() const {
    for (const PlatformTarget& target : m_platforms) {
        if (target.targeting)
            return true;
    }
    return false;
}

void ValidationSettings::readLastChoice() {
    const auto stored = m_defaults.dictionary(DefaultsKey::lastChoiceValidationSettings);
    if (!stored)
        return;
    for (const PlatformNames& names : platformNames()) {
        PlatformTarget& target = platform(names.model);
        readBoolean(*stored, names.targeting, target.targeting);
        readString(*stored, names.minimum, target.minimum);
        readString(*stored, names.maximum, target.maximum);
    }
    readBoolean(*stored, deprecationName, m_deprecationInvalidates);
    readBoolean(*stored, supervisionName, m_supervisionInvalidates);
}

plist::Dictionary ValidationSettings::persistedDictionary() const {
    plist::Dictionary dictionary;
    for (const PlatformNames& names : platformNames()) {
        const PlatformTarget& target = platform(names.model);
        dictionary.insert(names.targeting, target.targeting);
        dictionary.insert(names.minimum, target.minimum);
        dictionary.insert(names.maximum, target.maximum);
    }
    dictionary.insert(deprecationName, m_deprecationInvalidates);
    dictionary.insert(supervisionName, m_supervisionInvalidates);
    return dictionary;
}

void ValidationSettings::setTargeting(Model model, bool targeting) {
    platform(model).targeting = targeting;
    didChange();
}

void ValidationSettings::setMinimumVersion(Model model, const QString& version) {
    platform(model).minimum = version;
    didChange();
}

void ValidationSettings::setMaximumVersion(Model model, const QString& version) {
    platform(model).maximum = version;
    didChange();
}

void ValidationSettings::setDeprecationInvalidates(bool invalidates) {
    m_deprecationInvalidates = invalidates;
    didChange();
}

void ValidationSettings::setSupervisionInvalidates(bool invalidates) {
    m_supervisionInvalidates = invalidates;
    didChange();
}

void ValidationSettings::reset() {
    for (const PlatformNames& names : platformNames())
        setTargeting(names.model, false);
    for (const PlatformNames& names : platformNames()) {
        setMinimumVersion(names.model, QString());
        setMaximumVersion(names.model, QString());
    }
    setDeprecationInvalidates(true);
    setSupervisionInvalidates(false);
}

void ValidationSettings::resetWithoutSaving() {
    const bool wasSuspended = m_suspendSavingToDefaults;
    m_suspendSavingToDefaults = true;
    reset();
    m_suspendSavingToDefaults = wasSuspended;
}

void ValidationSettings::didChange() {
    if (!m_suspendSavingToDefaults)
        m_defaults.set(DefaultsKey::lastChoiceValidationSettings, persistedDictionary());
    if (const auto delegate = m_delegate.lock())
        delegate->validationSettingsDidChange(*this);
}

} // namespace quorlin
