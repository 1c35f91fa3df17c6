#include "documents/ProfileDocument.h"

#include "documents/BoundedFileReader.h"
#include "documents/DocumentErrorWords.h"
#include "documents/DocumentEventReporter.h"
#include "documents/DocumentNoticePresenter.h"
#include "documents/EnvelopeServices.h"
#include "documents/EnvelopeWords.h"
#include "documents/SavePanelPresenter.h"
#include "plist/DefaultsKey.h"
#include "plist/PlistFormat.h"
#include "plist/PlistReader.h"
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
using EncryptionFailure = ProfileEncryptionServices::Failure;

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
    void profileRemovalPasswordPayloadCountDidChange(Profile&) override {
        if (m_document.m_removalPasswordPayloadsHandler)
            m_document.m_removalPasswordPayloadsHandler();
    }

private:
    ProfileDocument& m_document;
};

namespace {

// What is wrong with a property list that should be a profile's.
QString contentFault(const QByteArray& data, const QString& unreadable) {
    const auto read = plist::PlistReader::read(data);
    if (!read)
        return unreadable + read.error().toString();
    const plist::Dictionary* root = read->root.dictionary();
    if (!root)
        return QStringLiteral("the property list holds no dictionary at its top");
    const auto type = root->string(QStringLiteral("PayloadType"));
    if (type != QStringLiteral("Configuration"))
        return QStringLiteral("its “PayloadType” is “%1”, not “Configuration”").arg(type.value_or(QString()));
    if (!root->array(QStringLiteral("PayloadContent")))
        return QStringLiteral("it has no “PayloadContent” array");
    return {};
}

// Where and why a file was refused, for the words after the refusal's own.
QString refusalReason(const QByteArray& data, const ProfileEnvironment& environment,
                      const Profile::DomainList& domains) {
    const bool hasGeneralDomain = std::any_of(
        domains.begin(), domains.end(), [](const auto& domain) { return domain->domainString().isEmpty(); });
    if (!hasGeneralDomain)
        return QStringLiteral("the manifests in use have no domain for the general settings");
    if (plist::PlistReader::read(data))
        return contentFault(data, {});
    // DER starts with a SEQUENCE; PEM with its armour.
    const bool looksSigned = data.startsWith('\x30') || data.startsWith("-----BEGIN");
    const auto signedContent =
        environment.signingServices ? environment.signingServices->readSignedContent(data) : std::nullopt;
    if (signedContent)
        return contentFault(signedContent->content,
                            QStringLiteral("the signed content is not a property list: "));
    if (looksSigned) {
        const QString fault =
            environment.signingServices ? environment.signingServices->signedMessageFault(data) : QString();
        return fault.isEmpty() ? QStringLiteral("it looks like a CMS signed message, but one that can't be "
                                                "decoded (damaged, cut short or of another kind)")
                               : fault;
    }
    return contentFault(data, QStringLiteral("not a property list: "));
}

} // namespace

Expected<Profile::Pointer, DocumentError>
ProfileDocument::makeProfile(const QByteArray& data, const Profile::DomainList& domains,
                             std::shared_ptr<const ProfileEnvironment> environment,
                             const std::optional<QString>& filePath) {
    auto parsed = Profile::parseProfile(data, domains, environment);
    if (!parsed) {
        DocumentError refusal = DocumentError::refusal(codeOf(parsed.error()), filePath);
        if (parsed.error() == Profile::Errors::profileParsingFailedUnknown)
            refusal.reason = refusalReason(data, *environment, domains);
        return fail(refusal);
    }
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
    // Saving the new profile over the payload's file would change what the file is.
    if (m_profile->loadedSignedButCannotBeSignedWithLoadedIdentity() || m_profile->wrappedSinglePayload())
        m_filePath.reset();
    m_shouldBeValueValidatedOnLaunch = !isNewProfileTemplate(*m_profile);
    reportPayloads(m_profile->configurationPayloads(), DocumentEventReporter::payloadLoaded);
    return true;
}

Expected<bool, DocumentError> ProfileDocument::readFromFile(const QString& filePath) {
    // Refused unread: the readers would refuse it too, but only after it had
    // taken its size in memory, and without naming the file.
    const qint64 maxBytes = plist::ReadLimits{}.maxBytes;
    if (const QFileInfo info(filePath); info.isFile() && info.size() > maxBytes)
        return fail(DocumentError::fileFailed(int(QFileDevice::ReadError),
                                              DocumentErrorWords::tooLargeToRead.arg(info.fileName())
                                                  .arg((info.size() + (1 << 20) - 1) >> 20)
                                                  .arg(maxBytes >> 20)));
    const auto bytes = BoundedFileReader::read(filePath);
    if (!bytes)
        return fail(DocumentError::fileFailed(int(QFileDevice::ReadError), bytes.error()));
    m_filePath = filePath;
    return readFromData(*bytes);
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
    if (const auto& envelope = m_profile->encryptedPayloadContent())
        raiseEncryptionNotice(*envelope);
    if (m_profile->wrappedSinglePayload())
        raiseNotice(DocumentNotice::singlePayloadWrapped(), {});
    if (hasIdentifierCollision(m_profile->validationErrors())) {
        raiseNotice(DocumentNotice::iOS15SilentInstallIncompatibility(), [this](int tag) {
            if (tag == 1)
                fixAndSave();
        });
    }
}

