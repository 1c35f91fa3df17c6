#pragma once

#include "fields/ValueTransformer.h"

namespace quorlin {

// The kind of a row of the app sheet ("systemApp", "storeApp", "bundleId") in words.
class AppSelectorResultTypeToLocalizedStringValueTransformer : public ValueTransformer {
public:
    QString name() const override {
        return QStringLiteral("AppSelectorResultTypeToLocalizedStringValueTransformer");
    }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
};

} // namespace quorlin
