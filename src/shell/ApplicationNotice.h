#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace quorlin {

// A notice of the application rather than of one document: a question or
// a warning about the repository settings, the factory reset and the like.
// The front end shows it as it is; the caller decides what a reply does.
struct ApplicationNotice {
    enum class Style { informational, warning };
    enum class KeyEquivalent { none, returnKey, escapeKey };

    struct Button {
        QString title;
        int tag = 0;
        KeyEquivalent keyEquivalent = KeyEquivalent::none;
        bool operator==(const Button&) const = default;
    };

    // The button pressed, by its tag, and the state of the check box.
    struct Reply {
        int tag = 0;
        bool suppress = false;
    };

    // Tags shared by the notices below, so a reply reads the same everywhere.
    enum Tag {
        accept = 1000, // the first, default button: reload, reset, use, change preferences
        dismiss,
        tryAgain,
        revert,
        change,
    };

    Style style = Style::informational;
    QString title;
    QString informativeText;
    QList<Button> buttons;
    // The boolean default that the check box sets; empty for no check box.
    QString suppressionKey;

    bool operator==(const ApplicationNotice&) const = default;

    // Entered online settings that can't name a repository.
    static ApplicationNotice onlineSettingsInvalid(bool addressIsValid, bool branchIsValid);
    static ApplicationNotice onlineVerificationFailed(bool noInternetConnection);
    static ApplicationNotice largeLocalFolder(int limit);
    static ApplicationNotice localFolderInvalid();
    static ApplicationNotice folderAccessDenied();
    static ApplicationNotice reloadAfterRepositoryChange(int openProfileCount);
    static ApplicationNotice localRepositoryUnavailable(const std::optional<QString>& path);
    static ApplicationNotice resetToFactorySettings(const QString& programName);
};

} // namespace quorlin