// The first of the user's identities that can decrypt is offered; a failure
// leaves the sealed payloads as they were.
void ProfileDocument::raiseEncryptionNotice(const QByteArray& envelope) {
    const auto& services = m_environment->encryptionServices;
    Expected<QList<EnvelopeRecipient>, EncryptionFailure> recipients =
        fail(EncryptionFailure::malformedEnvelope);
    if (services)
        recipients = services->recipients(envelope);
    const QString named =
        recipients ? EnvelopeWords::describe(*recipients) : EnvelopeWords::describe(recipients.error());
    const QStringList identities = decryptingIdentityNames();
    if (identities.isEmpty()) {
        raiseNotice(DocumentNotice::payloadsEncrypted(named), {});
        return;
    }
    raiseNotice(DocumentNotice::payloadsDecryptable(named, identities.first()),
                [this, identity = identities.first()](int tag) {
                    if (tag != 1)
                        return;
                    const auto decrypted = decryptPayloads(identity);
                    if (!decrypted && m_noticePresenter)
                        m_noticePresenter->presentError(decrypted.error());
                });
}

QStringList ProfileDocument::decryptingIdentityNames() const {
    const auto& services = m_environment->encryptionServices;
    if (!m_profile || !m_profile->encryptedPayloadContent() || !services)
        return {};
    return services->recipientIdentityNames(*m_profile->encryptedPayloadContent());
}

Expected<bool, DocumentError> ProfileDocument::decryptPayloads(const QString& identityName) {
    if (!m_profile)
        return fail(DocumentError::noData());
    const auto unresolved = m_profile->decryptPayloadContent(identityName);
    if (!unresolved)
        return fail(DocumentError::envelopeFailed(unresolved.error()));
    // Payloads that were in the file all along are no additions of the user's.
    if (m_knownPayloads)
        rememberPayloads();
    if (!unresolved->isEmpty())
        raiseNotice(DocumentNotice::recipientsMissing(EnvelopeWords::describe(*unresolved)), {});
    if (m_payloadsDecrypted)
        m_payloadsDecrypted();
    return true;
}

Expected<bool, DocumentError> ProfileDocument::encryptFor(const QStringList& certificateFiles) {
    if (!m_profile)
        return fail(DocumentError::noData());
    QList<QByteArray> certificates;
    for (const QString& file : certificateFiles) {
        const auto certificate = EnvelopeServices::readCertificateFile(file);
        if (!certificate)
            return fail(DocumentError::envelopeFailed(certificate.error()));
        certificates.append(*certificate);
    }
    if (!certificates.isEmpty() && m_profile->encryptedPayloadContent())
        return fail(DocumentError::envelopeFailed(EncryptionFailure::stillEncrypted));
    if (certificates == m_profile->encryptForCertificates())
        return true;
    m_profile->setEncryptForCertificates(std::move(certificates));
    updateChangeCount(ChangeKind::done);
    return true;
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
        if (proceed)
            performSave(SaveOperation::save, completion);
        else
            completion(SaveResult{});
    });
}

void ProfileDocument::performSave(SaveOperation operation, const SaveCompletion& completion) {
    completion(save(operation));
}

void ProfileDocument::saveDocumentAs(int invalidValueCount, SaveCompletion completion) {
    confirmSaveDespiteInvalidValues(invalidValueCount, [this, completion](bool proceed) {
        if (proceed)
            performSave(SaveOperation::saveAs, completion);
        else
            completion(SaveResult{});
    });
}

void ProfileDocument::confirmSaveDespiteInvalidValues(int invalidValueCount,
                                                      std::function<void(bool proceed)> decide) {
    if (m_defaults.boolean(DefaultsKey::noticeSuppressProfileInvalid) == true || invalidValueCount < 1) {
        decide(true);
        return;
    }
    raiseNotice(
        DocumentNotice::profileInvalidOnSave(invalidValueCount, m_profile ? m_profile->heldValueCount() : 0),
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
    return saveToPath(filePath, operation);
}

Expected<ProfileDocument::SaveResult, DocumentError> ProfileDocument::saveToPath(const QString& filePath,
                                                                                 SaveOperation operation) {
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
    prepareSavePanel(request);
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
