#include "workspace/FormField.h"

namespace quorlin {

QString FormField::instrumentType() const {
    return controller ? InstrumentFactory::rawValue(controller->instrumentType()) : QStringLiteral("signing");
}

} // namespace quorlin
