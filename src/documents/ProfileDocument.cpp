#include "documents/ProfileDocument.h"

#include "documents/DocumentErrorWords.h"
#include "documents/DocumentEventReporter.h"
#include "documents/DocumentNoticePresenter.h"
#include "documents/SavePanelPresenter.h"
#include "plist/DefaultsKey.h"
#include "plist/PlistFormat.h"
#include "plist/UserDefaults.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace quorlin {

namespace {

const QString payloadDisplayNameName = QStringLiteral("PayloadDisplayName");
const QString organizationDefaultName = QStringLiteral(".PayloadOrganization");
const QString consentTextDefaultName = QStringLiteral(".ConsentText");
const QString untitledName = QStringLiteral("Untitled");

int codeOf(Profile::Errors error) {
    switch (error) {
    case Profile::Errors::profileParsingFailedProfileServicePayload:
        return DocumentError::profileParsingFailedProfileServicePayload;
    case Profile::Errors::profileParsingFailedEnrollmentServicePayload:
        return DocumentError::profileParsingFailedEnrollmentServicePayload;
    default:
        return DocumentError::profileParsingFailedUnknown;
    }
}

// A template of the sibling product is new, not saved: nothing to validate yet.
bool isNewProfileTemplate(const Profile& profile) {
    const auto& properties = profile.znthProfileProperties();
    const auto isNew = properties ? properties->number(QStringLiteral("IsNewProfile")) : std::nullopt;
    return isNew && *isNew != 0;
}

bool hasIdentifierCollision(const QList<Profile::ValidationError>& errors) {
    return std::any_of(errors.begin(), errors.end(), [](const Profile::ValidationError& error) {
        return error.kind == Profile::ValidationErrorKind::nonUniquePayloadUUIDFound ||
               error.kind == Profile::ValidationErrorKind::nonUniquePayloadIdentifierFound;
    });
}

bool updatesDefaults(ProfileDocument::SaveOperation operation) {
    return operation == ProfileDocument::SaveOperation::save ||
           operation == ProfileDocument::SaveOperation::saveAs ||
           operation == ProfileDocument::SaveOperation::saveTo;
}

} // namespace

// Edits of the profile reach the document's change count through this; the
// profile holds it weakly, so the document owns it.
class ProfileDocument::ProfileChangeCounter : public ProfileDelegate {
public:
    explicit ProfileChangeCounter(ProfileDocument& document)
        : m_document(document) {}
    void profileDidChange(Profile&, Payload*, PreferenceKey* key) override {
        m_document.updateChangeCount(ChangeKind::done);
        if (!key)
            m_document.reportAddedPayloads();
    }
    void profileRemovalPasswordPayloadCountDidChange(Profile&) override {}

private:
    ProfileDocument& m_document;
};

Expected<Profile::Pointer, DocumentError>
ProfileDocument::makeProfile(const QByteArray& data, const Profile::DomainList& domains,
                             std::shared_ptr<const ProfileEnvironment> environment,
                             const std::optional<QString>& filePath) {
    auto parsed = Profile::parseProfile(data, domains, std::move(environment));
    if (!parsed)
        return fail(DocumentError::refusal(codeOf(parsed.error()), filePath));
    return std::move(parsed.value());
}

ProfileDocument::ProfileDocument(Profile::DomainList domains,
                                 std::shared_ptr<const ProfileEnvironment> environment,
                                 UserDefaults& defaults)
    : m_domains(std::move(domains))
    , m_environment(std::move(environment))
    , m_defaults(defaults)
    , m_changeCounter(std::make_shared<ProfileChangeCounter>(*this))
    , m_lifetime(std::make_shared<ProfileDocument*>(this)) {}

ProfileDocument::~ProfileDocument() = default;

