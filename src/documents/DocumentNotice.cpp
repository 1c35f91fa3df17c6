#include "documents/DocumentNotice.h"

#include "documents/DocumentErrorWords.h"
#include "documents/EnvelopeWords.h"
#include "plist/DefaultsKey.h"

namespace quorlin {

namespace {

DocumentNotice informational(DocumentNotice::Kind kind, const QString& title, const QString& text,
                             const QString& suppressionKey) {
    return {kind,
            DocumentNotice::Style::informational,
            title,
            text,
            {{DocumentErrorWords::okReply, 1, DocumentNotice::KeyEquivalent::returnKey}},
            suppressionKey,
            DocumentErrorWords::doNotShowAgain};
}

// Encryption notices can't be silenced: what they say differs with each file.
DocumentNotice unsilenced(DocumentNotice::Kind kind, const QString& title, const QString& text) {
    return {kind,
            DocumentNotice::Style::informational,
            title,
            text,
            {{DocumentErrorWords::okReply, 1, DocumentNotice::KeyEquivalent::returnKey}},
            {},
            {}};
}

} // namespace

DocumentNotice DocumentNotice::savedToQuorlinLibrary(const std::optional<QString>& displayName) {
    const QString name =
        displayName && !displayName->isEmpty() ? *displayName : QStringLiteral("The profile");
    return informational(Kind::savedToQuorlinLibrary, QStringLiteral("Saved to Library"),
                         QStringLiteral("%1 was saved to Quorlin's profile library.").arg(name),
                         DefaultsKey::noticeSuppressSavedToQuorlinLibrary);
}

DocumentNotice DocumentNotice::quorlinLibraryIdentifierClash() {
    DocumentNotice notice = informational(
        Kind::quorlinLibraryIdentifierClash,
        QStringLiteral("Another profile with the same identifier already exists in the library."),
        QStringLiteral(
            "Would you like to cancel, replace the existing profile (it will be moved to the trash), "
            "or generate a new identifier?"),
        QString());
    notice.suppressionTitle.clear();
    notice.buttons = {
        {QStringLiteral("Generate New Identifier"), generateNewIdentifier, KeyEquivalent::returnKey},
        {QStringLiteral("Replace"), replaceExisting, KeyEquivalent::none},
        {DocumentErrorWords::cancelReply, cancelSave, KeyEquivalent::escapeKey}};
    return notice;
}

DocumentNotice DocumentNotice::quorlinLibrarySaveFailed(LibraryFailure failure) {
    QString title;
    QString text;
    switch (failure) {
    case LibraryFailure::noIdentifier:
        title = QStringLiteral(
            "Could not save to Quorlin library because generating a profile identifier has failed.");
        break;
    case LibraryFailure::libraryNotFound:
        title = QStringLiteral(
            "Could not save to Quorlin library because the library location could not be found.");
        break;
    case LibraryFailure::couldNotTrash:
        title =
            QStringLiteral("The original file could not be moved to the trash so replacing it was aborted.");
        text = QStringLiteral("Please change the profile identifier and save to the Quorlin library again.");
        break;
    case LibraryFailure::noUniqueIdentifier:
        title = QStringLiteral(
            "Could not generate a unique profile identifier that is not already in use in the library.");
        break;
    }
    DocumentNotice notice = informational(Kind::quorlinLibrarySaveFailed, title, text, QString());
    notice.suppressionTitle.clear();
    return notice;
}

DocumentNotice DocumentNotice::payloadsEncrypted(const QString& recipients) {
    return unsilenced(Kind::payloadsEncrypted, EnvelopeWords::encryptedTitle,
                      EnvelopeWords::encryptedInfo.arg(recipients));
}

DocumentNotice DocumentNotice::payloadsDecryptable(const QString& recipients, const QString& identityName) {
    DocumentNotice notice = unsilenced(Kind::payloadsDecryptable, EnvelopeWords::encryptedTitle,
                                       EnvelopeWords::decryptableInfo.arg(recipients, identityName));
    notice.buttons = {{EnvelopeWords::decryptReply, 1, KeyEquivalent::returnKey},
                      {EnvelopeWords::keepEncryptedReply, 0, KeyEquivalent::escapeKey}};
    return notice;
}

DocumentNotice DocumentNotice::recipientsMissing(const QString& recipients) {
    DocumentNotice notice = unsilenced(Kind::recipientsMissing, EnvelopeWords::recipientsMissingTitle,
                                       EnvelopeWords::recipientsMissingInfo.arg(recipients));
    notice.style = Style::warning;
    return notice;
}

DocumentNotice DocumentNotice::signingIdentityMissing() {
    return informational(Kind::signingIdentityMissing, DocumentErrorWords::signingIdentityMissingTitle,
                         DocumentErrorWords::signingIdentityMissingInfo,
                         DefaultsKey::noticeSuppressSigningIdentityMissing);
}

DocumentNotice DocumentNotice::malformedPayloadContentRemoved() {
    return informational(Kind::malformedPayloadContentRemoved,
                         DocumentErrorWords::malformedPayloadContentRemovedTitle,
                         DocumentErrorWords::malformedPayloadContentRemovedInfo,
                         DefaultsKey::noticeSuppressMalformedPayloadsRemoved);
}

DocumentNotice DocumentNotice::iOS15SilentInstallIncompatibility() {
    DocumentNotice notice = informational(Kind::iOS15SilentInstallIncompatibility,
                                          DocumentErrorWords::iOS15SilentInstallIncompatibilityTitle,
                                          DocumentErrorWords::iOS15SilentInstallIncompatibilityInfo,
                                          DefaultsKey::noticeSuppressIOS15SilentInstallationIncompatibility);
    notice.buttons = {{DocumentErrorWords::fixAndSaveReply, 1, KeyEquivalent::returnKey},
                      {DocumentErrorWords::dismissReply, 0, KeyEquivalent::escapeKey}};
    return notice;
}

DocumentNotice DocumentNotice::singlePayloadWrapped() {
    return informational(Kind::singlePayloadWrapped, DocumentErrorWords::singlePayloadWrappedTitle,
                         DocumentErrorWords::singlePayloadWrappedInfo, QString());
}

DocumentNotice DocumentNotice::profileInvalidOnSave(int invalidValueCount, qsizetype heldValueCount) {
    QString text = invalidValueCount == 1
                       ? DocumentErrorWords::profileInvalidOnSaveInfo
                       : DocumentErrorWords::profileInvalidPluralInfo.arg(invalidValueCount);
    if (heldValueCount > 0)
        text += DocumentErrorWords::profileKeepsHeldValues.arg(heldValueCount);
    return {Kind::profileInvalidOnSave,
            Style::warning,
            DocumentErrorWords::profileInvalidOnSaveTitle,
            text,
            {{DocumentErrorWords::saveReply, 1, KeyEquivalent::returnKey},
             {DocumentErrorWords::cancelReply, 0, KeyEquivalent::escapeKey}},
            DefaultsKey::noticeSuppressProfileInvalid,
            DocumentErrorWords::doNotShowAgain};
}

} // namespace quorlin
