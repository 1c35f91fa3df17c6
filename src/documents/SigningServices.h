#pragma once

#include "documents/SignedMessage.h"
#include "documents/SigningIdentity.h"
#include "plist/Expected.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

class PassphraseProvider;

// The user's signing identities and CMS signed messages. Identities live as
// PEM files in "<data folder>/identities"; roots the user trusts beyond the
// system's store live in "<data folder>/anchors". Nothing is cached: every
// call reads the folders afresh. Failures give nothing; nothing throws.
class SigningServices {
public:
    // The application's data folder by default; tests give their own.
    explicit SigningServices(PassphraseProvider* passphrases = nullptr, QString dataFolder = {});

    QString identitiesFolder() const;
    PassphraseProvider* passphraseProvider() const { return m_passphrases; }
    QString anchorsFolder() const;
    // Trusts the roots of a PEM or DER file besides the anchors, for the
    // life of this object. The error is the reason alone: a file that
    // can't be read or holds no certificate.
    Expected<bool, QString> addAnchorFile(const QString& path);

    // In file-name order. Nothing when the folder can't be read.
    std::optional<QList<SigningIdentity>> listIdentities() const;
    bool hasIdentity(const QString& name) const;
    // The first with that exact name, in listing order.
    std::optional<SigningIdentity> identityNamed(const QString& name) const;
    bool isTrusted(const SigningIdentity& identity) const;
    // What tells identities of one name apart, and when one runs out.
    struct CertificateFacts {
        QString fingerprint; // SHA-256 of the certificate, hex pairs joined by colons
        QDateTime notBefore;
        QDateTime notAfter;
    };
    std::optional<CertificateFacts> certificateFacts(const SigningIdentity& identity) const;

    // Stores the identity of a PKCS#12 file with its key encrypted under the
    // new passphrase. Nothing on a wrong password or an unreadable file.
    std::optional<SigningIdentity> importPKCS12(const QString& file, const QString& password,
                                                const QString& newPassphrase) const;
    // The same for an archive already read, such as one piped in.
    std::optional<SigningIdentity> importPKCS12Data(const QByteArray& contents, const QString& password,
                                                    const QString& newPassphrase) const;

    // CMS signed-data, content embedded, the chain up to the root, SHA-256.
    std::optional<QByteArray> encodeSignedMessage(const QByteArray& data,
                                                  const SigningIdentity& identity) const;
    // DER or PEM. A broken signature or an untrusted signer still gives the
    // content; the verdicts are in SignedMessage::signers.
    std::optional<SignedMessage> decodeSignedMessage(const QByteArray& data) const;
    // Why decodeSignedMessage gives nothing for the data: OpenSSL's reason
    // for a message it can't parse, or what the message lacks or has too much
    // of. Empty when the data decodes.
    QString signedMessageFault(const QByteArray& data) const;

    static QString unknownName();

private:
    PassphraseProvider* m_passphrases;
    QString m_dataFolder;
    QStringList m_anchorFiles;
};

} // namespace quorlin
