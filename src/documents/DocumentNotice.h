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
        payloadsEncrypted,
        payloadsDecryptable,
        recipientsMissing
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
    static DocumentNotice profileInvalidOnSave(int invalidValueCount);
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
