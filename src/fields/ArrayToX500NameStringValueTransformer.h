#pragma once

#include "fields/ValueTransformer.h"
#include "model/PreferenceKey.h"

#include <memory>

namespace quorlin {

// A subject name (an array of relative names, each an array of one
// [identifier, value] pair) edited as "/C=US/O=Example/CN=Name". Built with
// the array's prototype, whose first subkey is the prototype of a relative
// name; the new keys are made under `itemParent`, the array key being edited.
class ArrayToX500NameStringValueTransformer : public ValueTransformer {
public:
    explicit ArrayToX500NameStringValueTransformer(
        const std::shared_ptr<const PFMKeyPrototype>& rootPrototype = {},
        const PreferenceKey::Pointer& itemParent = {});

    const std::shared_ptr<const PFMKeyPrototype>& subArrayPrototype() const { return m_subArrayPrototype; }

    QString name() const override { return QStringLiteral("ArrayToX500NameStringValueTransformer"); }
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;

private:
    std::shared_ptr<const PFMKeyPrototype> m_subArrayPrototype;
    std::weak_ptr<PreferenceKey> m_itemParent;
};

} // namespace quorlin
