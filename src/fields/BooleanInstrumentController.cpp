#include "fields/BooleanInstrumentController.h"

#include "fields/IntegerNSNumberToBoolNSNumberValueTransformer.h"
#include "fields/ValueTransformerRegistry.h"

#include <algorithm>

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;

// The "on" value of an integer switch whose range list is [0, n], n >= 2.
std::optional<qint64> largerSwitchValue(const PFMKeyPrototype& prototype) {
    const auto& range = prototype.rangeList();
    if (!range || range->size() != 2 || !range->at(0).isInteger() || !range->at(1).isInteger())
        return std::nullopt;
    const auto first = range->at(0).toInteger();
    const auto second = range->at(1).toInteger();
    if (!first || !second)
        return std::nullopt;
    const qint64 smaller = std::min(*first, *second);
    const qint64 larger = std::max(*first, *second);
    if (smaller != 0 || larger < 2)
        return std::nullopt;
    return larger;
}

} // namespace

bool BooleanInstrumentController::accepts(Kind kind, const std::optional<QString>& typeAdapter) {
    return (kind == Kind::boolean || kind == Kind::integer) && !typeAdapter;
}

std::optional<bool> BooleanInstrumentController::defaultState() const {
    const auto& key = representedPreferenceKey();
    if (!key || !key->prototype().defaultValue())
        return std::nullopt;
    const auto number = key->prototype().defaultValue()->numberAsReal();
    if (!number)
        return std::nullopt;
    return *number != 0;
}

BindingOptions BooleanInstrumentController::bindingOptions() const {
    BindingOptions options;
    options.nullPlaceholder = plist::Value(defaultState().value_or(false));
    options.conditionallySetsEnabled = false;
    const auto& key = representedPreferenceKey();
    if (key && key->prototype().kind() == Kind::integer) {
        if (const auto trueValue = largerSwitchValue(key->prototype()))
            options.valueTransformer =
                std::make_shared<IntegerNSNumberToBoolNSNumberValueTransformer>(*trueValue);
        else
            options.valueTransformer = ValueTransformerRegistry::transformer(
                QStringLiteral("IntegerNSNumberToBoolNSNumberValueTransformer"));
    }
    return options;
}

bool BooleanInstrumentController::displayedState() const {
    const auto binding = valueBinding();
    const plist::Value shown = binding ? binding->displayedValue() : plist::Value();
    if (const auto number = shown.numberAsReal())
        return *number != 0;
    return defaultState().value_or(false);
}

BooleanInstrumentController::ClickOutcome BooleanInstrumentController::click(bool optionKeyAlone,
                                                                             bool unsetDefaultBooleans) {
    const auto& key = representedPreferenceKey();
    const auto binding = valueBinding();
    const bool nextState = !displayedState();
    const auto defaultValue = key ? key->prototype().defaultValue() : std::nullopt;
    const auto defaultBoolean = defaultState();
    if (key && defaultValue && defaultBoolean) {
        if (optionKeyAlone) {
            writeValue(PreferenceKeyValue(*defaultValue));
            return ClickOutcome::storedDefault;
        }
        if (!tableCellMode() && !key->required() && nextState == *defaultBoolean && unsetDefaultBooleans) {
            const auto& transformer = binding ? binding->options().valueTransformer : nullptr;
            writeValue(transformer ? transformer->reverseTransformedValue(plist::Value())
                                   : PreferenceKeyValue());
            return ClickOutcome::unset;
        }
    }
    if (binding)
        binding->controlValueDidChange(plist::Value(nextState));
    return ClickOutcome::toggled;
}

void BooleanInstrumentController::applyCellMode() {
    InstrumentLook& look = mutableLook();
    look.showsTitle = !tableCellMode();
    look.centersVertically = tableCellMode();
}

void BooleanInstrumentController::bindValue() {
    bind(ValueBinding::Role::value, QStringLiteral("value"), bindingOptions());
}

} // namespace quorlin
