#pragma once

#include "fields/FieldViewController.h"
#include "model/PreferenceKey.h"
#include "validation/FieldValidator.h"

#include <QString>

#include <memory>

namespace quorlin {

// One row of a payload form as the form sees it: the field's model, whether
// the row is shown, and the flags the form last told the validator. The
// signing row of the general payload has no key and no field model.
struct FormField {
    enum class Arrangement { field, boolean, array, signing };

    PreferenceKey::Pointer key;
    std::shared_ptr<FieldViewController> controller;
    Arrangement arrangement = Arrangement::field;
    // Visibility priority 0: the row is out of the stack's layout.
    bool hidden = false;
    // Rows whose key or an ancestor has an exclusion rule follow its hidden state.
    bool followsExclusion = false;
    bool lastHiddenByExclusion = false;
    bool lastExcluded = false;
    bool lastRequired = false;
    bool lastWritingOut = false;

    const std::shared_ptr<FieldValidator>& validator() const { return controller->fieldValidator(); }
    bool hasProminentError() const { return controller && controller->error().has_value(); }
    // The instrument's name, "signing" for the signing row.
    QString instrumentType() const;
};

} // namespace quorlin
