#pragma once

#include "plist/Value.h"

#include <QString>

#include <optional>

namespace quorlin {

// One test of a conditional rule: what the value of the key at `targetPath`
// must (or must not) hold. At least one of the five tests is present.
class PFMTargetConditionPrototype {
public:
    // Nothing unless "pfm_target" is a string and at least one test can be read.
    static std::optional<PFMTargetConditionPrototype> make(const plist::Dictionary& dictionary);

    const std::optional<plist::Array>& containsAny() const { return m_containsAny; }
    const std::optional<plist::Array>& notContainsAny() const { return m_notContainsAny; }
    const std::optional<plist::Array>& rangeList() const { return m_rangeList; }
    const std::optional<plist::Array>& notRangeList() const { return m_notRangeList; }
    std::optional<bool> present() const { return m_present; }
    // The key's names in the payload, joined by ".".
    const QString& targetPath() const { return m_targetPath; }

    friend bool operator==(const PFMTargetConditionPrototype&, const PFMTargetConditionPrototype&) = default;

private:
    PFMTargetConditionPrototype() = default;

    std::optional<plist::Array> m_containsAny;
    std::optional<plist::Array> m_notContainsAny;
    std::optional<plist::Array> m_rangeList;
    std::optional<plist::Array> m_notRangeList;
    std::optional<bool> m_present;
    QString m_targetPath;
};

} // namespace quorlin
