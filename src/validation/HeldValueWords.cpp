#include "validation/HeldValueWords.h"

#include "model/Conditional.h"
#include "plist/Utilities.h"

namespace quorlin {

namespace {

using Reason = HeldValues::Reason;
using Kind = PFMKeyPrototype::Kind;
using Type = plist::Value::Type;

namespace text {
const QString wrongClass = QStringLiteral("The file holds %1 here, where the manifest wants %2");
const QString excluded = QStringLiteral("The manifest leaves this key out while %1");
const QString excludedByUnknownRule = QStringLiteral("a rule of the manifest holds");
const QString undescribed = QStringLiteral("“%1” is not described by the manifest");
const QString misfitItem = QStringLiteral("Item %1 fits none of the kinds of item the manifest describes");
const QString ghost = QStringLiteral("The manifest marks this key as one that profiles don't carry");
// What happens to the value: the key's own may be replaced by setting the key.
const QString keptUntilSetOrRemoved = QStringLiteral("%1; it is kept as it is until you set or remove it.");
const QString keptUntilRemoved = QStringLiteral("%1; it is kept as it is until you remove it.");
const QString excludedKept =
    QStringLiteral("%1; the file's value is kept as it is until you set or remove it.");
// Each prefix ends in the place of the text that follows, "%1" for the text.
const QString itemPrefix = QStringLiteral("Item %1: %2");
const QString subkeyPrefix = QStringLiteral("“%1”: %2");
const QString more = QStringLiteral("%1 (%2 more values are kept the same way.)");
const QString oneMore = QStringLiteral("%1 (1 more value is kept the same way.)");
} // namespace text

QString kindName(Kind kind) {
    switch (kind) {
    case Kind::boolean:
        return QStringLiteral("a boolean");
    case Kind::integer:
        return QStringLiteral("an integer");
    case Kind::real:
        return QStringLiteral("a real number");
    case Kind::string:
        return QStringLiteral("a string");
    case Kind::data:
        return QStringLiteral("data");
    case Kind::date:
        return QStringLiteral("a date");
    case Kind::array:
        return QStringLiteral("an array");
    case Kind::dictionary:
        return QStringLiteral("a dictionary");
    }
    return QString();
}

QString quoted(const QString& name) {
    return QStringLiteral("“%1”").arg(name);
}

QString valueList(const plist::Array& values) {
    QStringList terms;
    for (const plist::Value& value : values)
        terms.append(HeldValueWords::valueText(value));
    return Utilities::joinedTermSeries(terms, true);
}

QString conditionText(const PFMTargetConditionPrototype& condition) {
    const QString target = quoted(condition.targetPath());
    QStringList tests;
    if (condition.present())
        tests.append(target +
                     (*condition.present() ? QStringLiteral(" is set") : QStringLiteral(" is not set")));
    if (condition.rangeList())
        tests.append(QStringLiteral("%1 is %2").arg(target, valueList(*condition.rangeList())));
    if (condition.notRangeList())
        tests.append(QStringLiteral("%1 is not %2").arg(target, valueList(*condition.notRangeList())));
    if (condition.containsAny())
        tests.append(QStringLiteral("%1 contains %2").arg(target, valueList(*condition.containsAny())));
    if (condition.notContainsAny())
        tests.append(
            QStringLiteral("%1 doesn't contain %2").arg(target, valueList(*condition.notContainsAny())));
    return Utilities::joinedTermSeries(tests, false);
}

// An item of an array is described by its own prototype; the key's own value by the key's.
QString wantedKind(const PreferenceKey& key) {
    return kindName(key.prototype().kind());
}

} // namespace

QString HeldValueWords::className(const plist::Value& value) {
    switch (value.type()) {
    case Type::Boolean:
        return kindName(Kind::boolean);
    case Type::Integer:
        return kindName(Kind::integer);
    case Type::Real:
        return kindName(Kind::real);
    case Type::String:
        return kindName(Kind::string);
    case Type::Data:
        return kindName(Kind::data);
    case Type::Date:
        return kindName(Kind::date);
    case Type::Array:
        return kindName(Kind::array);
    case Type::Dictionary:
        return kindName(Kind::dictionary);
    case Type::Uid:
        return QStringLiteral("an object reference");
    case Type::Null:
        break;
    }
    return QStringLiteral("nothing");
}

QString HeldValueWords::valueText(const plist::Value& value) {
    if (const auto string = value.toString())
        return quoted(*string);
    if (const plist::Array* array = value.array())
        return array->size() == 1 ? QStringLiteral("<array of 1 item>")
                                  : QStringLiteral("<array of %1 items>").arg(array->size());
    if (const plist::Dictionary* dictionary = value.dictionary())
        return dictionary->size() == 1 ? QStringLiteral("<dictionary of 1 entry>")
                                       : QStringLiteral("<dictionary of %1 entries>").arg(dictionary->size());
    if (const auto data = value.toData())
        return QStringLiteral("<%1 bytes of data>").arg(data->size());
    return value.debugDescription();
}

QString HeldValueWords::exclusionText(const PreferenceKey& key) {
    QStringList rules;
    for (const auto& conditional : key.conditionals()) {
        const auto& rule = conditional->prototype();
        if (rule.kind() != PFMConditionalPrototype::Kind::exclusion || !conditional->lastEvaluationResult())
            continue;
        for (const auto& condition : rule.targetConditions())
            rules.append(conditionText(condition));
    }
    rules.removeAll(QString());
    return rules.isEmpty() ? text::excludedByUnknownRule : Utilities::joinedTermSeries(rules, false);
}

QString HeldValueWords::entryText(const PreferenceKey& key, const HeldValues::Entry& entry) {
    const QString reason = reasonText(key, entry);
    switch (entry.reason) {
    case Reason::wrongClass:
        return text::keptUntilSetOrRemoved.arg(reason);
    case Reason::excluded:
        return text::excludedKept.arg(reason);
    case Reason::ghost:
    case Reason::undescribed:
    case Reason::misfitItem:
        break;
    }
    return text::keptUntilRemoved.arg(reason);
}

QString HeldValueWords::reasonText(const PreferenceKey& key, const HeldValues::Entry& entry) {
    switch (entry.reason) {
    case Reason::wrongClass:
        return text::wrongClass.arg(className(entry.value), wantedKind(key));
    case Reason::excluded:
        return text::excluded.arg(exclusionText(key));
    case Reason::undescribed:
        return text::undescribed.arg(entry.place);
    case Reason::misfitItem:
        return text::misfitItem.arg(entry.place.mid(1).chopped(1).toLongLong() + 1);
    case Reason::ghost:
        return text::ghost;
    }
    return QString();
}

std::optional<QString> HeldValueWords::fieldText(const PreferenceKey& key) {
    QStringList texts;
    for (const auto& entry : key.heldEntries())
        texts.append(entryText(key, entry));
    if (key.prototype().kind() == Kind::array && !key.holdsOnlyItsOwnValue()) {
        if (const auto* items = key.value().keyList()) {
            for (qsizetype index = 0; index < items->size(); ++index)
                collectBelow(*items->at(index), text::itemPrefix.arg(index + 1), texts);
        }
    }
    if (texts.isEmpty())
        return std::nullopt;
    if (texts.size() == 1)
        return texts.first();
    return texts.size() == 2 ? text::oneMore.arg(texts.first())
                             : text::more.arg(texts.first(), QString::number(texts.size() - 1));
}

// Everything below an item of an array is shown in the array's one row.
void HeldValueWords::collectBelow(const PreferenceKey& key, const QString& prefix, QStringList& texts) {
    for (const auto& entry : key.heldEntries())
        texts.append(prefix.arg(entryText(key, entry)));
    if (key.holdsOnlyItsOwnValue())
        return;
    const auto children = key.children();
    if (!children)
        return;
    const bool isArray = key.prototype().kind() == Kind::array;
    for (qsizetype index = 0; index < children->size(); ++index) {
        const PreferenceKey& child = *children->at(index);
        const QString place =
            isArray ? text::itemPrefix.arg(index + 1) : text::subkeyPrefix.arg(child.name());
        collectBelow(child, prefix.arg(place), texts);
    }
}

} // namespace quorlin
