#pragma once

#include "schema/PFMKeyPrototype.h"

#include <QString>

#include <memory>
#include <optional>

namespace quorlin {

class InstrumentController;

// Which control edits a key: chosen from the key's manifest description,
// once per field of a form and once per column of a table.
class InstrumentFactory {
public:
    // The order is fixed.
    enum class Types {
        appSelector,
        array,
        boolean,
        comboBox,
        customPlist,
        data,
        date,
        image,
        integer,
        popUpButton,
        real,
        string,
        text
    };

    // A "controlType" can only ask for a control the value's shape allows;
    // a range list outranks suggestions; a table never nests a table.
    static Types type(const PFMKeyPrototype& prototype, bool inTableCell);
    static std::unique_ptr<InstrumentController> makeInstrument(Types type);

    // "appSelector", "array", ...: the enumerator's own name.
    static QString rawValue(Types type);
    static std::optional<Types> typeFromRawValue(const QString& rawValue);
};

} // namespace quorlin
