#include "fields/PopUpButtonInstrumentController.h"

#include "fields/NumberOfRangeListToPrettyStringValueTransformer.h"
#include "fields/NumberRangeListToPrettyListValueTransformer.h"
#include "fields/StringOfRangeListToPrettyStringValueTransformer.h"
#include "fields/StringRangeListToPrettyListValueTransformer.h"

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;

std::optional<PrettyRangeList> prettyLabels(const PreferenceKey::Pointer& key) {
    if (!key || !key->prototype().prettyRangeList())
        return std::nullopt;
    return PrettyRangeList(*key->prototype().prettyRangeList());
}

BindingOptions basicOptions() {
    BindingOptions options;
    options.conditionallySetsEnabled = true;
    return options;
}

} // namespace

BindingOptions PopUpButtonInstrumentController::contentBindingOptions() const {
    BindingOptions options = basicOptions();
    const auto& key = representedPreferenceKey();
    options.insertsNullPlaceholder = !tableCellMode() || !key || !key->required();
    if (const auto labels = prettyLabels(key)) {
        const Kind kind = key->prototype().kind();
        if (kind == Kind::string)
            options.valueTransformer = std::make_shared<StringRangeListToPrettyListValueTransformer>(*labels);
        else if (kind == Kind::integer || kind == Kind::real)
            options.valueTransformer = std::make_shared<NumberRangeListToPrettyListValueTransformer>(*labels);
    }
    return options;
}

BindingOptions PopUpButtonInstrumentController::selectionBindingOptions() const {
    BindingOptions options = basicOptions();
    const auto& key = representedPreferenceKey();
    if (const auto labels = prettyLabels(key)) {
        const Kind kind = key->prototype().kind();
        if (kind == Kind::string)
            options.valueTransformer =
                std::make_shared<StringOfRangeListToPrettyStringValueTransformer>(*labels);
        else if (kind == Kind::integer || kind == Kind::real)
            options.valueTransformer = std::make_shared<NumberOfRangeListToPrettyStringValueTransformer>(
                *labels, kind == Kind::real);
    }
    return options;
}

void PopUpButtonInstrumentController::applyCellMode() {
    mutableLook().bordered = !tableCellMode();
    setTrackRequirementStatus(tableCellMode());
}

void PopUpButtonInstrumentController::bindValue() {
    bind(ValueBinding::Role::content, QStringLiteral("prototype.rangeList"), contentBindingOptions());
    bind(ValueBinding::Role::value, QStringLiteral("value"), selectionBindingOptions());
}

} // namespace quorlin
