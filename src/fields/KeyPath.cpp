#include "fields/KeyPath.h"

#include <algorithm>

namespace quorlin {

namespace {

const QString valueComponent = QStringLiteral("value");

// One step down from a key through "value.<part>": a subkey by name, or an
// array item by index.
PreferenceKey::Pointer child(const PreferenceKey::Pointer& key, const QString& part) {
    if (const auto* subkeys = key->value().keyMap())
        return subkeys->value(part);
    if (const auto* items = key->value().keyList()) {
        bool isIndex = false;
        const int index = part.toInt(&isIndex);
        if (isIndex && index >= 0 && index < items->size())
            return items->at(index);
    }
    return nullptr;
}

std::optional<plist::Value> prototypeField(const PFMKeyPrototype& prototype, const QString& field) {
    std::optional<plist::Array> list;
    if (field == QLatin1String("rangeList"))
        list = prototype.rangeList();
    else if (field == QLatin1String("suggestions"))
        list = prototype.suggestions();
    else if (field == QLatin1String("defaultValue"))
        return prototype.defaultValue();
    if (list)
        return plist::Value(*list);
    return std::nullopt;
}

std::optional<bool> keyFlag(const PreferenceKey& key, const QString& name) {
    if (name == QLatin1String("excludedDisabledByConditional"))
        return key.excludedDisabledByConditional();
    if (name == QLatin1String("required"))
        return key.required();
    if (name == QLatin1String("isWritingOut"))
        return key.isWritingOut();
    return std::nullopt;
}

} // namespace

KeyPath::KeyPath(QString path)
    : m_text(std::move(path))
    , m_components(m_text.split(QLatin1Char('.'), Qt::SkipEmptyParts)) {}

// Walks "value.<part>" pairs as far as they go; `consumed` tells how many
// components were used.
static PreferenceKey::Pointer descend(const PreferenceKey::Pointer& root, const QStringList& components,
                                      qsizetype& consumed) {
    PreferenceKey::Pointer key = root;
    consumed = 0;
    while (key && consumed + 1 < components.size() && components[consumed] == valueComponent) {
        const auto next = child(key, components[consumed + 1]);
        if (!next)
            break;
        key = next;
        consumed += 2;
    }
    return key;
}

PreferenceKeyValue KeyPath::read(const PreferenceKey::Pointer& root) const {
    if (!root)
        return {};
    qsizetype consumed = 0;
    const auto key = descend(root, m_components, consumed);
    const QStringList rest = m_components.mid(consumed);
    if (rest == QStringList{valueComponent})
        return key->value();
    if (rest.size() == 2 && rest[0] == QLatin1String("prototype")) {
        if (auto field = prototypeField(key->prototype(), rest[1]))
            return PreferenceKeyValue(*field);
        return {};
    }
    if (rest.size() == 1) {
        if (auto flag = keyFlag(*key, rest[0]))
            return PreferenceKeyValue(plist::Value(*flag));
    }
    return {};
}

PreferenceKey::Pointer KeyPath::writableKey(const PreferenceKey::Pointer& root) const {
    if (!root)
        return nullptr;
    qsizetype consumed = 0;
    const auto key = descend(root, m_components, consumed);
    return m_components.mid(consumed) == QStringList{valueComponent} ? key : nullptr;
}

PreferenceKey::Pointer KeyPath::resolveKey(const PreferenceKey::Pointer& root) const {
    if (!root)
        return nullptr;
    qsizetype consumed = 0;
    const auto key = descend(root, m_components, consumed);
    const QStringList rest = m_components.mid(consumed);
    return rest.isEmpty() || rest == QStringList{valueComponent} ? key : nullptr;
}

QString KeyPath::identity(const PreferenceKey& key) {
    QStringList parts;
    const PreferenceKey* current = &key;
    PreferenceKey::Pointer parent = current->parentKey();
    while (parent) {
        QString part = current->name();
        if (const auto* items = parent->value().keyList()) {
            const auto found = std::find_if(items->begin(), items->end(),
                                            [&](const auto& item) { return item.get() == current; });
            part = QString::number(found - items->begin());
        }
        parts.prepend(part);
        current = parent.get();
        parent = current->parentKey();
    }
    parts.prepend(current->name());
    return parts.join(QLatin1Char('/'));
}

} // namespace quorlin
