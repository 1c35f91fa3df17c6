#include "fields/DateInstrumentController.h"

namespace quorlin {

void DateInstrumentController::applyCellMode() {
    InstrumentLook& look = mutableLook();
    const bool inTable = tableCellMode();
    look.datePickerStyle = inTable ? 2 : 0;
    look.bordered = !inTable;
    look.drawsBackground = !inTable;
    look.drawsBackgroundWhileFirstResponder = inTable;
    look.fontPointSize = inTable ? 12 : 0;
}

void DateInstrumentController::bindValue() {
    bind(ValueBinding::Role::value, QStringLiteral("value"), {});
}

} // namespace quorlin
