#pragma once

#include "documents/DocumentError.h"
#include "model/Profile.h"
#include "model/ProfileEnvironment.h"
#include "plist/Expected.h"
#include "ui/DocumentReloader.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class QMenu;
class QWidget;

namespace quorlin {

class DocumentEventReporter;
class DocumentWindow;
class UserDefaults;
struct ApplicationActions;

// The open documents and their windows: making and opening them, the empty
// window of a launch that gives way to the first file opened, the files
// opened lately, closing with the question about unsaved changes, and the
// reload that brings a change of manifests to every open window.
class DocumentController : public QObject, public DocumentReloader {
    Q_OBJECT

public:
    // What a new document is made with, asked afresh for each, so that a
    // reload opens on the domains in force then.
    struct Supply {
        std::function<Profile::DomainList()> domains;
        std::function<std::shared_ptr<const ProfileEnvironment>()> environment;
        // Whether an identity's chain is trusted, for the signing choice of the form.
        std::function<bool(const QString& identityName)> isIdentityTrusted;
        // Told of the payloads each document loads, adds and saves; may be null.
        DocumentEventReporter* eventReporter = nullptr;
        // The sibling product's profile library now; nothing when there is none.
        std::function<std::optional<QString>()> libraryFolder;
    };

    static inline const QString recentDocumentsKey = QStringLiteral("recentDocumentPaths");
    static constexpr int recentDocumentsLimit = 10;

    DocumentController(UserDefaults& defaults, Supply supply, QObject* parent = nullptr);
    ~DocumentController() override;

    void setApplicationActions(const ApplicationActions* actions) { m_actions = actions; }

    const QList<DocumentWindow*>& windows() const { return m_windows; }

    // A new document of the user's; never transient.
    DocumentWindow* newDocument();
    // The empty document of a launch with no file: it goes when a file opens.
    DocumentWindow* openUntitledAtLaunch();
    // Opens the file in a new window, or raises the window that has it.
    // Closes the launch's empty document unless it was edited.
    Expected<DocumentWindow*, DocumentError> openDocument(const QString& filePath);
    // Opens each; refused files are reported over `reportOver` (or the
    // front window) with their words, the others still open.
    void openDocuments(const QStringList& filePaths, QWidget* reportOver = nullptr);
    void showOpenDialog(QWidget* parent);

    // Asks about unsaved changes; `done` learns whether it closed.
    void closeDocument(DocumentWindow* window, std::function<void(bool closed)> done = {});
    // Reads the file again, dropping the edits, after asking.
    void revertToSaved(DocumentWindow* window);

    // A new organization or consent text for new profiles (named by its
    // defaults key) reaches each open document that still has the key it
    // filled, as an undoable edit, when the user asked for that.
    void updatePreferencesDefault(const QString& defaultsKey);

    QStringList recentDocuments() const;
    void noteRecentDocument(const QString& filePath);
    void clearRecentDocuments();
    void fillRecentMenu(QMenu& menu);
    void fillWindowMenu(QMenu& menu);

    // DocumentReloader
    int openProfileDocumentCount() const override { return int(m_windows.size()); }
    void reloadAllDocuments() override;
    bool isReloading() const override { return m_pathsToReopen.has_value(); }
    void closeAllDocuments(std::function<void(bool allClosed)> done) override;

Q_SIGNALS:
    // No window is left, and no reload will bring one back.
    void lastWindowClosed();
    void windowsChanged();

private:
    DocumentWindow* makeWindow(std::unique_ptr<class ProfileDocument> document);
    DocumentWindow* windowForFile(const QString& filePath) const;
    void closeTransientDocuments(DocumentWindow* except);
    void discardWindow(DocumentWindow* window);
    void closeNext(QList<QPointer<DocumentWindow>> remaining, std::function<void(bool)> done);
    void reopenAfterCloseAll(bool allClosed);
    void reopenDocuments();
    void reportOpenFailure(const QString& filePath, const DocumentError& error, QWidget* over);
    void removeRecentDocument(const QString& filePath);

    UserDefaults& m_defaults;
    Supply m_supply;
    const ApplicationActions* m_actions = nullptr;
    QList<DocumentWindow*> m_windows;
    // Set while a reload runs: the files of the documents it closed.
    std::optional<QStringList> m_pathsToReopen;
    int m_untitledToReopen = 0;
    bool m_reverting = false;
};

} // namespace quorlin
