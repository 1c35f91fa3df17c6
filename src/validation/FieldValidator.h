#pragma once

#include "model/PreferenceKey.h"
#include "model/PreferenceKeyObserver.h"
#include "schema/PFMSupportedPlatforms.h"
#include "validation/FieldValidatorDelegate.h"
#include "validation/ValidationSettings.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace quorlin {

// What is wrong with one field, in words for the form: the value against the
// key's manifest rules, and the key against the window's targets. The value's
// fault wins the one text the form shows.
class FieldValidator : public PreferenceKeyObserver, public std::enable_shared_from_this<FieldValidator> {
public:
    using Model = PFMSupportedPlatforms::Model;

    // Registers the validator as an observer of the key's value.
    static std::shared_ptr<FieldValidator> make(const PreferenceKey::Pointer& key);
    ~FieldValidator() override;
    FieldValidator(const FieldValidator&) = delete;
    FieldValidator& operator=(const FieldValidator&) = delete;

    const PreferenceKey::Pointer& preferenceKey() const { return m_preferenceKey; }
    const QStringList& valueValidationErrors() const { return m_valueValidationErrors; }
    const QStringList& settingsValidationErrors() const { return m_settingsValidationErrors; }
    const std::optional<QString>& prominentError() const { return m_prominentError; }

    void setValidationSettings(const std::weak_ptr<const ValidationSettings>& settings) {
        m_validationSettings = settings;
    }
    void setDelegate(const std::weak_ptr<FieldValidatorDelegate>& delegate) { m_delegate = delegate; }

    void validateValue();
    void validateSettings();

    // The form tells these; the model has no observation of either flag.
    void requiredDidChange(bool wasRequired, bool isRequired);
    void writingOutDidChange();
    void preferenceKeyValueDidChange(PreferenceKey& key) override;

    // The first fault of the key's value, or nothing.
    static std::optional<QString> valueError(const PreferenceKey& key);
    // The faults of the key against the targets: none, one or two texts.
    static QStringList settingsErrors(const ValidationSettings& settings, const PreferenceKey& key);
    static QStringList targetFragments(Model platform, const ValidationSettings& settings,
                                       const PreferenceKey& key);

private:
    explicit FieldValidator(PreferenceKey::Pointer key);
    void updateProminentError();

    PreferenceKey::Pointer m_preferenceKey;
    std::weak_ptr<const ValidationSettings> m_validationSettings;
    QStringList m_valueValidationErrors;
    QStringList m_settingsValidationErrors;
    std::weak_ptr<FieldValidatorDelegate> m_delegate;
    std::optional<QString> m_prominentError;
};

} // namespace quorlin
