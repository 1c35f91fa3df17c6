#include "ui/BooleanInstrumentWidget.h"

#include "fields/BooleanInstrumentController.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"

#include <QApplication>

namespace quorlin {

BooleanInstrumentWidget::BooleanInstrumentWidget(FieldViewController& field,
                                                 BooleanInstrumentController& instrument, QWidget* parent)
    : QCheckBox(parent)
    , InstrumentControlSide(field, instrument)
    , m_boolean(instrument) {
    attach();
}

void BooleanInstrumentWidget::showValue(const plist::Value& value) {
    const auto number = value.numberAsReal();
    setChecked(number ? *number != 0 : m_placeholderState);
}

void BooleanInstrumentWidget::showNullPlaceholder(const std::optional<plist::Value>& placeholder) {
    const auto number = placeholder ? placeholder->numberAsReal() : std::nullopt;
    m_placeholderState = number && *number != 0;
}

void BooleanInstrumentWidget::showEnabled(bool enabled) {
    setEnabled(enabled);
}

void BooleanInstrumentWidget::nextCheckState() {
    const bool optionKeyAlone = QApplication::keyboardModifiers() == Qt::AltModifier;
    const bool unsetDefaultBooleans = UserDefaults::standard()
                                          .boolean(DefaultsKey::preferencesDefaultsUnsetDefaultBooleans)
                                          .value_or(false);
    m_boolean.click(optionKeyAlone, unsetDefaultBooleans);
    // Our own write doesn't echo back to us.
    setChecked(m_boolean.displayedState());
}

} // namespace quorlin
