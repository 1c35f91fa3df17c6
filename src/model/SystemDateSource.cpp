#include "model/SystemDateSource.h"

#include <QDateTime>

namespace quorlin {

plist::Date SystemDateSource::now() {
    return plist::Date::fromDateTime(QDateTime::currentDateTimeUtc());
}

} // namespace quorlin
