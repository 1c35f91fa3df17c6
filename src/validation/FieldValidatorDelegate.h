#pragma once

namespace quorlin {

class FieldValidator;

// Told when a field goes from having no error to having one, or back; the
// text itself is read from the validator.
class FieldValidatorDelegate {
public:
    virtual ~FieldValidatorDelegate() = default;
    virtual void fieldValidatorValidityDidChange(FieldValidator& validator) = 0;
};

} // namespace quorlin
