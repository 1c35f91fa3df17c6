#include "SigningFixture.h"

#include "support/TestSupport.h"

#include <openssl/cms.h>

#include <tuple>

namespace quorlin::test {
namespace {

const QByteArray profileBytes =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
    "\t<key>PayloadDisplayName</key>\n\t<string>Signed \xc3\xa9t\xc3\xa9</string>\n"
    "</dict>\n</plist>\n";

class SignedMessageTest : public SigningFixture {
protected:
    std::optional<QByteArray> signAs(const TestCertificate& identity) {
        const std::optional<SigningIdentity> imported = importIdentity(identity);
        EXPECT_TRUE(imported);
        if (!imported)
            return std::nullopt;
        return services.encodeSignedMessage(profileBytes, *imported);
    }

    static openssl::Cms parse(const QByteArray& der) {
        openssl::Bio in = openssl::memoryReader(der);
        return openssl::Cms(d2i_CMS_bio(in.get(), nullptr));
    }
};

TEST_F(SignedMessageTest, OpenSslVerifiesWhatWeSignWithTheChainWeEmbed) {
    trustRoot();
    const std::optional<QByteArray> message = signAs(leaf);
    ASSERT_TRUE(message);
    EXPECT_EQ(passphrases.askedFor, QStringList{signerName});

    // Only the root is given: the intermediate must come from the message.
    const QString messageFile = writeFile(QStringLiteral("signed.mobileconfig"), *message);
    const QString rootFile = writeFile(QStringLiteral("root.pem"), TestPki::pem(root.certificate.get()));
    const QString contentFile = path(QStringLiteral("content.out"));
    const ProcessResult verify = runOpenSsl({"cms", "-verify", "-binary", "-inform", "DER", "-in",
                                             messageFile, "-CAfile", rootFile, "-out", contentFile});
    EXPECT_EQ(verify.exitCode, 0) << verify.output.toStdString();
    EXPECT_EQ(readFile(contentFile), profileBytes);
}

TEST_F(SignedMessageTest, SignedMessageEmbedsContentChainCapabilitiesAndSha256) {
    const std::optional<QByteArray> message = signAs(leaf);
    ASSERT_TRUE(message);
    const openssl::Cms cms = parse(*message);
    ASSERT_TRUE(cms);
    EXPECT_EQ(CMS_is_detached(cms.get()), 0);
    const openssl::CertificateStack certificates(CMS_get1_certs(cms.get()));
    EXPECT_EQ(sk_X509_num(certificates.get()), 3);
    bool hasRoot = false;
    for (int index = 0; index < sk_X509_num(certificates.get()); ++index)
        hasRoot = hasRoot || X509_cmp(sk_X509_value(certificates.get(), index), root.certificate.get()) == 0;
    EXPECT_TRUE(hasRoot);

    STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(cms.get());
    ASSERT_EQ(sk_CMS_SignerInfo_num(signers), 1);
    CMS_SignerInfo* signer = sk_CMS_SignerInfo_value(signers, 0);
    EXPECT_GE(CMS_signed_get_attr_by_NID(signer, NID_SMIMECapabilities, -1), 0);
    X509_ALGOR* digest = nullptr;
    CMS_SignerInfo_get0_algs(signer, nullptr, nullptr, &digest, nullptr);
    const ASN1_OBJECT* digestObject = nullptr;
    X509_ALGOR_get0(&digestObject, nullptr, nullptr, digest);
    EXPECT_EQ(OBJ_obj2nid(digestObject), NID_sha256);
}

// Our messages open with their signer; a tampered one or one of an expired
// signer still opens, with its verdict. The chain is judged apart from the dates.
TEST_F(SignedMessageTest, OurMessagesDecodeWithTheirSignerAndVerdict) {
    trustRoot();
    const std::optional<QByteArray> good = signAs(leaf);
    const std::optional<QByteArray> expired = signAs(expiredLeaf);
    ASSERT_TRUE(good && expired);
    QByteArray tampered = *good;
    tampered[tampered.indexOf("PayloadDisplayName")] = 'X';
    const struct {
        const QByteArray* message;
        bool tampered;
        const char* name;
        bool intact;
        bool expired;
    } cases[] = {{&*good, false, "Quorlin Test Signer", true, false},
                 {&tampered, true, "Quorlin Test Signer", false, false},
                 {&*expired, false, "Expired Signer", true, true}};
    for (const auto& each : cases) {
        SCOPED_TRACE(std::string(each.name) + (each.tampered ? ", tampered" : ""));
        const std::optional<SignedMessage> decoded = services.decodeSignedMessage(*each.message);
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded->content,
                  each.tampered ? QByteArray(profileBytes).replace("<key>P", "<key>X") : profileBytes);
        EXPECT_EQ(decoded->signerCommonNames, QStringList{each.name});
        ASSERT_EQ(decoded->signers.size(), 1);
        EXPECT_EQ(decoded->signers[0].isSignatureIntact, each.intact);
        EXPECT_TRUE(decoded->signers[0].isChainTrusted);
        EXPECT_TRUE(decoded->signers[0].untrustedReason.isEmpty());
        EXPECT_EQ(decoded->signers[0].isExpired, each.expired);
        EXPECT_FALSE(decoded->signers[0].isNotYetValid);
    }
}

TEST_F(SignedMessageTest, SigningFailsWithoutTheRightPassphrase) {
    const std::optional<SigningIdentity> identity = importIdentity(leaf);
    ASSERT_TRUE(identity);
    passphrases.answer = std::nullopt;
    EXPECT_FALSE(services.encodeSignedMessage(profileBytes, *identity));
    passphrases.answer = QStringLiteral("wrong passphrase");
    EXPECT_FALSE(services.encodeSignedMessage(profileBytes, *identity));
    EXPECT_FALSE(SigningServices(nullptr, folder.filePath(QStringLiteral("data")))
                     .encodeSignedMessage(profileBytes, *identity));
    EXPECT_FALSE(
        services.encodeSignedMessage(profileBytes, SigningIdentity{signerName, {path("gone.pem")}, false}));
}

TEST_F(SignedMessageTest, WhatIsNoSignedMessageDecodesToNothing) {
    EXPECT_FALSE(services.decodeSignedMessage(profileBytes));
    EXPECT_FALSE(services.decodeSignedMessage(QByteArray()));
    EXPECT_FALSE(services.decodeSignedMessage(QByteArray(64, '\x30')));
}

// A thousand signers, or a thousand certificates, are refused before any
// signer is matched with a certificate or any chain is built.
TEST_F(SignedMessageTest, AThousandSignersOrCertificatesAreRefused) {
    const auto message = [&](int signers, int extraCertificates) {
        openssl::Bio content = openssl::memoryReader(profileBytes);
        openssl::Cms cms(CMS_sign(nullptr, nullptr, nullptr, nullptr, CMS_BINARY | CMS_PARTIAL));
        for (int i = 0; i < signers; ++i)
            CMS_add1_signer(cms.get(), leaf.certificate.get(), leaf.key.get(), EVP_sha256(),
                            i ? CMS_NOCERTS : 0);
        for (int i = 0; i < extraCertificates; ++i) {
            X509* copy = X509_dup(leaf.certificate.get());
            ASN1_INTEGER_set(X509_get_serialNumber(copy), 1000 + i);
            X509_sign(copy, intermediate.key.get(), EVP_sha256());
            EXPECT_EQ(CMS_add0_cert(cms.get(), copy), 1);
        }
        EXPECT_EQ(CMS_final(cms.get(), content.get(), nullptr, CMS_BINARY), 1);
        openssl::Bio out(BIO_new(BIO_s_mem()));
        i2d_CMS_bio(out.get(), cms.get());
        return openssl::memoryContents(out.get());
    };
    const std::optional<SignedMessage> modest = services.decodeSignedMessage(message(2, 3));
    ASSERT_TRUE(modest);
    EXPECT_EQ(modest->signers.size(), 2);
    EXPECT_FALSE(services.decodeSignedMessage(message(1000, 0)));
    EXPECT_FALSE(services.decodeSignedMessage(message(1, 1000)));

    // Each refusal says what is wrong with the message; one that decodes has no fault.
    const QByteArray whole = message(1, 0);
    const struct {
        QByteArray data;
        const char* fault;
    } cases[] = {
        {whole, ""},
        {whole.left(whole.size() / 2), "the CMS message can't be decoded: "},
        {message(1000, 0), "the CMS signed message has 1000 signers, more than 16"},
        {message(1, 1000), "the CMS signed message carries 1001 certificates, more than 64"},
    };
    for (const auto& each : cases) {
        const QString fault = services.signedMessageFault(each.data);
        EXPECT_TRUE(QLatin1String(each.fault).isEmpty() ? fault.isEmpty()
                                                        : fault.startsWith(QLatin1String(each.fault)))
            << fault.toStdString();
    }
}

// Messages written by OpenSSL's own command line.
class ForeignMessageTest : public SigningFixture {
protected:
    QString leafFile;
    QString keyFile;
    QString chainFile;
    QString contentFile;

