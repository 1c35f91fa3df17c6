#include "validation/ProfileValidation.h"

#include "validation/FieldValidator.h"

namespace quorlin {

namespace {

struct Walk {
    const Payload::Pointer& payload;
    const ValidationSettings* settings;
    QList<ProfileValidation::FieldError>& errors;
};

// The one text the field would show: the value's fault before the target's.
std::optional<QString> prominentError(const PreferenceKey& key, const ValidationSettings* settings) {
    if (auto error = FieldValidator::valueError(key))
        return error;
    if (!settings || !key.isWritingOut())
        return std::nullopt;
    const QStringList errors = FieldValidator::settingsErrors(*settings, key);
    return errors.isEmpty() ? std::nullopt : std::optional(errors.first());
}

// A conventional dictionary shows its subkeys as fields of their own, so they
// are reported on their own as well; array items are rows of one field.
void walkKey(const Walk& walk, const PreferenceKey::Pointer& key, const QString& parentPath) {
    const QString path = parentPath.isEmpty() ? key->name() : parentPath + QLatin1Char('.') + key->name();
    if (auto error = prominentError(*key, walk.settings))
        walk.errors.append({walk.payload, path, *error});
    if (const auto* subkeys = key->value().keyMap()) {
        for (const auto& subkey : *subkeys) {
            if (subkey)
                walkKey(walk, subkey, path);
        }
    }
}

} // namespace

QList<ProfileValidation::FieldError> ProfileValidation::validatePayload(const Payload::Pointer& payload,
                                                                        const ValidationSettings* settings) {
    QList<FieldError> errors;
    const Walk walk{payload, settings, errors};
    for (const auto& key : payload->preferenceKeys())
        walkKey(walk, key, QString());
    return errors;
}

QList<ProfileValidation::FieldError> ProfileValidation::validate(const Profile& profile,
                                                                 const ValidationSettings* settings) {
    QList<FieldError> errors;
    if (profile.rootPayload())
        errors.append(validatePayload(profile.rootPayload(), settings));
    for (const auto& payload : profile.configurationPayloads())
        errors.append(validatePayload(payload, settings));
    return errors;
}

} // namespace quorlin
