#pragma once

#include "fields/ValueTransformer.h"

namespace quorlin {

// An integer that works as a switch: any non-zero number is on, and on is
// stored as `trueValue`, which a manifest may set to 2 or more by its range.
class IntegerNSNumberToBoolNSNumberValueTransformer : public ValueTransformer {
public:
    explicit IntegerNSNumberToBoolNSNumberValueTransformer(qint64 trueValue = 1)
        : m_trueValue(trueValue) {}

    qint64 trueValue() const { return m_trueValue; }
    QString name() const override { return QStringLiteral("IntegerNSNumberToBoolNSNumberValueTransformer"); }
    bool allowsReverseTransformation() const override { return true; }
    plist::Value transformedValue(const PreferenceKeyValue& value) const override;
    PreferenceKeyValue reverseTransformedValue(const plist::Value& value) const override;

private:
    qint64 m_trueValue;
};

} // namespace quorlin
