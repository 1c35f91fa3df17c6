#pragma once

#include "fields/ValueTransformer.h"
#include "model/PreferenceKey.h"

#include <memory>

namespace quorlin {

// An array of strings edited as one line: "a, b, c". Built with the
// array's prototype; its first subkey, when it is a string, is what each
// piece becomes. The new item keys are made under `itemParent`, the array
// key being edited, so they belong to the tree they join.
class StringsArrayToCommaDelimitedStringValueTransformer : public ValueTransformer {
public:
    explicit StringsArrayToCommaDelimitedStringValueTransformer(
        std::shared_ptr<const PFMKeyPrototype> rootPrototype = {},
        const PreferenceKey::Pointer& itemParent = {});

    const std::shared_ptr<const PFMKeyPrototype>& rootPrototype() const { return m_rootPrototype; }
    const std::shared_ptr<const PFMKeyPrototype>& stringPrototype() const { return m_stringPrototype; }

    QString name() const override {
        return QStringLiteral("StringsArrayToCommaDelimitedStringValueTransformer");
    }
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;

private:
    PreferenceKeyValue emptyResult() const;

    std::shared_ptr<const PFMKeyPrototype> m_rootPrototype;
    std::shared_ptr<const PFMKeyPrototype> m_stringPrototype;
    std::weak_ptr<PreferenceKey> m_itemParent;
};

} // namespace quorlin
