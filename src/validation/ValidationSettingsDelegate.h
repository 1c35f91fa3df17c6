#pragma once

namespace quorlin {

class ValidationSettings;

// Told after every change of a target, so that the window can validate its
// fields again.
class ValidationSettingsDelegate {
public:
    virtual ~ValidationSettingsDelegate() = default;
    virtual void validationSettingsDidChange(ValidationSettings& settings) = 0;
};

} // namespace quorlin
