#pragma once

#include "plist/Value.h"

#include <QList>
#include <QString>
#include <QVariant>

#include <optional>

namespace quorlin {

// Edits of a property list tree by place, for the raw editor: each gives a
// new tree, or nothing when the place or the text doesn't fit.
class PropertyListEdit {
public:
    // Dictionary keys (QString) and array positions (int), from the root down.
    using Path = QList<QVariant>;
    using Type = plist::Value::Type;

    // The types the editor offers.
    static const QList<Type>& editableTypes();
    static QString typeTitle(Type type);
    // What the value column shows; containers tell their size.
    static QString valueText(const plist::Value& value);
    static std::optional<plist::Value> valueFromText(Type type, const QString& text);
    // The value as another type: its text read again where it can be, else empty.
    static plist::Value converted(const plist::Value& value, Type type);

    static const plist::Value* valueAt(const plist::Dictionary& root, const Path& path);
    static std::optional<plist::Dictionary> setValue(plist::Dictionary root, const Path& path,
                                                     const plist::Value& value);
    static std::optional<plist::Dictionary> remove(plist::Dictionary root, const Path& path);
    // A new empty string in the dictionary at `container` ("New Key", numbered
    // when taken), or at the end of the array there an empty value of the
    // type of its first item.
    static std::optional<plist::Dictionary> add(plist::Dictionary root, const Path& container);
    static std::optional<plist::Dictionary> renameKey(plist::Dictionary root, const Path& path,
                                                      const QString& newKey);

private:
    static plist::Value* mutableValueAt(plist::Value& root, const Path& path);
};

} // namespace quorlin