Expected<bool, DocumentError> ProfileDocument::readFromData(const QByteArray& data) {
    if (data.isEmpty()) {
        m_shouldBeValueValidatedOnLaunch = false;
        return true;
    }
    auto made = makeProfile(data, m_domains, m_environment, m_filePath);
    if (!made)
        return fail(made.error());
    adoptProfile(std::move(made.value()));
    // Without a file a plain save must ask for a place, so the signed file
    // can't be overwritten by an unsigned copy.
    if (m_profile->loadedSignedButCannotBeSignedWithLoadedIdentity())
        m_filePath.reset();
    m_shouldBeValueValidatedOnLaunch = !isNewProfileTemplate(*m_profile);
    reportPayloads(m_profile->configurationPayloads(), DocumentEventReporter::payloadLoaded);
    return true;
}

Expected<bool, DocumentError> ProfileDocument::readFromFile(const QString& filePath) {
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return fail(DocumentError::fileFailed(int(file.error()), file.errorString()));
    // Refused unread: the readers would refuse it too, but only after it had
    // taken its size in memory, and without naming the file.
    const qint64 maxBytes = plist::ReadLimits{}.maxBytes;
    if (file.size() > maxBytes)
        return fail(
            DocumentError::fileFailed(int(QFileDevice::ReadError),
                                      DocumentErrorWords::tooLargeToRead.arg(QFileInfo(filePath).fileName())
                                          .arg((file.size() + (1 << 20) - 1) >> 20)
                                          .arg(maxBytes >> 20)));
    m_filePath = filePath;
    return readFromData(file.readAll());
}

void ProfileDocument::adoptProfile(Profile::Pointer profile) {
    profile->setDelegate(m_changeCounter);
    m_profile = std::move(profile);
}

QString ProfileDocument::displayName() const {
    if (!m_displayName.isEmpty())
        return m_displayName;
    return m_filePath ? QFileInfo(*m_filePath).completeBaseName() : untitledName;
}

void ProfileDocument::updateChangeCount(ChangeKind kind) {
    if (m_suspendChangeCountUpdates)
        return;
    m_isTransient = false;
    switch (kind) {
    case ChangeKind::done:
        ++m_changeCount;
        break;
    case ChangeKind::undone:
        --m_changeCount;
        break;
    case ChangeKind::cleared:
        m_changeCount = 0;
        break;
    }
}

void ProfileDocument::setSaveSignedWithCommonName(const std::optional<QString>& name) {
    if (!m_profile)
        return;
    const auto before = m_profile->saveSignedWithCommonName();
    m_profile->setSaveSignedWithCommonName(name);
    countSigningNameChange(before);
}

// The signing choice isn't a key of the profile, so its changes are counted
// here, once the window watches them.
void ProfileDocument::countSigningNameChange(const std::optional<QString>& before) {
    if (m_observesSigningName && m_profile && m_profile->saveSignedWithCommonName() != before)
        updateChangeCount(ChangeKind::done);
}

bool ProfileDocument::makeWindowControllers() {
    if (!m_profile) {
        auto profile = Profile::makeNewProfile(m_domains, m_environment);
        if (!profile)
            return false;
        profile->setDelegate(m_changeCounter);
        // Naming the new profile after its window is no edit of the user's.
        m_suspendChangeCountUpdates = true;
        if (const auto key = profile->rootPayload()->payloadDisplayNameKey())
            key->setValue(plist::Value(displayName()));
        m_suspendChangeCountUpdates = false;
        m_profile = std::move(profile);
        m_shouldBeValueValidatedOnLaunch = false;
    }
    m_observesSigningName = true;
    rememberPayloads();
    return true;
}

void ProfileDocument::reportPayloads(const QList<Payload::Pointer>& payloads,
                                     const QString& eventName) const {
    if (!m_eventReporter)
        return;
    QStringList domains;
    for (const auto& payload : payloads)
        domains.append(payload->domainPrototype().domainString());
    m_eventReporter->report(domains, eventName);
}

