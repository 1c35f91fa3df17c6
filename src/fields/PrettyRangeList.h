#pragma once

#include "plist/Value.h"

#include <QString>

#include <optional>

namespace quorlin {

// The labels a manifest gives the raw values of a range list, keyed by the
// raw value as text. Looking back from a label takes the first raw value, in
// key order, that bears it.
class PrettyRangeList {
public:
    PrettyRangeList() = default;
    explicit PrettyRangeList(plist::Dictionary labels)
        : m_labels(std::move(labels)) {}

    const plist::Dictionary& labels() const { return m_labels; }
    // The label of a raw value; nothing when there is none or it isn't text.
    std::optional<QString> label(const QString& raw) const;
    std::optional<QString> firstKey(const QString& label) const;

private:
    plist::Dictionary m_labels;
};

} // namespace quorlin
