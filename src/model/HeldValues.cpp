#include "model/HeldValues.h"

namespace quorlin {

plist::Array HeldValues::mergedItems(plist::Array written) const {
    if (items.isEmpty())
        return written;
    // Items are held in increasing index order, so each insertion leaves the
    // places of the ones before it as they were read.
    plist::Array merged;
    merged.reserve(written.size() + items.size());
    qsizetype next = 0;
    for (const Item& item : items) {
        while (merged.size() < item.index && next < written.size())
            merged.append(std::move(written[next++]));
        merged.append(item.value);
    }
    while (next < written.size())
        merged.append(std::move(written[next++]));
    return merged;
}

QList<HeldValues::Entry> HeldValues::containerEntries() const {
    QList<Entry> entries;
    for (auto entry = subkeys.begin(); entry != subkeys.end(); ++entry)
        entries.append({Reason::undescribed, entry.key(), entry.value()});
    for (const Item& item : items)
        entries.append({Reason::misfitItem, QStringLiteral("[%1]").arg(item.index), item.value});
    return entries;
}

} // namespace quorlin
