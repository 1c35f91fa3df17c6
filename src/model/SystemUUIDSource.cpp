#include "model/SystemUUIDSource.h"

#include <QUuid>

namespace quorlin {

QString SystemUUIDSource::makeUUIDString() {
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

} // namespace quorlin
