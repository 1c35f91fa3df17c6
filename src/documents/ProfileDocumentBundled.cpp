#include "documents/ProfileDocumentBundled.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

namespace quorlin {

namespace {

// Past this many fresh identifiers that all clash, the library is taken to
// be in a state no new identifier will fix.
constexpr int maximumIdentifierAttempts = 1000;

QString cleanPath(const QString& path) {
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

} // namespace

ProfileDocumentBundled::ProfileDocumentBundled(Profile::DomainList domains,
                                               std::shared_ptr<const ProfileEnvironment> environment,
                                               UserDefaults& defaults, LibraryFolder library)
    : ProfileDocument(std::move(domains), std::move(environment), defaults)
    , m_library(std::move(library)) {}

ProfileDocumentBundled::~ProfileDocumentBundled() {
    if (m_isLoadedNew && !m_profileWasSavedOnce && filePath())
        QFile::remove(*filePath());
}

Expected<bool, DocumentError> ProfileDocumentBundled::readFromData(const QByteArray& data) {
    auto read = ProfileDocument::readFromData(data);
    if (read && profile()) {
        const auto& properties = profile()->znthProfileProperties();
        m_isLoadedNew = properties && properties->boolean(QStringLiteral("IsNewProfile")).value_or(false);
    }
    return read;
}

bool ProfileDocumentBundled::isInLibrary(const QString& path, const std::optional<QString>& folder) {
    if (!folder || folder->isEmpty() || path.isEmpty())
        return false;
    return cleanPath(path).startsWith(cleanPath(*folder) + QLatin1Char('/'));
}

bool ProfileDocumentBundled::isQuorlinLibraryProfile() const {
    return filePath() && isInLibrary(*filePath(), currentLibrary());
}

std::optional<QString> ProfileDocumentBundled::identifier() const {
    const auto identifier = profile() ? profile()->payloadIdentifier() : std::nullopt;
    if (!identifier || identifier->isEmpty())
        return std::nullopt;
    return identifier;
}

QString ProfileDocumentBundled::targetPath(const QString& library, const QString& identifier) const {
    return QDir(library).filePath(identifier + QStringLiteral(".mobileconfig"));
}

// A library profile whose identifier changed is saved under its new name,
// and the file of the old name goes once the save holds.
void ProfileDocumentBundled::performSave(SaveOperation operation, const SaveCompletion& completion) {
    const auto id = identifier();
    const bool renamed = id && filePath() && QFileInfo(*filePath()).completeBaseName() != *id;
    if (operation == SaveOperation::save && isQuorlinLibraryProfile() && renamed) {
        m_oldFileToRemove = filePath();
        saveToLibrary(completion);
        return;
    }
    m_oldFileToRemove.reset();
    finishSave(save(operation), completion);
}

void ProfileDocumentBundled::saveToQuorlinLibrary(const SaveCompletion& completion) {
    m_oldFileToRemove = filePath();
    saveToLibrary(completion);
}

void ProfileDocumentBundled::prepareSavePanel(SavePanelRequest& request) const {
    const auto id = identifier();
    if (id && request.currentFilePath && isInLibrary(*request.currentFilePath, currentLibrary()))
        request.suggestedName = *id;
}

void ProfileDocumentBundled::saveToLibrary(const SaveCompletion& completion) {
    if (!identifier() && profile())
        profile()->rootPayload()->generateIdentifier();
    const auto id = identifier();
    if (!id) {
        failLibrarySave(DocumentNotice::LibraryFailure::noIdentifier, completion);
        return;
    }
    const auto library = currentLibrary();
    if (!library) {
        failLibrarySave(DocumentNotice::LibraryFailure::libraryNotFound, completion);
        return;
    }
    const QString target = targetPath(*library, *id);
    const bool isOwnFile = filePath() && cleanPath(*filePath()) == cleanPath(target);
    if (QFileInfo::exists(target) && !isOwnFile) {
        raiseNotice(DocumentNotice::quorlinLibraryIdentifierClash(),
                    [this, target, completion](int reply) { answerClash(reply, target, completion); });
        return;
    }
    finishSave(saveToPath(target, SaveOperation::saveAs), completion);
}

void ProfileDocumentBundled::answerClash(int reply, const QString& target, const SaveCompletion& completion) {
    switch (reply) {
    case DocumentNotice::generateNewIdentifier:
        saveWithNewIdentifier(completion);
        return;
    case DocumentNotice::replaceExisting:
        if (!m_trash(target)) {
            failLibrarySave(DocumentNotice::LibraryFailure::couldNotTrash, completion);
            return;
        }
        finishSave(saveToPath(target, SaveOperation::saveAs), completion);
        return;
    default:
        m_oldFileToRemove.reset();
        completion(SaveResult{});
    }
}

void ProfileDocumentBundled::saveWithNewIdentifier(const SaveCompletion& completion) {
    const Payload::Pointer root = profile()->rootPayload();
    for (int attempt = 0; attempt < maximumIdentifierAttempts; ++attempt) {
        if (const auto uuidKey = root->payloadUUIDKey())
            uuidKey->setValue(plist::Value(profile()->makeUniquePayloadUUID()));
        const auto id = root->generateIdentifier();
        const auto library = currentLibrary();
        if (!id || !library) {
            failLibrarySave(DocumentNotice::LibraryFailure::libraryNotFound, completion);
            return;
        }
        const QString target = targetPath(*library, *id);
        if (!QFileInfo::exists(target)) {
            finishSave(saveToPath(target, SaveOperation::saveAs), completion);
            return;
        }
    }
    failLibrarySave(DocumentNotice::LibraryFailure::noUniqueIdentifier, completion);
}

// After a save: the file of the old name leaves the library, and the user
// hears where the profile went.
void ProfileDocumentBundled::finishSave(const Expected<SaveResult, DocumentError>& result,
                                        const SaveCompletion& completion) {
    const auto oldFile = std::exchange(m_oldFileToRemove, std::nullopt);
    const bool saved = result && result->saved;
    if (saved)
        m_profileWasSavedOnce = true;
    if (saved && oldFile && isInLibrary(*oldFile, currentLibrary()) && filePath() &&
        cleanPath(*oldFile) != cleanPath(*filePath()) && QFileInfo::exists(*oldFile))
        QFile::remove(*oldFile);
    if (saved && isQuorlinLibraryProfile())
        raiseNotice(DocumentNotice::savedToQuorlinLibrary(profile()->rootPayload()->displayName()), {});
    completion(result);
}

void ProfileDocumentBundled::failLibrarySave(DocumentNotice::LibraryFailure failure,
                                             const SaveCompletion& completion) {
    m_oldFileToRemove.reset();
    raiseNotice(DocumentNotice::quorlinLibrarySaveFailed(failure), {});
    completion(SaveResult{});
}

} // namespace quorlin
