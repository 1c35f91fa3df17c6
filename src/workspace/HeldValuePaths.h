#pragma once

#include "model/Payload.h"
#include "workspace/PropertyListEdit.h"

#include <QList>
#include <QString>

namespace quorlin {

// Where in a payload's written dictionary its keys put values they hold
// without binding them, so that the raw editor can mark them at their place.
class HeldValuePaths {
public:
    struct Place {
        PropertyListEdit::Path path;
        // What is wrong with the value, in the form's words.
        QString reason;
    };

    static QList<Place> of(const Payload& payload);

private:
    static void collect(const PreferenceKey& key, const PropertyListEdit::Path& path, QList<Place>& places);
    static void collectItems(const PreferenceKey& key, const PropertyListEdit::Path& path,
                             QList<Place>& places);
};

} // namespace quorlin
