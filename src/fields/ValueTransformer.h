#pragma once

#include "model/PreferenceKeyValue.h"
#include "plist/Value.h"

#include <QString>

namespace quorlin {

// A two-way conversion between what a key stores and what a control shows.
// Forward is from the stored value to the control, reverse back. A value a
// transformer can't convert gives nothing (an absent value or a null plist
// value), never an error. Transformers hold no changing state, so one
// instance may serve any number of bindings.
class ValueTransformer {
public:
    virtual ~ValueTransformer() = default;

    // The class name the transformer is registered under.
    virtual QString name() const = 0;
    virtual bool allowsReverseTransformation() const { return false; }
    virtual plist::Value transformedValue(const PreferenceKeyValue& value) const = 0;
    // Only called when `allowsReverseTransformation`; the base gives nothing.
    virtual PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const {
        (void)value;
        return {};
    }
};

} // namespace quorlin