// Only once the window watches the profile; removals report nothing.
void ProfileDocument::reportAddedPayloads() {
    if (!m_knownPayloads || !m_profile)
        return;
    QList<Payload::Pointer> added;
    for (const auto& payload : m_profile->configurationPayloads()) {
        const bool known =
            std::any_of(m_knownPayloads->begin(), m_knownPayloads->end(),
                        [&](const std::weak_ptr<Payload>& seen) { return seen.lock() == payload; });
        if (!known)
            added.append(payload);
    }
    rememberPayloads();
    if (!added.isEmpty())
        reportPayloads(added, DocumentEventReporter::payloadAdded);
}

void ProfileDocument::rememberPayloads() {
    m_knownPayloads.emplace();
    for (const auto& payload : m_profile->configurationPayloads())
        m_knownPayloads->append(payload);
}

void ProfileDocument::presentOpeningNotices() {
    if (!m_profile)
        return;
    if (m_profile->loadedSignedButCannotBeSignedWithLoadedIdentity())
        raiseNotice(DocumentNotice::signingIdentityMissing(), {});
    if (m_profile->malformedPayloadContentRemoved())
        raiseNotice(DocumentNotice::malformedPayloadContentRemoved(), {});
    if (hasIdentifierCollision(m_profile->validationErrors())) {
        raiseNotice(DocumentNotice::iOS15SilentInstallIncompatibility(), [this](int tag) {
            if (tag == 1)
                fixAndSave();
        });
    }
}

bool ProfileDocument::isNoticeSuppressed(const DocumentNotice& notice) const {
    return m_defaults.boolean(notice.suppressionKey) == true;
}

// A notice goes up on a visible window at once; otherwise it waits for the
// window to show.
void ProfileDocument::raiseNotice(const DocumentNotice& notice, std::function<void(int tag)> onReply) {
    if (isNoticeSuppressed(notice))
        return;
    if (m_noticePresenter && m_isWindowVisible) {
        showNotice(notice, onReply);
        return;
    }
    m_queuedNotices.append([this, notice, onReply] { showNotice(notice, onReply); });
}

void ProfileDocument::showNotice(const DocumentNotice& notice, const std::function<void(int tag)>& onReply) {
    const std::weak_ptr<ProfileDocument*> alive = m_lifetime;
    auto handleReply = [this, alive, key = notice.suppressionKey, onReply](const NoticeReply& reply) {
        if (alive.expired())
            return;
        // The check box silences the notice whichever button was pressed.
        if (reply.suppress)
            m_defaults.set(key, plist::Value(true));
        if (onReply)
            onReply(reply.tag);
    };
    m_noticePresenter->present(notice, std::move(handleReply));
}

void ProfileDocument::windowDidShow() {
    m_isWindowVisible = true;
    if (!m_noticePresenter)
        return;
    // Emptied first: a notice that a reply raises at once isn't run twice.
    const QList<QueuedNotice> queued = std::exchange(m_queuedNotices, {});
    for (const QueuedNotice& show : queued)
        show();
}

void ProfileDocument::saveDocument(int invalidValueCount, SaveCompletion completion) {
    confirmSaveDespiteInvalidValues(invalidValueCount, [this, completion](bool proceed) {
        completion(proceed ? save(SaveOperation::save) : SaveResult{});
    });
}

void ProfileDocument::saveDocumentAs(int invalidValueCount, SaveCompletion completion) {
    confirmSaveDespiteInvalidValues(invalidValueCount, [this, completion](bool proceed) {
        completion(proceed ? save(SaveOperation::saveAs) : SaveResult{});
    });
}

void ProfileDocument::confirmSaveDespiteInvalidValues(int invalidValueCount,
                                                      std::function<void(bool proceed)> decide) {
    if (m_defaults.boolean(DefaultsKey::noticeSuppressProfileInvalid) == true || invalidValueCount < 1) {
        decide(true);
        return;
    }
    raiseNotice(DocumentNotice::profileInvalidOnSave(invalidValueCount),
                [decide](int tag) { decide(tag == 1); });
}

void ProfileDocument::fixAndSave() {
    if (!m_profile)
        return;
    m_profile->repairValidationErrors();
    const auto saved = save(SaveOperation::save);
    if (!saved && m_noticePresenter)
        m_noticePresenter->presentError(saved.error());
}

