#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace quorlin {

// A notice that a document raises as a sheet on its window. The front end
// shows it as it is; the document decides when, and what a reply does.
struct DocumentNotice {
    enum class Kind {
        signingIdentityMissing,
        malformedPayloadContentRemoved,
        iOS15SilentInstallIncompatibility,
        profileInvalidOnSave,
        savedToQuorlinLibrary,
        quorlinLibraryIdentifierClash,
        quorlinLibrarySaveFailed,
        payloadsEncrypted,
        payloadsDecryptable,
        recipientsMissing,
        singlePayloadWrapped
    };
    // The replies of the clash in the library.
    enum LibraryClashReply { generateNewIdentifier = 1000, replaceExisting = 1001, cancelSave = 1002 };
    enum class Style { informational, warning };
    enum class KeyEquivalent { none, returnKey, escapeKey };

    struct Button {
        QString title;
        int tag = 0;
        KeyEquivalent keyEquivalent = KeyEquivalent::none;
        bool operator==(const Button&) const = default;
    };

    Kind kind;
    Style style = Style::informational;
    QString title;
    QString informativeText;
    QList<Button> buttons;
    // The boolean default that the check box sets.
    QString suppressionKey;
    QString suppressionTitle;

    static DocumentNotice signingIdentityMissing();
    static DocumentNotice malformedPayloadContentRemoved();
    static DocumentNotice iOS15SilentInstallIncompatibility();
    // With held values, the text names how many the file keeps.
    static DocumentNotice profileInvalidOnSave(int invalidValueCount, qsizetype heldValueCount = 0);
    static DocumentNotice singlePayloadWrapped();
    // "<name> was saved to Quorlin's profile library."; it can be silenced.
    static DocumentNotice savedToQuorlinLibrary(const std::optional<QString>& displayName);
    static DocumentNotice quorlinLibraryIdentifierClash();
    // The library saves that can't go ahead; each has an "OK" alone.
    enum class LibraryFailure { noIdentifier, libraryNotFound, couldNotTrash, noUniqueIdentifier };
    static DocumentNotice quorlinLibrarySaveFailed(LibraryFailure failure);
    // The recipients are one a line.
    static DocumentNotice payloadsEncrypted(const QString& recipients);
    static DocumentNotice payloadsDecryptable(const QString& recipients, const QString& identityName);
    static DocumentNotice recipientsMissing(const QString& recipients);

    bool operator==(const DocumentNotice&) const = default;
};

// The button pressed, by its tag, and the state of the check box.
struct NoticeReply {
    int tag = 0;
    bool suppress = false;
};

} // namespace quorlin
