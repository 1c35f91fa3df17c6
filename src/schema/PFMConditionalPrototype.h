#pragma once

#include "plist/Value.h"
#include "schema/PFMTargetConditionPrototype.h"

#include <QList>
#include <QSet>
#include <QString>

#include <optional>

namespace quorlin {

// One rule of "pfm_conditionals" (makes its key required) or "pfm_exclude"
// (hides or disables its key), with at least one target condition.
class PFMConditionalPrototype {
public:
    enum class Kind { requirement, exclusion };
    enum class RequireStatus { always, push };

    // Nothing when "pfm_target_conditions" isn't an array of dictionaries or
    // none of its conditions can be read; unreadable conditions are left out
    // one by one.
    static std::optional<PFMConditionalPrototype> make(const plist::Dictionary& dictionary, bool isExclusion);

    static QString rawValue(RequireStatus status);
    // Matched case-insensitively, unlike the key-level "pfm_require".
    static std::optional<RequireStatus> requireStatusFromRawValue(const QString& rawValue);

    Kind kind() const { return m_kind; }
    // Requirement rules only.
    std::optional<RequireStatus> requireStatus() const { return m_requireStatus; }
    // Exclusion rules only: true disables the key, false hides it.
    bool exclusionDisables() const { return m_exclusionDisables; }
    const QList<PFMTargetConditionPrototype>& targetConditions() const { return m_targetConditions; }
    QSet<QString> targetPaths() const;

    friend bool operator==(const PFMConditionalPrototype&, const PFMConditionalPrototype&) = default;

private:
    PFMConditionalPrototype() = default;

    Kind m_kind = Kind::requirement;
    std::optional<RequireStatus> m_requireStatus;
    bool m_exclusionDisables = false;
    QList<PFMTargetConditionPrototype> m_targetConditions;
};

} // namespace quorlin
