#pragma once

#include "model/PreferenceKey.h"
#include "validation/FieldValidator.h"

#include <QString>

#include <memory>

namespace quorlin {

// One row of a payload form as the form sees it: the key, its validator,
// whether the row is shown, and the flags the form last told the validator.
// The signing row of the general payload has no key.
struct FormField {
    enum class Arrangement { field, boolean, array, signing };

    PreferenceKey::Pointer key;
    std::shared_ptr<FieldValidator> validator;
    Arrangement arrangement = Arrangement::field;
    QString instrumentType;
    // Visibility priority 0: the row is out of the stack's layout.
    bool hidden = false;
    // Rows whose key or an ancestor has an exclusion rule follow its hidden state.
    bool followsExclusion = false;
    bool lastHiddenByExclusion = false;
    bool lastExcluded = false;
    bool lastRequired = false;
    bool lastWritingOut = false;

    bool hasProminentError() const { return validator && validator->prominentError().has_value(); }
};

} // namespace quorlin
