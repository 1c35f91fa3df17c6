#include "workspace/FormInstruments.h"

namespace quorlin {

QString FormInstruments::typeName(const PFMKeyPrototype& prototype) {
    using Kind = PFMKeyPrototype::Kind;
    switch (prototype.kind()) {
    case Kind::boolean:
        return QStringLiteral("boolean");
    case Kind::integer:
        return prototype.rangeList() ? QStringLiteral("popUpButton") : QStringLiteral("integer");
    case Kind::real:
        return QStringLiteral("real");
    case Kind::string:
        return prototype.rangeList() ? QStringLiteral("popUpButton") : QStringLiteral("string");
    case Kind::data:
        return QStringLiteral("data");
    case Kind::date:
        return QStringLiteral("date");
    case Kind::array:
        return QStringLiteral("array");
    case Kind::dictionary:
        return QStringLiteral("customPlist");
    }
    return QStringLiteral("string");
}

FormField::Arrangement FormInstruments::arrangement(const PFMKeyPrototype& prototype) {
    const QString type = typeName(prototype);
    if (type == QStringLiteral("boolean"))
        return FormField::Arrangement::boolean;
    if (type == QStringLiteral("array"))
        return FormField::Arrangement::array;
    return FormField::Arrangement::field;
}

} // namespace quorlin
