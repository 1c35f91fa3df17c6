#pragma once

#include "model/PreferenceKeyObserver.h"
#include "model/TargetCondition.h"
#include "schema/PFMConditionalPrototype.h"

#include <QList>
#include <QMap>
#include <QString>

#include <memory>

namespace quorlin {

class PreferenceKey;

// A rule of a manifest put to work in one payload: it belongs to the key
// the rule stands on (the source) and watches the keys its conditions name.
// When its answer changes, the source recomputes its requirement and
// exclusion flags.
class Conditional : public PreferenceKeyObserver, public std::enable_shared_from_this<Conditional> {
public:
    // Nothing when no condition is left once those whose target is missing,
    // or makes no sense for the test, are dropped. The result observes each
    // target; the source keeps it alive.
    static std::shared_ptr<Conditional> make(const PFMConditionalPrototype& prototype,
                                             const std::shared_ptr<PreferenceKey>& source,
                                             const QMap<QString, std::shared_ptr<PreferenceKey>>& targets);

    const PFMConditionalPrototype& prototype() const { return m_prototype; }
    bool lastEvaluationResult() const { return m_lastEvaluationResult; }
    void setLastEvaluationResult(bool result) { m_lastEvaluationResult = result; }
    std::shared_ptr<PreferenceKey> source() const { return m_source.lock(); }
    const QList<TargetCondition>& targetConditions() const { return m_targetConditions; }

    // Evaluates every condition; true when all hold.
    bool evaluateAllConditions();

    void preferenceKeyValueDidChange(PreferenceKey& changed) override;

private:
    Conditional(PFMConditionalPrototype prototype, std::weak_ptr<PreferenceKey> source,
                QList<TargetCondition> conditions);

    void changeResult(bool result);

    PFMConditionalPrototype m_prototype;
    bool m_lastEvaluationResult = false;
    std::weak_ptr<PreferenceKey> m_source;
    QList<TargetCondition> m_targetConditions;
};

} // namespace quorlin
