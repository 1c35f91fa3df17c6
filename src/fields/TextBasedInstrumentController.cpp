#include "fields/TextBasedInstrumentController.h"

namespace quorlin {

QString TextBasedInstrumentController::requiredWord() {
    return QStringLiteral("Required");
}

std::optional<QString> TextBasedInstrumentController::requiredPlaceholder() const {
    return QLatin1Char('[') + requiredWord() + QLatin1Char(']');
}

BindingOptions TextBasedInstrumentController::bindingOptions() const {
    BindingOptions options;
    options.continuouslyUpdatesValue = true;
    const auto& key = representedPreferenceKey();
    if (!key)
        return options;
    const auto& valuePlaceholder = key->prototype().valuePlaceholder();
    const bool hasValuePlaceholder = valuePlaceholder && !valuePlaceholder->isEmpty();
    if (!hasValuePlaceholder && key->requirementStatus() == PreferenceKey::RequirementStatus::notRequired)
        return options;
    QStringList parts;
    if (hasValuePlaceholder)
        parts.append(*valuePlaceholder);
    if (tableCellMode() && key->required()) {
        if (const auto required = requiredPlaceholder())
            parts.append(*required);
    }
    if (!parts.isEmpty())
        options.nullPlaceholder = plist::Value(parts.join(QLatin1Char(' ')));
    return options;
}

void TextBasedInstrumentController::applyCellMode() {
    InstrumentLook& look = mutableLook();
    const auto& key = representedPreferenceKey();
    if (tableCellMode()) {
        look.bezeled = false;
        look.drawsBackground = false;
        look.bezelStyle = 0;
        look.lineBreak = InstrumentLook::LineBreak::truncatingTail;
        if (key && key->requirementStatus() != PreferenceKey::RequirementStatus::notRequired &&
            key->required())
            rebind();
        if (key && key->requirementStatus() == PreferenceKey::RequirementStatus::requiredConditionally)
            setTrackRequirementStatus(true);
        return;
    }
    setTrackRequirementStatus(false);
    if (key && key->required())
        rebind();
    look.bezeled = true;
    look.drawsBackground = true;
    look.bezelStyle = 1;
    look.lineBreak = InstrumentLook::LineBreak::clipping;
}

void TextBasedInstrumentController::bindValue() {
    bind(ValueBinding::Role::value, QStringLiteral("value"), bindingOptions());
}

} // namespace quorlin
