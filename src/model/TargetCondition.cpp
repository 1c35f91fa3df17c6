#include "model/TargetCondition.h"

#include "model/PreferenceKey.h"

#include <algorithm>

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;

bool isNumberKind(Kind kind) {
    return kind == Kind::boolean || kind == Kind::integer || kind == Kind::real;
}

bool listContains(const plist::Array& list, const plist::Value& value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

bool stringContainsAny(const QString& text, const plist::Array& list) {
    return std::any_of(list.begin(), list.end(), [&](const plist::Value& element) {
        const auto part = element.toString();
        return part && text.contains(*part);
    });
}

bool dataContainsAny(const QByteArray& data, const plist::Array& list) {
    return std::any_of(list.begin(), list.end(), [&](const plist::Value& element) {
        const auto part = element.toData();
        return part && data.contains(*part);
    });
}

// Numbers compare by value, whatever their class; any other kind only by
// class and content.
bool equalsByKind(Kind kind, const plist::Value& value, const plist::Value& element) {
    if (isNumberKind(kind)) {
        const auto number = value.numberAsReal();
        const auto other = element.numberAsReal();
        return number && other && *number == *other;
    }
    return value == element;
}

} // namespace

TargetCondition::TargetCondition(PFMTargetConditionPrototype prototype, std::weak_ptr<PreferenceKey> target)
    : m_prototype(std::move(prototype))
    , m_target(std::move(target)) {}

std::optional<TargetCondition> TargetCondition::make(const PFMTargetConditionPrototype& prototype,
                                                     const std::shared_ptr<PreferenceKey>& target) {
    const bool hasContains = prototype.containsAny() || prototype.notContainsAny();
    const bool hasRangeList = prototype.rangeList() || prototype.notRangeList();
    switch (target->prototype().kind()) {
    case Kind::boolean:
    case Kind::integer:
    case Kind::real:
    case Kind::date:
        if (hasContains)
            return std::nullopt;
        break;
    case Kind::string:
    case Kind::data:
        break;
    case Kind::array:
        if (hasRangeList)
            return std::nullopt;
        break;
    case Kind::dictionary:
        if (hasContains || hasRangeList)
            return std::nullopt;
        break;
    }
    return TargetCondition(prototype, target);
}

bool TargetCondition::evaluate() {
    const auto target = m_target.lock();
    QList<bool> answers;
    if (const auto& list = m_prototype.containsAny())
        answers.append(target && containsAny(*target, *list));
    if (const auto& list = m_prototype.notContainsAny())
        answers.append(!(target && containsAny(*target, *list)));
    if (const auto& list = m_prototype.rangeList())
        answers.append(equalsAny(target.get(), *list));
    if (const auto& list = m_prototype.notRangeList())
        answers.append(!equalsAny(target.get(), *list));
    if (const auto want = m_prototype.present())
        answers.append(isPresent(target.get(), *want));
    m_lastEvaluationResult =
        !answers.isEmpty() && std::all_of(answers.begin(), answers.end(), [](bool answer) { return answer; });
    return m_lastEvaluationResult;
}

bool TargetCondition::containsAny(const PreferenceKey& target, const plist::Array& list) const {
    const Kind kind = target.prototype().kind();
    if (kind == Kind::array) {
        const auto* items = target.value().keyList();
        return items && std::any_of(items->begin(), items->end(), [&](const auto& item) {
                   const plist::Value* itemValue = item->value().plistValue();
                   return itemValue && listContains(list, *itemValue);
               });
    }
    const plist::Value* value = target.value().plistValue();
    if (!value)
        return false;
    if (kind == Kind::string && value->isString())
        return stringContainsAny(*value->toString(), list);
    if (kind == Kind::data && value->isData())
        return dataContainsAny(*value->toData(), list);
    return false;
}

bool TargetCondition::equalsAny(const PreferenceKey* target, const plist::Array& list) const {
    if (!target)
        return false;
    const Kind kind = target->prototype().kind();
    const plist::Value* value = target->value().plistValue();
    if (!value || kind == Kind::array || kind == Kind::dictionary)
        return false;
    return std::any_of(list.begin(), list.end(),
                       [&](const plist::Value& element) { return equalsByKind(kind, *value, element); });
}

// A dictionary counts as present while it is written, whatever `want` says.
bool TargetCondition::isPresent(const PreferenceKey* target, bool want) const {
    if (!target)
        return false;
    if (target->prototype().kind() == Kind::dictionary)
        return target->isWritingOut();
    return !target->value().isAbsent() == want;
}

} // namespace quorlin
