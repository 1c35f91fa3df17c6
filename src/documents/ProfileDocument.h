#pragma once

#include "documents/AtomicFileWriter.h"
#include "documents/DocumentError.h"
#include "documents/DocumentNotice.h"
#include "documents/SavePanelPresenter.h"
#include "model/Profile.h"
#include "model/ProfileEnvironment.h"
#include "plist/Expected.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace quorlin {

class DocumentEventReporter;
class DocumentNoticePresenter;
class UserDefaults;

// The document of one window: it turns the bytes of a profile file into a
// Profile and back, counts the edits, raises the notices of an opened file
// and runs the steps of a save. It knows no widget: the window reaches it
// through DocumentNoticePresenter and SavePanelPresenter.
class ProfileDocument {
public:
    enum class ChangeKind { done, undone, cleared };
    // Autosaves neither update the defaults nor ask for a place.
    enum class SaveOperation { save, saveAs, saveTo, autosaveElsewhere, autosaveInPlace };

    struct SaveResult {
        bool saved = false; // false when the user cancelled
        QString filePath;
    };
    using SaveCompletion = std::function<void(const Expected<SaveResult, DocumentError>&)>;

    // Reads a profile file's bytes: a plain property list, else a signed
    // message around one. Refusals name `filePath` when given. No windows,
    // no defaults: the command-line tool reads through this alone.
    static Expected<Profile::Pointer, DocumentError>
    makeProfile(const QByteArray& data, const Profile::DomainList& domains,
                std::shared_ptr<const ProfileEnvironment> environment,
                const std::optional<QString>& filePath = std::nullopt);

    ProfileDocument(Profile::DomainList domains, std::shared_ptr<const ProfileEnvironment> environment,
                    UserDefaults& defaults);
    virtual ~ProfileDocument();
    ProfileDocument(const ProfileDocument&) = delete;
    ProfileDocument& operator=(const ProfileDocument&) = delete;

    // Reading. Empty data is a new document: no profile until the window is made.
    virtual Expected<bool, DocumentError> readFromData(const QByteArray& data);
    Expected<bool, DocumentError> readFromFile(const QString& filePath);

    const Profile::Pointer& profile() const { return m_profile; }
    // Nothing for a document with no file, also a signed one whose signer
    // isn't among the user's identities: saving it asks for a place.
    const std::optional<QString>& filePath() const { return m_filePath; }
    void setFilePath(const std::optional<QString>& filePath) { m_filePath = filePath; }
    QString displayName() const;
    void setDisplayName(const QString& name) { m_displayName = name; }
    // Unset until read; true asks the window to validate every field.
    std::optional<bool> shouldBeValueValidatedOnLaunch() const { return m_shouldBeValueValidatedOnLaunch; }
    bool isTransient() const { return m_isTransient; }
    void setTransient(bool transient) { m_isTransient = transient; }

    // Edits.
    void updateChangeCount(ChangeKind kind);
    int changeCount() const { return m_changeCountSource ? m_changeCountSource() : m_changeCount; }
    bool isDocumentEdited() const { return changeCount() != 0; }
    // An editor with an undo history counts from it instead, so that undoing
    // back to the saved state leaves nothing to save.
    void setChangeCountSource(std::function<int()> source) { m_changeCountSource = std::move(source); }
    // The signing choice of the form; a change counts as an edit.
    void setSaveSignedWithCommonName(const std::optional<QString>& name);

    // The window. makeWindowControllers gives an empty document its new
    // profile; false when the domains have no general domain.
    bool makeWindowControllers();
    void setNoticePresenter(DocumentNoticePresenter* presenter) { m_noticePresenter = presenter; }
    void setSavePanelPresenter(SavePanelPresenter* presenter) { m_savePanelPresenter = presenter; }
    void setEventReporter(DocumentEventReporter* reporter) { m_eventReporter = reporter; }
    // Told when the profile added or removed its removal password payloads by
    // itself, following "HasRemovalPasscode": the window's section follows.
    void setRemovalPasswordPayloadsHandler(std::function<void()> handler) {
        m_removalPasswordPayloadsHandler = std::move(handler);
    }
    // The notices of an opened file, once the window is set up.
    void presentOpeningNotices();
    // Notices raised while the window is hidden wait for this, oldest first.
    void windowDidShow();
    void windowDidHide() { m_isWindowVisible = false; }
    int queuedNoticeCount() const { return int(m_queuedNotices.size()); }

