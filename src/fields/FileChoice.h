#pragma once

#include "fields/InstrumentAlert.h"
#include "plist/Expected.h"
#include "schema/PFMKeyPrototype.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace quorlin {

// What a chosen file must be to become a data key's value: of one of the
// key's extensions when it lists any, readable, and starting with one of
// its signatures when it has them.
class FileChoice {
public:
    static QString incompatibleTitle();
    static QString incompatibleText();

    // The file's bytes, or the alert that tells why it was refused.
    static Expected<QByteArray, InstrumentAlert> readAcceptedFile(const PFMKeyPrototype& prototype,
                                                                  const QString& filePath);
    static bool hasAllowedExtension(const PFMKeyPrototype& prototype, const QString& filePath);
    static bool matchesSignature(const PFMKeyPrototype& prototype, const QByteArray& bytes);
    // The title of the choose button: "Choose..." or, over a value, "Replace...".
    static QString chooseButtonTitle(bool hasValue);
    // Choose and remove give way when the space is short, unless the user
    // may change the file.
    static int buttonVisibilityPriority(const PFMKeyPrototype& prototype);
};

} // namespace quorlin
