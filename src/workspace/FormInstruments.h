#pragma once

#include "schema/PFMKeyPrototype.h"
#include "workspace/FormField.h"

#include <QString>

namespace quorlin {

// The instrument a form row gets, by name, and how the row is arranged
// around it: check boxes and tables change the row's layout.
class FormInstruments {
public:
    static QString typeName(const PFMKeyPrototype& prototype);
    static FormField::Arrangement arrangement(const PFMKeyPrototype& prototype);
};

} // namespace quorlin
