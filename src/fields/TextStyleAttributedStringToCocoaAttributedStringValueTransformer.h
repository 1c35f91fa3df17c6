#pragma once

#include "fields/ValueTransformer.h"

namespace quorlin {

// Read-only information text for the panel. Style runs are laid on by the
// widget layer; this side passes the text through so the panel's bindings
// have one name to ask for.
class TextStyleAttributedStringToCocoaAttributedStringValueTransformer : public ValueTransformer {
public:
    QString name() const override {
        return QStringLiteral("TextStyleAttributedStringToCocoaAttributedStringValueTransformer");
    }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
};

} // namespace quorlin
