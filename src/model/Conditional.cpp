#include "model/Conditional.h"

#include "model/PreferenceKey.h"

#include <QSet>

#include <algorithm>

namespace quorlin {

Conditional::Conditional(PFMConditionalPrototype prototype, std::weak_ptr<PreferenceKey> source,
                         QList<TargetCondition> conditions)
    : m_prototype(std::move(prototype))
    , m_source(std::move(source))
    , m_targetConditions(std::move(conditions)) {}

std::shared_ptr<Conditional> Conditional::make(const PFMConditionalPrototype& prototype,
                                               const std::shared_ptr<PreferenceKey>& source,
                                               const QMap<QString, std::shared_ptr<PreferenceKey>>& targets) {
    QList<TargetCondition> conditions;
    for (const auto& conditionPrototype : prototype.targetConditions()) {
        const auto target = targets.value(conditionPrototype.targetPath());
        if (!target)
            continue;
        if (auto condition = TargetCondition::make(conditionPrototype, target))
            conditions.append(std::move(*condition));
    }
    if (conditions.isEmpty())
        return nullptr;

    std::shared_ptr<Conditional> conditional(new Conditional(prototype, source, std::move(conditions)));
    QSet<PreferenceKey*> observed;
    for (const auto& condition : conditional->m_targetConditions) {
        const auto target = condition.target();
        if (target && !observed.contains(target.get())) {
            observed.insert(target.get());
            target->addObserver(std::weak_ptr<PreferenceKeyObserver>(conditional));
        }
    }
    return conditional;
}

bool Conditional::evaluateAllConditions() {
    bool allHold = true;
    for (auto& condition : m_targetConditions)
        allHold = condition.evaluate() && allHold;
    return allHold;
}

// Only the conditions on the changed key are asked again; the others keep
// the answer they gave last.
void Conditional::preferenceKeyValueDidChange(PreferenceKey& changed) {
    QList<TargetCondition*> affected;
    for (auto& condition : m_targetConditions) {
        if (condition.target().get() == &changed)
            affected.append(&condition);
    }
    if (affected.isEmpty())
        return;

    const auto allHeld = std::all_of(affected.begin(), affected.end(), [](const TargetCondition* condition) {
        return condition->lastEvaluationResult();
    });
    bool allHoldNow = true;
    for (TargetCondition* condition : affected)
        allHoldNow = condition->evaluate() && allHoldNow;
    if (allHeld == allHoldNow)
        return;

    if (!allHoldNow) {
        changeResult(false);
        return;
    }
    const bool othersHold =
        std::all_of(m_targetConditions.begin(), m_targetConditions.end(),
                    [](const TargetCondition& condition) { return condition.lastEvaluationResult(); });
    changeResult(othersHold);
}

void Conditional::changeResult(bool result) {
    if (result == m_lastEvaluationResult)
        return;
    m_lastEvaluationResult = result;
    if (const auto source = m_source.lock())
        source->updateExclusions();
}

} // namespace quorlin
