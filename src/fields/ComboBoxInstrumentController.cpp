#include "fields/ComboBoxInstrumentController.h"

namespace quorlin {

bool ComboBoxInstrumentController::accepts(PFMKeyPrototype::Kind kind,
                                           const std::optional<QString>& typeAdapter) {
    return kind == PFMKeyPrototype::Kind::string && !typeAdapter;
}

void ComboBoxInstrumentController::applyCellMode() {
    StringInstrumentController::applyCellMode();
    mutableLook().bordered = !tableCellMode();
}

void ComboBoxInstrumentController::bindValue() {
    StringInstrumentController::bindValue();
    BindingOptions plain;
    bind(ValueBinding::Role::content, QStringLiteral("prototype.suggestions"), plain);
}

} // namespace quorlin
