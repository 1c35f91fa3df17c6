#pragma once

#include "plist/DefaultsKey.h"
#include "plist/Value.h"

#include <QList>
#include <QString>

#include <utility>

namespace quorlin {

class UserDefaults;

// What a fresh installation starts with, and the way back to it.
class FactoryDefaults {
public:
    using Entry = std::pair<QString, plist::Value>;

    // The registered defaults, in the order they are registered.
    static QList<Entry> table();
    static plist::Dictionary registeredDefaults();

    static QString defaultOnlineRepositoryAddress();
    static QString defaultOnlineRepositoryBranch();
    // Apple's distant past: 0001-01-01T00:00:00Z in the Julian calendar that
    // Apple's dates follow before 1582 (0000-12-30 proleptic Gregorian).
    static plist::Date distantPast();

    // The part of the factory reset that needs no window: forgets every
    // saved setting and removes the application data folder, manifest
    // stores included. Failures are ignored: there is nothing to fall back to.
    static void removeUserData(UserDefaults& defaults);
};

} // namespace quorlin
