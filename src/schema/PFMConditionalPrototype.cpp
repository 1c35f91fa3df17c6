#include "schema/PFMConditionalPrototype.h"

#include <algorithm>

namespace quorlin {

namespace {

// A list with a stray element is a malformed list, not a list with one
// unreadable condition: the whole rule is unusable.
bool holdsOnlyDictionaries(const plist::Array& elements) {
    return std::all_of(elements.begin(), elements.end(),
                       [](const plist::Value& element) { return element.dictionary() != nullptr; });
}

} // namespace

std::optional<PFMConditionalPrototype> PFMConditionalPrototype::make(const plist::Dictionary& dictionary,
                                                                     bool isExclusion) {
    const plist::Array* conditions = dictionary.array(QStringLiteral("pfm_target_conditions"));
    if (!conditions || !holdsOnlyDictionaries(*conditions))
        return std::nullopt;

    PFMConditionalPrototype rule;
    if (isExclusion) {
        rule.m_kind = Kind::exclusion;
        rule.m_exclusionDisables =
            dictionary.boolean(QStringLiteral("pfm_quorlin_exclusion_disables")).value_or(false);
    } else {
        rule.m_kind = Kind::requirement;
        const auto word = dictionary.string(QStringLiteral("pfm_require"));
        rule.m_requireStatus = word ? requireStatusFromRawValue(*word) : std::nullopt;
        if (!rule.m_requireStatus)
            rule.m_requireStatus = RequireStatus::always;
    }

    for (const plist::Value& element : *conditions) {
        if (auto condition = PFMTargetConditionPrototype::make(*element.dictionary()))
            rule.m_targetConditions.append(std::move(*condition));
    }
    if (rule.m_targetConditions.isEmpty())
        return std::nullopt;
    return rule;
}

QString PFMConditionalPrototype::rawValue(RequireStatus status) {
    switch (status) {
    case RequireStatus::always:
        return QStringLiteral("always");
    case RequireStatus::push:
        return QStringLiteral("push");
    }
    return {};
}

std::optional<PFMConditionalPrototype::RequireStatus>
PFMConditionalPrototype::requireStatusFromRawValue(const QString& rawValue) {
    const QString word = rawValue.toLower();
    for (const RequireStatus status : {RequireStatus::always, RequireStatus::push}) {
        if (PFMConditionalPrototype::rawValue(status) == word)
            return status;
    }
    return std::nullopt;
}

QSet<QString> PFMConditionalPrototype::targetPaths() const {
    QSet<QString> paths;
    for (const PFMTargetConditionPrototype& condition : m_targetConditions)
        paths.insert(condition.targetPath());
    return paths;
}

} // namespace quorlin
