#pragma once

#include "schema/PFMTargetConditionPrototype.h"

#include <memory>
#include <optional>

namespace quorlin {

class PreferenceKey;

// One test of a rule, bound to the key it tests.
class TargetCondition {
public:
    // Nothing when the test makes no sense for the target's kind: "contains"
    // of a scalar, a range list of an array, anything but presence of a dictionary.
    static std::optional<TargetCondition> make(const PFMTargetConditionPrototype& prototype,
                                               const std::shared_ptr<PreferenceKey>& target);

    const PFMTargetConditionPrototype& prototype() const { return m_prototype; }
    std::shared_ptr<PreferenceKey> target() const { return m_target.lock(); }
    bool lastEvaluationResult() const { return m_lastEvaluationResult; }

    // True when the prototype has at least one test and all of them hold;
    // the answer is also stored.
    bool evaluate();

private:
    TargetCondition(PFMTargetConditionPrototype prototype, std::weak_ptr<PreferenceKey> target);

    bool containsAny(const PreferenceKey& target, const plist::Array& list) const;
    bool equalsAny(const PreferenceKey* target, const plist::Array& list) const;
    bool isPresent(const PreferenceKey* target, bool want) const;

    PFMTargetConditionPrototype m_prototype;
    std::weak_ptr<PreferenceKey> m_target;
    bool m_lastEvaluationResult = false;
};

} // namespace quorlin