    // Encrypted payloads. The user's identities that the sealed payloads are for.
    QStringList decryptingIdentityNames() const;
    // Opens the sealed payloads with an identity (its passphrase is asked
    // through the signing services); they become ordinary payloads, sealed
    // again on save for the recipients found among the identities. A notice
    // names the others.
    Expected<bool, DocumentError> decryptPayloads(const QString& identityName);
    // Seals the payloads for these certificate files (PEM or DER) on every
    // save; none saves them open. A change counts as an edit.
    Expected<bool, DocumentError> encryptFor(const QStringList& certificateFiles);
    // The window rebuilds its sections when decrypted payloads arrive.
    void setPayloadsDecryptedHandler(std::function<void()> handler) {
        m_payloadsDecrypted = std::move(handler);
    }

    // Saving. The user's commands: a warning first when the window counts
    // invalid values (in the forms it has built), then the save.
    void saveDocument(int invalidValueCount, SaveCompletion completion);
    void saveDocumentAs(int invalidValueCount, SaveCompletion completion);
    // A save, save-as or save-to with no warning; asks for a place when it
    // needs one. Autosaves go through writeToFile.
    Expected<SaveResult, DocumentError> save(SaveOperation operation);
    // Writes the profile to a place already chosen.
    Expected<bool, DocumentError> writeToFile(const QString& filePath, SaveOperation operation);
    // The bytes of the file: the profile, signed when it names an identity.
    Expected<QByteArray, DocumentError> data();
    void setCommitGate(AtomicFileWriter::CommitGate gate) { m_writer = AtomicFileWriter(std::move(gate)); }

protected:
    // The save or save-as of the user's command, once confirmed; the
    // completion may come later, after a notice.
    virtual void performSave(SaveOperation operation, const SaveCompletion& completion);
    // The write of a save to a place already chosen, as save() does it.
    Expected<SaveResult, DocumentError> saveToPath(const QString& filePath, SaveOperation operation);
    virtual void prepareSavePanel(SavePanelRequest& request) const { (void)request; }
    void raiseNotice(const DocumentNotice& notice, std::function<void(int tag)> onReply);
    DocumentNoticePresenter* noticePresenter() const { return m_noticePresenter; }

private:
    class ProfileChangeCounter;
    using QueuedNotice = std::function<void()>;

    void adoptProfile(Profile::Pointer profile);
    bool isNoticeSuppressed(const DocumentNotice& notice) const;
    void showNotice(const DocumentNotice& notice, const std::function<void(int tag)>& onReply);
    void confirmSaveDespiteInvalidValues(int invalidValueCount, std::function<void(bool proceed)> decide);
    void fixAndSave();
    std::optional<SavePanelChoice> chooseSavePlace();
    void takeSigningChoice(const std::optional<QString>& name);
    void updateDefaultsAfterSave();
    void countSigningNameChange(const std::optional<QString>& before);
    void raiseEncryptionNotice(const QByteArray& envelope);
    void reportPayloads(const QList<Payload::Pointer>& payloads, const QString& eventName) const;
    void reportAddedPayloads();
    void rememberPayloads();

    Profile::DomainList m_domains;
    std::shared_ptr<const ProfileEnvironment> m_environment;
    UserDefaults& m_defaults;
    std::shared_ptr<ProfileChangeCounter> m_changeCounter;
    // Replies that arrive after the document is gone find this expired.
    std::shared_ptr<ProfileDocument*> m_lifetime;
    Profile::Pointer m_profile;
    std::optional<QString> m_filePath;
    QString m_displayName;
    std::optional<bool> m_shouldBeValueValidatedOnLaunch;
    bool m_isTransient = false;
    bool m_suspendChangeCountUpdates = false;
    bool m_observesSigningName = false;
    int m_changeCount = 0;
    std::function<int()> m_changeCountSource;
    std::function<void()> m_removalPasswordPayloadsHandler;
    DocumentNoticePresenter* m_noticePresenter = nullptr;
    SavePanelPresenter* m_savePanelPresenter = nullptr;
    DocumentEventReporter* m_eventReporter = nullptr;
    // The payloads as last seen by the window, to tell which are added. Weak:
    // a removed payload must not live on, nor die, because of the document.
    std::optional<QList<std::weak_ptr<Payload>>> m_knownPayloads;
    bool m_isWindowVisible = false;
    QList<QueuedNotice> m_queuedNotices;
    AtomicFileWriter m_writer;
    std::function<void()> m_payloadsDecrypted;
};

} // namespace quorlin
