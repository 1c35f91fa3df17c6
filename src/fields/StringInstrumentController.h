#pragma once

#include "fields/TextBasedInstrumentController.h"
#include "schema/PFMKeyPrototype.h"

#include <QString>

#include <optional>

namespace quorlin {

// A one-line text field. Besides strings it edits data (as UTF-8 or hex
// text) and two kinds of array written as one line, through the
// transformer the key's type adapter names.
class StringInstrumentController : public TextBasedInstrumentController {
public:
    static bool accepts(PFMKeyPrototype::Kind kind, const std::optional<QString>& typeAdapter);

    Types type() const override { return Types::string; }
    BindingOptions bindingOptions() const override;
    std::optional<QString> requiredPlaceholder() const override;
};

} // namespace quorlin
