#include "workspace/PropertyListEdit.h"

#include <QDateTime>

namespace quorlin {

namespace {

plist::Value emptyValue(PropertyListEdit::Type type) {
    using Type = PropertyListEdit::Type;
    switch (type) {
    case Type::Boolean:
        return plist::Value(false);
    case Type::Integer:
        return plist::Value(0);
    case Type::Real:
        return plist::Value(0.0);
    case Type::Data:
        return plist::Value(QByteArray());
    case Type::Date:
        return plist::Value(plist::Date::fromDateTime(QDateTime::currentDateTimeUtc()));
    case Type::Array:
        return plist::Value(plist::Array());
    case Type::Dictionary:
        return plist::Value(plist::Dictionary());
    default:
        return plist::Value(QString());
    }
}

} // namespace

const QList<PropertyListEdit::Type>& PropertyListEdit::editableTypes() {
    static const QList<Type> types{Type::String, Type::Integer, Type::Real,  Type::Boolean,
                                   Type::Date,   Type::Data,    Type::Array, Type::Dictionary};
    return types;
}

QString PropertyListEdit::typeTitle(Type type) {
    switch (type) {
    case Type::Boolean:
        return QStringLiteral("Boolean");
    case Type::Integer:
        return QStringLiteral("Integer");
    case Type::Real:
        return QStringLiteral("Real");
    case Type::String:
        return QStringLiteral("String");
    case Type::Data:
        return QStringLiteral("Data");
    case Type::Date:
        return QStringLiteral("Date");
    case Type::Array:
        return QStringLiteral("Array");
    case Type::Dictionary:
        return QStringLiteral("Dictionary");
    default:
        return QString::fromLatin1(plist::Value::typeName(type));
    }
}

QString PropertyListEdit::valueText(const plist::Value& value) {
    if (const auto boolean = value.toBoolean())
        return *boolean ? QStringLiteral("true") : QStringLiteral("false");
    if (const auto integer = value.toInteger())
        return QString::number(*integer);
    if (const auto real = value.toReal())
        return QString::number(*real, 'g', 17);
    if (const auto string = value.toString())
        return *string;
    if (const auto data = value.toData())
        return QString::fromLatin1(data->toBase64());
    if (const auto date = value.toDate())
        return date->toDateTime().toString(Qt::ISODate);
    if (const auto* array = value.array())
        return array->size() == 1 ? QStringLiteral("1 item") : QStringLiteral("%1 items").arg(array->size());
    if (const auto* dictionary = value.dictionary())
        return dictionary->size() == 1 ? QStringLiteral("1 key")
                                       : QStringLiteral("%1 keys").arg(dictionary->size());
    return value.debugDescription();
}

std::optional<plist::Value> PropertyListEdit::valueFromText(Type type, const QString& text) {
    const QString trimmed = text.trimmed();
    bool ok = false;
    switch (type) {
    case Type::String:
        return plist::Value(text);
    case Type::Boolean:
        if (trimmed == QStringLiteral("true") || trimmed == QStringLiteral("YES") ||
            trimmed == QStringLiteral("1"))
            return plist::Value(true);
        if (trimmed == QStringLiteral("false") || trimmed == QStringLiteral("NO") ||
            trimmed == QStringLiteral("0"))
            return plist::Value(false);
        return std::nullopt;
    case Type::Integer: {
        const qint64 integer = trimmed.toLongLong(&ok);
        return ok ? std::optional(plist::Value(integer)) : std::nullopt;
    }
    case Type::Real: {
        const double real = trimmed.toDouble(&ok);
        return ok ? std::optional(plist::Value(real)) : std::nullopt;
    }
    case Type::Data: {
        const auto decoded =
            QByteArray::fromBase64Encoding(trimmed.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
        return decoded ? std::optional(plist::Value(*decoded)) : std::nullopt;
    }
    case Type::Date: {
        const QDateTime date = QDateTime::fromString(trimmed, Qt::ISODate);
        return date.isValid() ? std::optional(plist::Value(plist::Date::fromDateTime(date))) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

plist::Value PropertyListEdit::converted(const plist::Value& value, Type type) {
    if (value.type() == type)
        return value;
    const bool isContainer = value.isArray() || value.isDictionary();
    if (!isContainer) {
        if (auto read = valueFromText(type, valueText(value)))
            return *read;
    }
    return emptyValue(type);
}

const plist::Value* PropertyListEdit::valueAt(const plist::Dictionary& root, const Path& path) {
    const plist::Dictionary* dictionary = &root;
    const plist::Array* array = nullptr;
    const plist::Value* found = nullptr;
    for (const QVariant& step : path) {
        if (step.typeId() == QMetaType::QString && dictionary && dictionary->contains(step.toString()))
            found = &dictionary->value(step.toString());
        else if (step.typeId() == QMetaType::Int && array && step.toInt() >= 0 &&
                 step.toInt() < array->size())
            found = &array->at(step.toInt());
        else
            return nullptr;
        dictionary = found->dictionary();
        array = found->array();
    }
    return found;
}

plist::Value* PropertyListEdit::mutableValueAt(plist::Value& root, const Path& path) {
    plist::Value* found = &root;
    for (const QVariant& step : path) {
        if (step.typeId() == QMetaType::QString) {
            plist::Dictionary* dictionary = found->mutableDictionary();
            found = dictionary ? dictionary->find(step.toString()) : nullptr;
            if (!found)
                return nullptr;
        } else {
            plist::Array* array = found->mutableArray();
            const int index = step.toInt();
            if (!array || index < 0 || index >= array->size())
                return nullptr;
            found = &(*array)[index];
        }
    }
    return found;
}

std::optional<plist::Dictionary> PropertyListEdit::setValue(plist::Dictionary root, const Path& path,
                                                            const plist::Value& value) {
    plist::Value tree(std::move(root));
    plist::Value* target = path.isEmpty() ? nullptr : mutableValueAt(tree, path);
    if (!target)
        return std::nullopt;
    *target = value;
    return *tree.dictionary();
}

std::optional<plist::Dictionary> PropertyListEdit::remove(plist::Dictionary root, const Path& path) {
    if (path.isEmpty())
        return std::nullopt;
    plist::Value tree(std::move(root));
    plist::Value* parent = mutableValueAt(tree, path.first(path.size() - 1));
    if (!parent)
        return std::nullopt;
    const QVariant& last = path.last();
    if (plist::Dictionary* dictionary = parent->mutableDictionary()) {
        if (!dictionary->remove(last.toString()))
            return std::nullopt;
    } else if (plist::Array* array = parent->mutableArray()) {
        if (last.typeId() != QMetaType::Int || last.toInt() < 0 || last.toInt() >= array->size())
            return std::nullopt;
        array->removeAt(last.toInt());
    }
    return *tree.dictionary();
}

std::optional<plist::Dictionary> PropertyListEdit::add(plist::Dictionary root, const Path& container) {
    plist::Value tree(std::move(root));
    plist::Value* target = mutableValueAt(tree, container);
    if (!target)
        return std::nullopt;
    if (plist::Array* array = target->mutableArray()) {
        // Items of an array are mostly of one kind: a new one is like the first.
        array->append(array->isEmpty() ? plist::Value(QString()) : emptyValue(array->first().type()));
    } else if (plist::Dictionary* dictionary = target->mutableDictionary()) {
        QString key = QStringLiteral("New Key");
        for (int number = 2; dictionary->contains(key); ++number)
            key = QStringLiteral("New Key %1").arg(number);
        dictionary->insert(key, plist::Value(QString()));
    } else {
        return std::nullopt;
    }
    return *tree.dictionary();
}

std::optional<plist::Dictionary> PropertyListEdit::renameKey(plist::Dictionary root, const Path& path,
                                                             const QString& newKey) {
    if (path.isEmpty() || path.last().typeId() != QMetaType::QString || newKey.isEmpty())
        return std::nullopt;
    plist::Value tree(std::move(root));
    plist::Value* parent = mutableValueAt(tree, path.first(path.size() - 1));
    plist::Dictionary* dictionary = parent ? parent->mutableDictionary() : nullptr;
    const QString oldKey = path.last().toString();
    if (!dictionary || !dictionary->contains(oldKey) || (newKey != oldKey && dictionary->contains(newKey)))
        return std::nullopt;
    const plist::Value value = dictionary->value(oldKey);
    dictionary->remove(oldKey);
    dictionary->insert(newKey, value);
    return *tree.dictionary();
}

} // namespace quorlin
