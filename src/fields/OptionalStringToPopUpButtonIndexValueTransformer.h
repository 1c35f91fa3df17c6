#pragma once

#include "fields/ValueTransformer.h"

#include <QStringList>

#include <optional>

namespace quorlin {

// A string held by its position among a pop-up's item titles. A value that
// isn't a string selects `noValueIndex` (the pop-up's empty entry) when
// there is one, and selecting that entry stores nothing.
class OptionalStringToPopUpButtonIndexValueTransformer : public ValueTransformer {
public:
    explicit OptionalStringToPopUpButtonIndexValueTransformer(
        QStringList itemTitles = {}, std::optional<qint64> noValueIndex = std::nullopt)
        : m_itemTitles(std::move(itemTitles))
        , m_noValueIndex(noValueIndex) {}

    QString name() const override {
        return QStringLiteral("OptionalStringToPopUpButtonIndexValueTransformer");
    }
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;

private:
    QStringList m_itemTitles;
    std::optional<qint64> m_noValueIndex;
};

} // namespace quorlin
