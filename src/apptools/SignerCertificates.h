#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace quorlin::apptools {

// The certificates of a signature's CMS blob, put in order from the signer
// (leaf) up to the root, whatever order the blob stores them in.
class SignerCertificates {
public:
    // DER certificates, leaf first; empty when the blob isn't a CMS
    // message or carries no certificates.
    static QList<QByteArray> chain(const QByteArray& cmsDer);
    // The subject's common name, kept whole.
    static std::optional<QString> commonName(const QByteArray& certificateDer);
    // The first subject entry of the kind ("CN", "O", "OU"); nothing when
    // the certificate has none or can't be read.
    static std::optional<QString> subjectComponent(const QByteArray& certificateDer, const char* shortName);
    // Whether the certificate carries an extension of the OID, dotted.
    static bool hasExtension(const QByteArray& certificateDer, const char* oid);
};

} // namespace quorlin::apptools
