#pragma once

#include "fields/InstrumentFactory.h"
#include "schema/PFMKeyPrototype.h"

#include <QString>

#include <memory>
#include <optional>

namespace quorlin {

// What a table column edits: its key prototype, the dotted path inside a
// row that reaches the cell's key, and the instrument chosen for a cell.
struct ColumnProperties {
    std::shared_ptr<const PFMKeyPrototype> keyPrototype;
    // Empty: the cell edits the row's key itself.
    QString bindingName;
    InstrumentFactory::Types instrumentType = InstrumentFactory::Types::string;
};

} // namespace quorlin
