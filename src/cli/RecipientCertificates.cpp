#include "cli/RecipientCertificates.h"

#include "documents/EnvelopeServices.h"
#include "documents/EnvelopeWords.h"

namespace quorlin::cli {

Expected<QList<QByteArray>, QString> RecipientCertificates::read(const QStringList& files) {
    QList<QByteArray> certificates;
    for (const QString& file : files) {
        const auto certificate = EnvelopeServices::readCertificateFile(file);
        if (!certificate)
            return fail(file + QStringLiteral(": ") + EnvelopeWords::describe(certificate.error()));
        certificates.append(*certificate);
    }
    return certificates;
}

Expected<bool, QString> RecipientCertificates::apply(Profile& profile, const QList<QByteArray>& certificates,
                                                     const QString& path) {
    if (certificates.isEmpty())
        return true;
    if (profile.encryptedPayloadContent())
        return fail(path + QStringLiteral(": ") +
                    EnvelopeWords::describe(ProfileEncryptionServices::Failure::stillEncrypted));
    profile.setEncryptForCertificates(certificates);
    return true;
}

} // namespace quorlin::cli
