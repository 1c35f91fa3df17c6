#pragma once

#include <QString>

namespace quorlin {

class PFMSection;
class PFMSectionViewController;
class PayloadViewController;
struct FormField;

// A plain-text picture of a form as a window would show it: the header,
// the group selector, each row in order with its instrument and state.
// Tests compare it with kept renderings; it also helps when debugging.
class FormTextRenderer {
public:
    static QString render(const PFMSection& section);
    static QString render(const PFMSectionViewController& form);
    static QString render(const PayloadViewController& form);

private:
    static QString renderField(const PayloadViewController& form, const FormField& field);
};

} // namespace quorlin
