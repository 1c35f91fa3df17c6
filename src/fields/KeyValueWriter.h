#pragma once

#include "model/PreferenceKey.h"
#include "model/PreferenceKeyValue.h"

#include <QString>

#include <QList>

#include <memory>
#include <utility>

namespace quorlin {

// Every change a control makes to a key goes through one writer, so that the
// editing layer above can turn each write into a step that can be undone.
// `editIdentity` names the place that was edited (the key's path); writes in
// a row with the same identity may be merged into one step, which is how
// typing in one field becomes one undo step and not one per keystroke. An
// empty identity marks an edit that never merges: adding, removing or moving
// rows of a table, loading a file, setting a default.
class KeyValueWriter {
public:
    virtual ~KeyValueWriter() = default;
    virtual void writeValue(const PreferenceKey::Pointer& key, const PreferenceKeyValue& value,
                            const QString& editIdentity) = 0;
    using Change = std::pair<PreferenceKey::Pointer, PreferenceKeyValue>;
    // Several keys set by one command of the user (an app chosen, and the
    // keys beside it that take its signature), undone as one step.
    virtual void writeValues(const QList<Change>& changes, const QString& actionName) {
        Q_UNUSED(actionName);
        for (const auto& [key, value] : changes)
            writeValue(key, value, QString());
    }
    // Takes out what the keys hold against their manifests, as one edit.
    virtual void removeHeldValues(const PreferenceKey::KeyList& keys) {
        for (const auto& key : keys)
            key->replaceHeldValues({});
    }
};

} // namespace quorlin
