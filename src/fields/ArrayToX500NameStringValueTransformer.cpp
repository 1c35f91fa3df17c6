#include "fields/ArrayToX500NameStringValueTransformer.h"

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;

std::optional<QString> stringOf(const PreferenceKey& key) {
    const plist::Value* stored = key.value().plistValue();
    return stored ? stored->toString() : std::nullopt;
}

// "/<identifier>=<value>" of one relative name, or nothing when its shape is off.
std::optional<QString> relativeName(const PreferenceKey& item) {
    const auto* pairs = item.prototype().kind() == Kind::array ? item.value().keyList() : nullptr;
    if (!pairs || pairs->isEmpty())
        return std::nullopt;
    const auto& pair = pairs->first();
    const auto* parts = pair->prototype().kind() == Kind::array ? pair->value().keyList() : nullptr;
    if (!parts || parts->size() != 2)
        return std::nullopt;
    const auto identifier = stringOf(*parts->at(0));
    const auto value = stringOf(*parts->at(1));
    if (!identifier || !value)
        return std::nullopt;
    return QLatin1Char('/') + *identifier + QLatin1Char('=') + *value;
}

} // namespace

ArrayToX500NameStringValueTransformer::ArrayToX500NameStringValueTransformer(
    const std::shared_ptr<const PFMKeyPrototype>& rootPrototype, const PreferenceKey::Pointer& itemParent)
    : m_itemParent(itemParent) {
    if (rootPrototype && !rootPrototype->subkeys().isEmpty())
        m_subArrayPrototype = rootPrototype->subkeys().first();
}

plist::Value ArrayToX500NameStringValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    if (!m_subArrayPrototype)
        return {};
    const auto* items = value.keyList();
    if (!items)
        return {};
    QString name;
    for (const auto& item : *items) {
        if (const auto part = relativeName(*item))
            name += *part;
    }
    return name;
}

PreferenceKeyValue
ArrayToX500NameStringValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto text = value.toString();
    if (!text || !m_subArrayPrototype)
        return {};
    const auto parent = m_itemParent.lock();
    PreferenceKey::KeyList items;
    for (const QString& piece : text->split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        const qsizetype equals = piece.indexOf(QLatin1Char('='));
        QString identifier = equals < 0 ? piece : piece.left(equals);
        QString attribute = equals < 0 ? QString() : piece.mid(equals + 1);
        // "=x" has nothing before its "=": the text after it stands alone.
        if (identifier.isEmpty()) {
            identifier = attribute;
            attribute.clear();
        }
        if (identifier.isEmpty())
            continue;
        const plist::Array pair{plist::Value(identifier), plist::Value(attribute)};
        items.append(PreferenceKey::makeFromValue(m_subArrayPrototype, plist::Array{pair}, parent));
    }
    if (items.isEmpty())
        return {};
    return items;
}

} // namespace quorlin
