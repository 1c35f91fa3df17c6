#pragma once

#include "schema/PFMKeyPrototype.h"

#include <QList>
#include <QString>

#include <memory>

namespace quorlin {

// One column-to-be of a table of dictionaries: a scalar or free-form key
// somewhere in the item's prototype, and the path that reaches it from a row.
class KeyPrototypeMapper {
public:
    KeyPrototypeMapper(std::shared_ptr<const PFMKeyPrototype> keyPrototype, QString bindingName)
        : m_keyPrototype(std::move(keyPrototype))
        , m_bindingName(std::move(bindingName)) {}

    const std::shared_ptr<const PFMKeyPrototype>& keyPrototype() const { return m_keyPrototype; }
    const QString& bindingName() const { return m_bindingName; }

    // Nested conventional dictionaries flatten into their subkeys: a subkey
    // "Port" of a dictionary "Server" is reached by "Server.value.Port",
    // because a dictionary's value holds keys whose own value is under "value".
    // The result is ordered by sorting index, keys without one last.
    static QList<KeyPrototypeMapper> mappers(const std::shared_ptr<const PFMKeyPrototype>& prototype);

private:
    static QList<KeyPrototypeMapper> collect(const std::shared_ptr<const PFMKeyPrototype>& prototype,
                                             const QString& prefix, int depth);

    std::shared_ptr<const PFMKeyPrototype> m_keyPrototype;
    QString m_bindingName;
};

} // namespace quorlin