Expected<ProfileDocument::SaveResult, DocumentError> ProfileDocument::save(SaveOperation operation) {
    QString filePath = m_filePath.value_or(QString());
    if (operation != SaveOperation::save || !m_filePath) {
        const auto choice = chooseSavePlace();
        if (!choice)
            return SaveResult{};
        takeSigningChoice(choice->signingCommonName);
        filePath = choice->filePath;
    }
    const int changesBeforeWrite = m_changeCount;
    const auto written = writeToFile(filePath, operation);
    if (!written)
        return fail(written.error());
    if (operation != SaveOperation::saveTo) {
        m_filePath = filePath;
        m_displayName.clear();
        // Edits made while writing (the repair of identifiers, the signing
        // name the save settles) stay counted.
        m_changeCount -= changesBeforeWrite;
    }
    return SaveResult{true, filePath};
}

std::optional<SavePanelChoice> ProfileDocument::chooseSavePlace() {
    if (!m_savePanelPresenter)
        return std::nullopt;
    SavePanelRequest request;
    request.currentFilePath = m_filePath;
    if (const auto& signing = m_environment->signingServices)
        request.availableIdentities = signing->identityCommonNames();
    if (m_profile) {
        const auto displayName = m_profile->rootPayload()->stringValue(payloadDisplayNameName);
        if (!m_filePath && displayName && !displayName->isEmpty())
            request.suggestedName = *displayName;
        // The profile's identity, else the last one used on this machine,
        // else "Do not sign".
        const auto& name = m_profile->saveSignedWithCommonName();
        const auto lastUsed = m_defaults.string(DefaultsKey::lastUsedSigningIdentityCommonName);
        if (name && request.availableIdentities.contains(*name))
            request.signingCommonName = name;
        else if (name && lastUsed && request.availableIdentities.contains(*lastUsed))
            request.signingCommonName = lastUsed;
    }
    return m_savePanelPresenter->chooseSavePlace(request);
}

void ProfileDocument::takeSigningChoice(const std::optional<QString>& name) {
    if (name)
        setSaveSignedWithCommonName(name);
}

Expected<bool, DocumentError> ProfileDocument::writeToFile(const QString& filePath, SaveOperation operation) {
    const auto bytes = data();
    if (!bytes)
        return fail(bytes.error());
    const auto written = m_writer.write(filePath, *bytes);
    if (!written)
        return fail(written.error());
    if (updatesDefaults(operation)) {
        updateDefaultsAfterSave();
        reportPayloads(m_profile->configurationPayloads(), DocumentEventReporter::payloadSaved);
    }
    return true;
}

Expected<QByteArray, DocumentError> ProfileDocument::data() {
    if (!m_profile)
        return fail(DocumentError::noData());
    const auto before = m_profile->saveSignedWithCommonName();
    const auto bytes = m_profile->profileData(before);
    countSigningNameChange(before);
    if (!bytes)
        return fail(DocumentError::noData());
    return *bytes;
}

void ProfileDocument::updateDefaultsAfterSave() {
    if (m_defaults.boolean(DefaultsKey::preferencesDefaultsAutomaticallyUpdate) != true)
        return;
    if (m_profile) {
        const auto copyDefault = [this](const QString& name, const QString& defaultsKey) {
            const auto key = m_profile->preferencesDefault(name);
            const plist::Value* value = key ? key->value().plistValue() : nullptr;
            if (value && value->isString())
                m_defaults.set(defaultsKey, *value);
        };
        copyDefault(organizationDefaultName, DefaultsKey::preferencesDefaultsOrganizationName);
        copyDefault(consentTextDefaultName, DefaultsKey::preferencesDefaultsConsentText);
        if (const auto& name = m_profile->saveSignedWithCommonName()) {
            m_defaults.set(DefaultsKey::preferencesDefaultsSigningIdentity, plist::Value(*name));
            return;
        }
    }
    m_defaults.remove(DefaultsKey::preferencesDefaultsSigningIdentity);
}

} // namespace quorlin
