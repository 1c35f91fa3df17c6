#include "SignatureBlobBuilder.h"

#include "ProgramFiles.h"

#include <openssl/cms.h>

namespace quorlin::test {

namespace {

QByteArray word(quint32 value) {
    return ProgramFiles::bigEndianWord(value);
}

QByteArray blob(quint32 magic, const QByteArray& payload) {
    return word(magic) + word(quint32(payload.size() + 8)) + payload;
}

QByteArray cmsSignature(const SignatureParts& parts, const QByteArray& directory) {
    BIO* content = BIO_new_mem_buf(directory.constData(), int(directory.size()));
    CMS_ContentInfo* cms = CMS_sign(parts.signer, parts.signerKey, nullptr, content,
                                    CMS_DETACHED | CMS_BINARY | CMS_NOCERTS | CMS_PARTIAL);
    for (X509* certificate : parts.storedCertificates)
        CMS_add1_cert(cms, certificate);
    CMS_final(cms, content, nullptr, CMS_DETACHED | CMS_BINARY);
    unsigned char* der = nullptr;
    const int length = i2d_CMS_ContentInfo(cms, &der);
    QByteArray bytes(reinterpret_cast<const char*>(der), length);
    OPENSSL_free(der);
    CMS_ContentInfo_free(cms);
    BIO_free(content);
    return bytes;
}

} // namespace

namespace requirement {

QByteArray operation(quint32 code) {
    return word(code);
}

QByteArray data(const QByteArray& bytes) {
    QByteArray padded = bytes;
    padded += QByteArray((4 - bytes.size() % 4) % 4, '\0');
    return word(quint32(bytes.size())) + padded;
}

QByteArray identifier(const QByteArray& name) {
    return operation(2) + data(name);
}
QByteArray appleAnchor() {
    return operation(3);
}
QByteArray appleGenericAnchor() {
    return operation(15);
}
QByteArray both(const QByteArray& left, const QByteArray& right) {
    return operation(6) + left + right;
}
QByteArray either(const QByteArray& left, const QByteArray& right) {
    return operation(7) + left + right;
}
QByteArray negated(const QByteArray& operand) {
    return operation(9) + operand;
}
QByteArray certificateField(qint32 slot, const QByteArray& key, const QByteArray& match) {
    return operation(11) + word(quint32(slot)) + data(key) + match;
}
QByteArray certificateGeneric(qint32 slot, const QByteArray& oidHex, const QByteArray& match) {
    return operation(14) + word(quint32(slot)) + data(QByteArray::fromHex(oidHex)) + match;
}
QByteArray certificatePolicy(qint32 slot, const QByteArray& oidHex, const QByteArray& match) {
    return operation(17) + word(quint32(slot)) + data(QByteArray::fromHex(oidHex)) + match;
}
QByteArray infoField(const QByteArray& key, const QByteArray& match) {
    return operation(10) + data(key) + match;
}
QByteArray entitlementField(const QByteArray& key, const QByteArray& match) {
    return operation(16) + data(key) + match;
}
QByteArray anchorHash(qint32 slot, const QByteArray& hash) {
    return operation(4) + word(quint32(slot)) + data(hash);
}
QByteArray codeDirectoryHash(const QByteArray& hash) {
    return operation(8) + data(hash);
}
QByteArray trusted(qint32 slot) {
    return operation(12) + word(quint32(slot));
}
QByteArray exists() {
    return word(0);
}
QByteArray equals(const QByteArray& value) {
    return word(1) + data(value);
}
QByteArray beginsWith(const QByteArray& value) {
    return word(3) + data(value);
}
QByteArray atLeast(const QByteArray& value) {
    return word(8) + data(value);
}

QByteArray set(const QList<std::pair<quint32, QByteArray>>& expressions) {
    QByteArray index;
    QByteArray blobs;
    const qsizetype headerSize = 12 + expressions.size() * 8;
    for (const auto& [type, expression] : expressions) {
        index += word(type) + word(quint32(headerSize + blobs.size()));
        blobs += blob(0xFADE0C00, word(1) + expression);
    }
    return word(0xFADE0C01) + word(quint32(headerSize + blobs.size())) + word(quint32(expressions.size())) +
           index + blobs;
}

} // namespace requirement

QByteArray codeDirectory(const QString& identifier, const std::optional<QString>& team, quint32 flags) {
    const QByteArray name = identifier.toUtf8() + '\0';
    const QByteArray teamName = team ? team->toUtf8() + '\0' : QByteArray();
    const quint32 headerSize = 52;
    const quint32 end = headerSize + quint32(name.size() + teamName.size());
    QByteArray fields =
        word(0x20200) + word(flags) + word(end) + word(headerSize) + word(0) + word(0) + word(0);
    fields += QByteArray::fromHex("20020c00"); // hash size 32, SHA-256, platform 0, 4 KB pages
    fields += word(0) + word(0) + word(team ? headerSize + quint32(name.size()) : 0);
    return blob(0xFADE0C02, fields + name + teamName);
}

QByteArray superBlob(const QList<std::pair<quint32, QByteArray>>& blobs) {
    QByteArray index;
    QByteArray contents;
    const qsizetype headerSize = 12 + blobs.size() * 8;
    for (const auto& [slot, bytes] : blobs) {
        index += word(slot) + word(quint32(headerSize + contents.size()));
        contents += bytes;
    }
    return word(0xFADE0CC0) + word(quint32(headerSize + contents.size())) + word(quint32(blobs.size())) +
           index + contents;
}

QByteArray embeddedSignature(const SignatureParts& parts) {
    const QByteArray directory = codeDirectory(parts.identifier, parts.teamIdentifier, parts.flags);
    QList<std::pair<quint32, QByteArray>> blobs{{0, directory}};
    if (parts.designatedRequirement)
        blobs.append({2, requirement::set({{3, *parts.designatedRequirement}})});
    if (parts.entitlementsXml)
        blobs.append({5, blob(0xFADE7171, *parts.entitlementsXml)});
    if (parts.entitlementsDer)
        blobs.append({7, blob(0xFADE7172, *parts.entitlementsDer)});
    if (parts.signer)
        blobs.append({0x10000, blob(0xFADE0B01, cmsSignature(parts, directory))});
    return superBlob(blobs);
}

} // namespace quorlin::test
