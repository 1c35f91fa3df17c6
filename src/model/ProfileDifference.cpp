#include "model/ProfileDifference.h"

namespace quorlin {

QString ProfileDifference::kindName(Kind kind) {
    switch (kind) {
    case Kind::payloadAdded:
        return QStringLiteral("payload added");
    case Kind::payloadRemoved:
        return QStringLiteral("payload removed");
    case Kind::payloadChanged:
        return QStringLiteral("payload changed");
    case Kind::keyAdded:
        return QStringLiteral("key added");
    case Kind::keyRemoved:
        return QStringLiteral("key removed");
    case Kind::keyChanged:
        return QStringLiteral("key changed");
    case Kind::itemAdded:
        return QStringLiteral("item added");
    case Kind::itemRemoved:
        return QStringLiteral("item removed");
    case Kind::itemMoved:
        return QStringLiteral("item moved");
    case Kind::signatureAdded:
        return QStringLiteral("signature added");
    case Kind::signatureRemoved:
        return QStringLiteral("signature removed");
    case Kind::signerChanged:
        return QStringLiteral("signer changed");
    }
    return {};
}

} // namespace quorlin
