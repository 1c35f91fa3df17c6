#pragma once

#include "plist/Value.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace quorlin::apptools {

// What a program file's embedded signature says, read from the blob itself:
// the code directory (identifier, team, flags), the requirements, the
// entitlements and the signer's certificates. Nothing here checks that the
// signature holds; it only reports what it claims.
class CodeSignature {
public:
    // Flags of the code directory that matter to an administrator.
    static constexpr quint32 adHocFlag = 0x2;
    static constexpr quint32 runtimeFlag = 0x10000;

    // Nothing unless the blob is an embedded signature with a code
    // directory; every offset and length in it is checked first.
    static std::optional<CodeSignature> parse(const QByteArray& blob);

    const QString& identifier() const { return m_identifier; }
    const std::optional<QString>& teamIdentifier() const { return m_teamIdentifier; }
    quint32 flags() const { return m_flags; }
    bool isAdHoc() const { return m_flags & adHocFlag; }
    // The hash of the code directory that names this exact build, 20 bytes.
    const QByteArray& codeDirectoryHash() const { return m_codeDirectoryHash; }
    // The text form of the designated requirement the signature carries;
    // without one, what the system makes up: from the signer's chain, or
    // for an ad hoc signature the build's own hash.
    std::optional<QString> designatedRequirement() const;
    const std::optional<plist::Dictionary>& entitlements() const { return m_entitlements; }
    // DER, from the signer up.
    const QList<QByteArray>& certificates() const { return m_certificates; }
    // The common name of the signer's certificate.
    std::optional<QString> developerName() const;

private:
    bool readCodeDirectory(const QByteArray& directory);

    QString m_identifier;
    std::optional<QString> m_teamIdentifier;
    quint32 m_flags = 0;
    QByteArray m_codeDirectoryHash;
    std::optional<QByteArray> m_requirements;
    std::optional<plist::Dictionary> m_entitlements;
    QList<QByteArray> m_certificates;
};

} // namespace quorlin::apptools
