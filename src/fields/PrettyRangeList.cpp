#include "fields/PrettyRangeList.h"

namespace quorlin {

std::optional<QString> PrettyRangeList::label(const QString& raw) const {
    return m_labels.string(raw);
}

std::optional<QString> PrettyRangeList::firstKey(const QString& label) const {
    for (auto entry = m_labels.begin(); entry != m_labels.end(); ++entry) {
        if (entry.value().toString() == label)
            return entry.key();
    }
    return std::nullopt;
}

} // namespace quorlin
