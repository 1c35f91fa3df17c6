#include "schema/PFMTargetConditionPrototype.h"

namespace quorlin {

namespace {

std::optional<plist::Array> arrayAt(const plist::Dictionary& dictionary, const QString& key) {
    const plist::Array* array = dictionary.array(key);
    return array ? std::optional<plist::Array>(*array) : std::nullopt;
}

} // namespace

std::optional<PFMTargetConditionPrototype>
PFMTargetConditionPrototype::make(const plist::Dictionary& dictionary) {
    const auto target = dictionary.string(QStringLiteral("pfm_target"));
    if (!target)
        return std::nullopt;

    PFMTargetConditionPrototype condition;
    condition.m_targetPath = *target;
    condition.m_containsAny = arrayAt(dictionary, QStringLiteral("pfm_contains_any"));
    condition.m_notContainsAny = arrayAt(dictionary, QStringLiteral("pfm_n_contains_any"));
    condition.m_rangeList = arrayAt(dictionary, QStringLiteral("pfm_range_list"));
    condition.m_notRangeList = arrayAt(dictionary, QStringLiteral("pfm_n_range_list"));
    condition.m_present = dictionary.boolean(QStringLiteral("pfm_present"));

    const bool testsSomething = condition.m_containsAny || condition.m_notContainsAny ||
                                condition.m_rangeList || condition.m_notRangeList || condition.m_present;
    if (!testsSomething)
        return std::nullopt;
    return condition;
}

} // namespace quorlin
