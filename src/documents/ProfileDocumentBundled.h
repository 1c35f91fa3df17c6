#pragma once

#include "documents/ProfileDocument.h"

#include <QFile>
#include <QString>

#include <functional>
#include <optional>

namespace quorlin {

// The document the editor uses for every file: a ProfileDocument that also
// knows the profile library of Quorlin, the sibling product. A profile
// saved in the library is named after its identifier; a change of the
// identifier renames the file, and a clash with another profile of the
// library is resolved with the user. A new profile that Quorlin put in the
// library for editing goes away again when it is closed unsaved.
class ProfileDocumentBundled : public ProfileDocument {
public:
    // The folder of the library now, or nothing when there is none; asked at
    // each use, so that a library that moves is followed.
    using LibraryFolder = std::function<std::optional<QString>()>;

    ProfileDocumentBundled(Profile::DomainList domains, std::shared_ptr<const ProfileEnvironment> environment,
                           UserDefaults& defaults, LibraryFolder library);
    // Closing: an unsaved template of the sibling product is deleted.
    ~ProfileDocumentBundled() override;

    Expected<bool, DocumentError> readFromData(const QByteArray& data) override;

    // Whether the file lies in the library.
    bool isQuorlinLibraryProfile() const;
    // Whether the sibling product has a library now: its commands show only then.
    bool hasQuorlinLibrary() const { return currentLibrary().has_value(); }
    // The sibling product made the file as a new profile ("IsNewProfile").
    bool isLoadedNew() const { return m_isLoadedNew; }
    // Saves the profile in the library under its identifier. The completion
    // may come after the user answered a clash.
    void saveToQuorlinLibrary(const SaveCompletion& completion);

    // Moves a file to the desktop's trash; the platform's by default.
    using TrashItem = std::function<bool(const QString& filePath)>;
    void setTrash(TrashItem trash) { m_trash = std::move(trash); }

    // Whether `path` lies inside `folder`, by whole path components.
    static bool isInLibrary(const QString& path, const std::optional<QString>& folder);

protected:
    void performSave(SaveOperation operation, const SaveCompletion& completion) override;
    void prepareSavePanel(SavePanelRequest& request) const override;

private:
    std::optional<QString> currentLibrary() const { return m_library ? m_library() : std::nullopt; }
    std::optional<QString> identifier() const;
    QString targetPath(const QString& library, const QString& identifier) const;
    void saveToLibrary(const SaveCompletion& completion);
    void answerClash(int reply, const QString& target, const SaveCompletion& completion);
    void saveWithNewIdentifier(const SaveCompletion& completion);
    void finishSave(const Expected<SaveResult, DocumentError>& result, const SaveCompletion& completion);
    void failLibrarySave(DocumentNotice::LibraryFailure failure, const SaveCompletion& completion);

    LibraryFolder m_library;
    TrashItem m_trash = [](const QString& filePath) { return QFile::moveToTrash(filePath); };
    bool m_isLoadedNew = false;
    bool m_profileWasSavedOnce = false;
    std::optional<QString> m_oldFileToRemove;
};

} // namespace quorlin
