#include "fields/StringsArrayToCommaDelimitedStringValueTransformer.h"

namespace quorlin {

StringsArrayToCommaDelimitedStringValueTransformer::StringsArrayToCommaDelimitedStringValueTransformer(
    std::shared_ptr<const PFMKeyPrototype> rootPrototype, const PreferenceKey::Pointer& itemParent)
    : m_rootPrototype(std::move(rootPrototype))
    , m_itemParent(itemParent) {
    if (!m_rootPrototype || m_rootPrototype->subkeys().isEmpty())
        return;
    const auto& first = m_rootPrototype->subkeys().first();
    if (first->kind() == PFMKeyPrototype::Kind::string)
        m_stringPrototype = first;
}

plist::Value
StringsArrayToCommaDelimitedStringValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const auto* items = value.keyList();
    if (!items)
        return {};
    QStringList strings;
    for (const auto& item : *items) {
        if (item->prototype().kind() != PFMKeyPrototype::Kind::string)
            continue;
        const plist::Value* stored = item->value().plistValue();
        if (const auto text = stored ? stored->toString() : std::nullopt)
            strings.append(*text);
    }
    return strings.join(QStringLiteral(", "));
}

PreferenceKeyValue
StringsArrayToCommaDelimitedStringValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto text = value.toString();
    if (!m_stringPrototype || !text)
        return emptyResult();
    const auto parent = m_itemParent.lock();
    PreferenceKey::KeyList items;
    for (const QString& piece : text->split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        // Blanks and tabs only: a newline pasted into the line stays visible.
        qsizetype start = 0;
        qsizetype end = piece.size();
        const auto isBlank = [](QChar c) { return c == QLatin1Char(' ') || c == QLatin1Char('\t'); };
        while (start < end && isBlank(piece[start]))
            ++start;
        while (end > start && isBlank(piece[end - 1]))
            --end;
        if (start == end)
            continue;
        auto item = PreferenceKey::makeNew(m_stringPrototype, parent);
        item->setValue(plist::Value(piece.mid(start, end - start)));
        items.append(item);
    }
    if (items.isEmpty())
        return emptyResult();
    return items;
}

// A required list is stored empty rather than removed, so that it is still
// written and its emptiness is reported by validation.
PreferenceKeyValue StringsArrayToCommaDelimitedStringValueTransformer::emptyResult() const {
    if (m_rootPrototype && m_rootPrototype->required())
        return PreferenceKey::KeyList();
    return {};
}

} // namespace quorlin
