#pragma once

#include <QList>
#include <QString>

namespace quorlin {

// A notice that a document raises as a sheet on its window. The front end
// shows it as it is; the document decides when, and what a reply does.
struct DocumentNotice {
    enum class Kind {
        signingIdentityMissing,
        malformedPayloadContentRemoved,
        iOS15SilentInstallIncompatibility,
        profileInvalidOnSave,
        singlePayloadWrapped
    };
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

    bool operator==(const DocumentNotice&) const = default;
};

// The button pressed, by its tag, and the state of the check box.
struct NoticeReply {
    int tag = 0;
    bool suppress = false;
};

} // namespace quorlin
