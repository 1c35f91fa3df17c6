#include "model/ProfileEnvironment.h"

#include "model/SystemDateSource.h"
#include "model/SystemUUIDSource.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"

#include <QPointer>
#include <QRegularExpression>
#include <QSysInfo>

namespace quorlin {

namespace {

std::optional<QString> nonEmpty(std::optional<QString> text) {
    if (text && text->isEmpty())
        return std::nullopt;
    return text;
}

std::shared_ptr<ProfileEnvironment> makeSystemEnvironment() {
    auto environment = std::make_shared<ProfileEnvironment>();
    environment->uuids = std::make_shared<SystemUUIDSource>();
    environment->dates = std::make_shared<SystemDateSource>();
    environment->hostName = nonEmpty(QSysInfo::machineHostName());
    return environment;
}

} // namespace

std::shared_ptr<const ProfileEnvironment> ProfileEnvironment::makeSystem() {
    return makeSystemEnvironment();
}

std::shared_ptr<const ProfileEnvironment> ProfileEnvironment::makeFromDefaults(const UserDefaults& defaults) {
    auto environment = makeSystemEnvironment();
    environment->identifierPrefix = [source = QPointer<const UserDefaults>(&defaults)] {
        return source ? nonEmpty(source->string(DefaultsKey::identifierPrefix)) : std::nullopt;
    };
    environment->organizationName =
        nonEmpty(defaults.string(DefaultsKey::preferencesDefaultsOrganizationName));
    environment->consentText = nonEmpty(defaults.string(DefaultsKey::preferencesDefaultsConsentText));
    environment->signingIdentity = nonEmpty(defaults.string(DefaultsKey::preferencesDefaultsSigningIdentity));
    return environment;
}

QString ProfileEnvironment::defaultIdentifier(const QString& uuid) const {
    QString prefix;
    if (const auto chosen = identifierPrefix ? identifierPrefix() : std::nullopt;
        chosen && !chosen->isEmpty())
        prefix = *chosen;
    else if (hostName)
        prefix = identifierPrefixFromHostName(*hostName);
    return prefix + QLatin1Char('.') + uuid;
}

QString ProfileEnvironment::identifierPrefixFromHostName(const QString& hostName) {
    static const QRegularExpression disallowed(QStringLiteral("[^A-Za-z0-9\\-]"));
    QString prefix = hostName;
    prefix.replace(QLatin1Char(' '), QLatin1Char('-'));
    prefix.remove(disallowed);
    return prefix;
}

} // namespace quorlin