    void SetUp() override {
        trustRoot();
        contentFile = writeFile(QStringLiteral("content.xml"), profileBytes);
        chainFile = writeFile(QStringLiteral("chain.pem"), chainPem());
    }

    QByteArray signWithOpenSsl(const TestCertificate& signer, QStringList options) {
        leafFile = writeFile(QStringLiteral("signer.pem"), TestPki::pem(signer.certificate.get()));
        keyFile = writeFile(QStringLiteral("signer.key"), TestPki::unencryptedKeyPem(signer.key.get()));
        const QString out = path(QStringLiteral("foreign.out"));
        const ProcessResult sign =
            runOpenSsl(QStringList{"cms", "-sign", "-binary", "-in", contentFile, "-signer", leafFile,
                                   "-inkey", keyFile, "-out", out} +
                       options);
        EXPECT_EQ(sign.exitCode, 0) << sign.output.toStdString();
        return readFile(out);
    }
};

struct ForeignCase {
    bool withChain;
    const char* digest;
    const char* format;
};

class ForeignMessageCases : public ForeignMessageTest, public ::testing::WithParamInterface<ForeignCase> {};

TEST_P(ForeignMessageCases, DecodeWithTheSignerNameAndVerdict) {
    const ForeignCase& param = GetParam();
    QStringList options{"-nodetach", "-md", param.digest, "-outform", param.format};
    if (param.withChain)
        options += {"-certfile", chainFile};
    const QByteArray message = signWithOpenSsl(leaf, options);
    const std::optional<SignedMessage> decoded = services.decodeSignedMessage(message);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->content, profileBytes);
    EXPECT_EQ(decoded->signerCommonNames, QStringList{signerName});
    ASSERT_EQ(decoded->signers.size(), 1);
    EXPECT_TRUE(decoded->signers[0].isSignatureIntact);
    // Without the intermediate in the message there is no path to the anchor.
    EXPECT_EQ(decoded->signers[0].isChainTrusted, param.withChain);
    EXPECT_FALSE(decoded->signers[0].isExpired);
}

