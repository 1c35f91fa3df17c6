#pragma once

#include "fields/ValueTransformer.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace quorlin {

// Transformers by class name, so that a binding can ask for one by name.
// A named transformer has its fields at their defaults; an instrument that
// needs them set (a range list's labels, an array's prototype) builds its own.
class ValueTransformerRegistry {
public:
    // Nothing for a name that isn't a transformer's.
    static std::shared_ptr<const ValueTransformer> transformer(const QString& name);
    static QStringList names();
};

} // namespace quorlin
