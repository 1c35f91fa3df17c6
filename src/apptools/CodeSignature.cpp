#include "apptools/CodeSignature.h"

#include "apptools/DerEntitlements.h"
#include "apptools/ImplicitRequirement.h"
#include "apptools/RequirementDecompiler.h"
#include "apptools/SignerCertificates.h"
#include "plist/PlistReader.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <map>

namespace quorlin::apptools {

namespace {

constexpr quint32 embeddedSignatureMagic = 0xFADE0CC0;
constexpr quint32 codeDirectoryMagic = 0xFADE0C02;
constexpr quint32 requirementSetMagic = 0xFADE0C01;
constexpr quint32 entitlementsMagic = 0xFADE7171;
constexpr quint32 derEntitlementsMagic = 0xFADE7172;
constexpr quint32 cmsWrapperMagic = 0xFADE0B01;

constexpr quint32 codeDirectorySlot = 0;
constexpr quint32 requirementsSlot = 2;
constexpr quint32 entitlementsSlot = 5;
constexpr quint32 derEntitlementsSlot = 7;
constexpr quint32 signatureSlot = 0x10000;

constexpr quint32 maximumBlobCount = 64;
constexpr quint32 teamOffsetVersion = 0x20200;
constexpr qsizetype codeDirectoryHashLength = 20;

quint32 wordAt(const QByteArray& bytes, qsizetype offset) {
    return qFromBigEndian<quint32>(bytes.constData() + offset);
}

// The blobs of the embedded signature by slot, each checked to lie within it.
std::optional<std::map<quint32, QByteArray>> blobsBySlot(const QByteArray& signature) {
    if (signature.size() < 12 || wordAt(signature, 0) != embeddedSignatureMagic)
        return std::nullopt;
    const quint32 length = wordAt(signature, 4);
    const quint32 count = wordAt(signature, 8);
    if (length < 12 || length > quint64(signature.size()) || count > maximumBlobCount ||
        12 + quint64(count) * 8 > length)
        return std::nullopt;
    std::map<quint32, QByteArray> blobs;
    for (quint32 index = 0; index < count; ++index) {
        const quint32 slot = wordAt(signature, 12 + index * 8);
        const quint32 offset = wordAt(signature, 16 + index * 8);
        if (offset < 12 || offset > length - 8)
            return std::nullopt;
        const quint32 blobLength = wordAt(signature, offset + 4);
        if (blobLength < 8 || blobLength > length - offset)
            return std::nullopt;
        blobs.emplace(slot, signature.mid(offset, blobLength));
    }
    return blobs;
}

std::optional<QByteArray> payloadOf(const std::map<quint32, QByteArray>& blobs, quint32 slot, quint32 magic) {
    const auto found = blobs.find(slot);
    if (found == blobs.end() || wordAt(found->second, 0) != magic)
        return std::nullopt;
    return found->second.mid(8);
}

// A NUL-terminated string inside the code directory.
std::optional<QString> stringAt(const QByteArray& directory, quint32 offset) {
    if (offset == 0 || offset >= quint64(directory.size()))
        return std::nullopt;
    const qsizetype end = directory.indexOf('\0', offset);
    if (end < 0)
        return std::nullopt;
    return QString::fromUtf8(directory.constData() + offset, end - offset);
}

std::optional<QCryptographicHash::Algorithm> hashAlgorithm(quint8 hashType) {
    switch (hashType) {
    case 1:
        return QCryptographicHash::Sha1;
    case 2:
    case 3:
        return QCryptographicHash::Sha256;
    case 4:
        return QCryptographicHash::Sha384;
    default:
        return std::nullopt;
    }
}

std::optional<plist::Dictionary> xmlEntitlements(const QByteArray& xml) {
    const auto read = plist::PlistReader::read(xml);
    if (!read || !read->root.dictionary())
        return std::nullopt;
    return *read->root.dictionary();
}

} // namespace

std::optional<CodeSignature> CodeSignature::parse(const QByteArray& blob) {
    const auto blobs = blobsBySlot(blob);
    if (!blobs)
        return std::nullopt;
    const auto directory = blobs->find(codeDirectorySlot);
    CodeSignature signature;
    if (directory == blobs->end() || !signature.readCodeDirectory(directory->second))
        return std::nullopt;

    if (const auto set = blobs->find(requirementsSlot);
        set != blobs->end() && wordAt(set->second, 0) == requirementSetMagic)
        signature.m_requirements = set->second;
    if (const auto xml = payloadOf(*blobs, entitlementsSlot, entitlementsMagic))
        signature.m_entitlements = xmlEntitlements(*xml);
    if (!signature.m_entitlements) {
        if (const auto der = payloadOf(*blobs, derEntitlementsSlot, derEntitlementsMagic))
            signature.m_entitlements = DerEntitlements::decode(*der);
    }
    if (const auto cms = payloadOf(*blobs, signatureSlot, cmsWrapperMagic); cms && !cms->isEmpty())
        signature.m_certificates = SignerCertificates::chain(*cms);
    return signature;
}

bool CodeSignature::readCodeDirectory(const QByteArray& directory) {
    if (directory.size() < 44 || wordAt(directory, 0) != codeDirectoryMagic)
        return false;
    const quint32 version = wordAt(directory, 8);
    const auto identifier = stringAt(directory, wordAt(directory, 20));
    const auto algorithm = hashAlgorithm(quint8(directory[37]));
    if (!identifier || !algorithm)
        return false;
    m_identifier = *identifier;
    m_flags = wordAt(directory, 12);
    if (version >= teamOffsetVersion && directory.size() >= 52)
        m_teamIdentifier = stringAt(directory, wordAt(directory, 48));
    m_codeDirectoryHash = QCryptographicHash::hash(directory, *algorithm).left(codeDirectoryHashLength);
    return true;
}

std::optional<QString> CodeSignature::designatedRequirement() const {
    if (m_requirements) {
        if (auto text = RequirementDecompiler::designatedRequirement(*m_requirements))
            return text;
    }
    // What the system takes for a signature that states none.
    if (!m_certificates.isEmpty())
        return ImplicitRequirement::make(m_identifier, m_certificates);
    if (isAdHoc())
        return QStringLiteral("cdhash H\"%1\"").arg(QString::fromLatin1(m_codeDirectoryHash.toHex()));
    return std::nullopt;
}

std::optional<QString> CodeSignature::developerName() const {
    if (m_certificates.isEmpty())
        return std::nullopt;
    return SignerCertificates::commonName(m_certificates.first());
}

} // namespace quorlin::apptools
