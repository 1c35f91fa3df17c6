#pragma once

#include "model/ModelTestSupport.h"
#include "validation/FieldValidator.h"

#include <gtest/gtest.h>

namespace quorlin::test {

// A payload of one domain made in code, its keys read from `values`.
inline Payload::Pointer payloadWith(const plist::Array& keys, const plist::Dictionary& values = {}) {
    return Payload::make(domainWithKeys(keys), nullptr, makeTestEnvironment(), values);
}

inline plist::Dictionary requiredAlways(plist::Dictionary extra = {}) {
    extra.insert(QStringLiteral("pfm_require"), QStringLiteral("always"));
    return extra;
}

// The value fault of the key at `path`, or "" when it has none.
inline QString valueErrorAt(const Payload::Pointer& payload, const QString& path) {
    const auto key = payload->keyAtPath(path);
    EXPECT_TRUE(key) << path.toStdString();
    if (!key)
        return QStringLiteral("<no key>");
    return FieldValidator::valueError(*key).value_or(QString());
}

} // namespace quorlin::test
