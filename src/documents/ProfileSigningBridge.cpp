#include "documents/ProfileSigningBridge.h"

namespace quorlin {

std::optional<ProfileSigningServices::SignedContent>
ProfileSigningBridge::readSignedContent(const QByteArray& data) {
    std::optional<SignedMessage> message = m_services.decodeSignedMessage(data);
    if (!message)
        return std::nullopt;
    return SignedContent{std::move(message->content), std::move(message->signerCommonNames)};
}

QString ProfileSigningBridge::signedMessageFault(const QByteArray& data) {
    return m_services.signedMessageFault(data);
}

QStringList ProfileSigningBridge::identityCommonNames() {
    QStringList names;
    for (const SigningIdentity& identity : m_services.listIdentities().value_or(QList<SigningIdentity>{}))
        names.append(identity.name);
    return names;
}

std::optional<QByteArray> ProfileSigningBridge::sign(const QByteArray& data, const QString& commonName) {
    const std::optional<SigningIdentity> identity = m_services.identityNamed(commonName);
    if (!identity)
        return std::nullopt;
    return m_services.encodeSignedMessage(data, *identity);
}

} // namespace quorlin
