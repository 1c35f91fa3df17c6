#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <optional>

namespace quorlin::test {

// Requirement expressions in their binary form, written the way a signing
// tool compiles them, so that tests can decode them back to text.
namespace requirement {
QByteArray data(const QByteArray& bytes);
QByteArray identifier(const QByteArray& name);
QByteArray appleAnchor();
QByteArray appleGenericAnchor();
QByteArray both(const QByteArray& left, const QByteArray& right);
QByteArray either(const QByteArray& left, const QByteArray& right);
QByteArray negated(const QByteArray& operand);
QByteArray certificateField(qint32 slot, const QByteArray& key, const QByteArray& match);
QByteArray certificateGeneric(qint32 slot, const QByteArray& oidHex, const QByteArray& match);
QByteArray certificatePolicy(qint32 slot, const QByteArray& oidHex, const QByteArray& match);
QByteArray infoField(const QByteArray& key, const QByteArray& match);
QByteArray entitlementField(const QByteArray& key, const QByteArray& match);
QByteArray anchorHash(qint32 slot, const QByteArray& hash);
QByteArray codeDirectoryHash(const QByteArray& hash);
QByteArray trusted(qint32 slot);
QByteArray exists();
QByteArray equals(const QByteArray& value);
QByteArray beginsWith(const QByteArray& value);
QByteArray atLeast(const QByteArray& value);
QByteArray operation(quint32 code);
// A requirement set holding one requirement of each given type.
QByteArray set(const QList<std::pair<quint32, QByteArray>>& expressions);
} // namespace requirement

// An embedded signature as a signing tool writes it: code directory,
// requirements, entitlements in XML and DER, and a CMS signature over the
// code directory by the given signer, with the certificates stored in the
// order given.
struct SignatureParts {
    QString identifier;
    std::optional<QString> teamIdentifier;
    quint32 flags = 0;
    std::optional<QByteArray> designatedRequirement; // an expression
    std::optional<QByteArray> entitlementsXml;
    std::optional<QByteArray> entitlementsDer;
    X509* signer = nullptr;
    EVP_PKEY* signerKey = nullptr;
    QList<X509*> storedCertificates;
};

QByteArray embeddedSignature(const SignatureParts& parts);
QByteArray codeDirectory(const QString& identifier, const std::optional<QString>& team, quint32 flags);
QByteArray superBlob(const QList<std::pair<quint32, QByteArray>>& blobs);

} // namespace quorlin::test
