#pragma once

#include <QByteArray>
#include <QString>

namespace quorlin {

// How the settings remember a folder the user chose: its absolute path as
// UTF-8 bytes, kept in a data-typed default. Opening one tells apart a
// bookmark that names no folder, a folder that is there but can't be read,
// and a folder that is simply gone, because only the first two are worth
// telling the user about.
class FolderBookmark {
public:
    enum class State {
        // The data names no folder: empty, not UTF-8, or not an absolute path.
        unresolvable,
        // The folder exists but can't be listed or entered.
        inaccessible,
        // Nothing is there any more, or something that isn't a folder.
        missing,
        available,
    };

    struct Resolution {
        State state = State::unresolvable;
        QString folder; // the cleaned absolute path; empty when unresolvable
    };

    // The bookmark data of a folder: its cleaned absolute path.
    static QByteArray data(const QString& folder);
    static Resolution open(const QByteArray& data);
};

} // namespace quorlin
