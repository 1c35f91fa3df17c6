#pragma once

#include "fields/ValueTransformer.h"

namespace quorlin {

// Whether a text is empty; anything that isn't text counts as not empty.
class StringEmptinessToBooleanValueTransformer : public ValueTransformer {
public:
    QString name() const override { return QStringLiteral("StringEmptinessToBooleanValueTransformer"); }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
};

} // namespace quorlin