INSTANTIATE_TEST_SUITE_P(
    OpenSslSign, ForeignMessageCases,
    ::testing::Values(ForeignCase{true, "sha256", "DER"}, ForeignCase{false, "sha256", "DER"},
                      ForeignCase{true, "sha1", "DER"}, ForeignCase{false, "sha1", "DER"},
                      ForeignCase{true, "sha256", "PEM"}, ForeignCase{false, "sha1", "PEM"}),
    [](const ::testing::TestParamInfo<ForeignCase>& info) {
        return std::string(info.param.withChain ? "Chain" : "NoChain") + "_" + info.param.digest + "_" +
               info.param.format;
    });

TEST_F(ForeignMessageTest, ASignerWithoutCommonNameAddsNoNameButIsStillChecked) {
    const QByteArray message =
        signWithOpenSsl(namelessLeaf, {"-nodetach", "-outform", "DER", "-certfile", chainFile});
    const std::optional<SignedMessage> decoded = services.decodeSignedMessage(message);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->content, profileBytes);
    EXPECT_TRUE(decoded->signerCommonNames.isEmpty());
    ASSERT_EQ(decoded->signers.size(), 1);
    EXPECT_TRUE(decoded->signers[0].isSignatureIntact);
    EXPECT_TRUE(decoded->signers[0].isChainTrusted);
}

TEST_F(ForeignMessageTest, SignaturesWithoutSignedAttributesAreChecked) {
    QByteArray message =
        signWithOpenSsl(leaf, {"-nodetach", "-noattr", "-outform", "DER", "-certfile", chainFile});
    std::optional<SignedMessage> decoded = services.decodeSignedMessage(message);
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(decoded->signers.value(0).isSignatureIntact);

    message[message.indexOf("PayloadDisplayName")] = 'X';
    decoded = services.decodeSignedMessage(message);
    ASSERT_TRUE(decoded);
    EXPECT_FALSE(decoded->signers.value(0).isSignatureIntact);
}

TEST_F(ForeignMessageTest, ADetachedSignatureHasNoContentToOpen) {
    const QByteArray message = signWithOpenSsl(leaf, {"-outform", "DER"});
    EXPECT_FALSE(services.decodeSignedMessage(message));
}

} // namespace
} // namespace quorlin::test
