#include "cli/ProfileFindings.h"

#include "documents/DocumentErrorWords.h"
#include "validation/ProfileValidation.h"

namespace quorlin::cli {

namespace {

const QString kPayloadUUID = QStringLiteral("PayloadUUID");
const QString kPayloadIdentifier = QStringLiteral("PayloadIdentifier");

QString repeatedValue(const Payload& payload, const QString& key) {
    return QStringLiteral("“%1” is already the %2 of another payload. %3")
        .arg(payload.stringValue(key).value_or(QString()), key,
             DocumentErrorWords::iOS15SilentInstallIncompatibilityInfo);
}

} // namespace

QString ProfileFindings::Finding::text() const {
    QStringList parts{file};
    if (!payloadType.isEmpty()) {
        QString payload = payloadType;
        if (!payloadDisplayName.isEmpty())
            payload += QStringLiteral(" “%1”").arg(payloadDisplayName);
        if (!payloadUUID.isEmpty())
            payload += QStringLiteral(" (%1)").arg(payloadUUID);
        parts << payload;
    }
    if (!keyPath.isEmpty())
        parts << keyPath;
    parts << message;
    return parts.join(QStringLiteral(": "));
}

QJsonObject ProfileFindings::Finding::json() const {
    return QJsonObject{
        {QStringLiteral("file"), file},
        {QStringLiteral("payloadType"), payloadType},
        {QStringLiteral("payloadDisplayName"), payloadDisplayName},
        {QStringLiteral("payloadUUID"), payloadUUID},
        {QStringLiteral("keyPath"), keyPath},
        {QStringLiteral("message"), message},
    };
}

QList<ProfileFindings::Finding> ProfileFindings::of(const OpenedProfile& opened,
                                                    const ValidationSettings& settings) {
    QList<Finding> findings;
    addFileFindings(opened, findings);
    for (const auto& error : ProfileValidation::validate(*opened.profile, &settings))
        findings.append(about(opened, *error.payload, error.keyPath, error.message));
    addIdentifierFindings(opened, findings);
    return findings;
}

ProfileFindings::Finding ProfileFindings::about(const OpenedProfile& opened, const Payload& payload,
                                                const QString& keyPath, const QString& message) {
    return Finding{
        opened.path,
        payload.stringValue(QStringLiteral("PayloadType")).value_or(payload.domainPrototype().domainString()),
        payload.displayName().value_or(QString()),
        payload.stringValue(kPayloadUUID).value_or(QString()),
        keyPath,
        message};
}

// Only repeats count: a missing identifier is a field fault already, and one
// left at its default is quietly replaced whenever the editor saves.
void ProfileFindings::addIdentifierFindings(const OpenedProfile& opened, QList<Finding>& findings) {
    for (const auto& error : opened.profile->validationErrors()) {
        if (error.kind == Profile::ValidationErrorKind::nonUniquePayloadUUIDFound)
            findings.append(
                about(opened, *error.payload, kPayloadUUID, repeatedValue(*error.payload, kPayloadUUID)));
        else if (error.kind == Profile::ValidationErrorKind::nonUniquePayloadIdentifierFound)
            findings.append(about(opened, *error.payload, kPayloadIdentifier,
                                  repeatedValue(*error.payload, kPayloadIdentifier)));
    }
}

void ProfileFindings::addFileFindings(const OpenedProfile& opened, QList<Finding>& findings) {
    const auto fileFinding = [&](const QString& message) {
        findings.append(Finding{opened.path, {}, {}, {}, {}, message});
    };
    if (opened.profile->wrappedSinglePayload())
        fileFinding(QStringLiteral("The file holds one payload rather than a profile; it was opened as the "
                                   "payload of a new, untitled profile."));
    if (opened.profile->malformedPayloadContentRemoved())
        fileFinding(
            QStringLiteral("The opened profile contains malformed payload(s) which will not be written "
                           "back to file on save."));
    if (!opened.signature)
        return;
    for (const SignerVerification& signer : opened.signature->signers) {
        if (!signer.isSignatureIntact)
            fileFinding(QStringLiteral("the signature of “%1” is broken").arg(signer.commonName));
    }
}

} // namespace quorlin::cli
