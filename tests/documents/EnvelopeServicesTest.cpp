#include "SigningFixture.h"

#include "documents/EnvelopeServices.h"
#include "documents/EnvelopeWords.h"
#include "support/TestSupport.h"

namespace quorlin::test {
namespace {

using Failure = ProfileEncryptionServices::Failure;

const QByteArray payloadArray =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<array>\n\t<dict>\n"
    "\t\t<key>PayloadType</key>\n\t\t<string>com.apple.wifi.managed</string>\n\t</dict>\n</array>\n</"
    "plist>\n";

// Two devices with RSA keys, as devices have; the first is one of the user's identities.
class EnvelopeServicesTest : public SigningFixture {
protected:
    static inline const QString deviceName = QStringLiteral("Quorlin Test Device");
    TestCertificate device = TestPki::issue(deviceName, &intermediate, false, {}, KeyType::rsa);
    TestCertificate otherDevice =
        TestPki::issue(QStringLiteral("Other Device"), &intermediate, false, {}, KeyType::rsa);
    EnvelopeServices envelopes{services};

    void SetUp() override { ASSERT_TRUE(importIdentity(device)); }

    QString certificateFile(const TestCertificate& identity, const QString& name) const {
        return writeFile(name + QStringLiteral(".pem"), TestPki::pem(identity.certificate.get()));
    }

    // What `openssl cms -encrypt` makes of the payload array for the given devices.
    QByteArray encryptedByOpenSsl(const QString& cipher, const QList<const TestCertificate*>& recipients) {
        QStringList arguments{"cms",     "-encrypt",
                              "-binary", "-outform",
                              "DER",     cipher,
                              "-in",     writeFile(QStringLiteral("content.plist"), payloadArray),
                              "-out",    path(QStringLiteral("sealed.der"))};
        for (qsizetype index = 0; index < recipients.size(); ++index)
            arguments.append(certificateFile(*recipients[index], QStringLiteral("recipient%1").arg(index)));
        const ProcessResult result = runOpenSsl(arguments);
        EXPECT_EQ(result.exitCode, 0) << result.output.toStdString();
        return readFile(path(QStringLiteral("sealed.der")));
    }
};

TEST_F(EnvelopeServicesTest, OpenSslDecryptsWhatWeEncryptForEachRecipientWithAes256) {
    const auto sealed =
        envelopes.encrypt(payloadArray, {der(device.certificate.get()), der(otherDevice.certificate.get())});
    ASSERT_TRUE(sealed);
    const QString sealedFile = writeFile(QStringLiteral("ours.der"), *sealed);
    const ProcessResult printed =
        runOpenSsl({"cms", "-cmsout", "-print", "-inform", "DER", "-in", sealedFile});
    EXPECT_TRUE(printed.output.contains("aes-256-cbc")) << printed.output.toStdString();

    for (const TestCertificate* recipient : {&device, &otherDevice}) {
        const QString key =
            writeFile(QStringLiteral("key.pem"), TestPki::unencryptedKeyPem(recipient->key.get()));
        const QString out = path(QStringLiteral("opened.plist"));
        const ProcessResult opened = runOpenSsl(
            {"cms", "-decrypt", "-binary", "-inform", "DER", "-in", sealedFile, "-recip",
             certificateFile(*recipient, QStringLiteral("recipient")), "-inkey", key, "-out", out});
        EXPECT_EQ(opened.exitCode, 0) << opened.output.toStdString();
        EXPECT_EQ(readFile(out), payloadArray);
    }
}

TEST_F(EnvelopeServicesTest, WeDecryptWhatOpenSslEncryptsAndNameItsRecipients) {
    const struct {
        const char* cipher;
        bool forTwo;
    } cases[] = {{"-aes256", false}, {"-aes128", false}, {"-aes256", true}, {"-aes128", true}};
    for (const auto& sample : cases) {
        SCOPED_TRACE(std::string(sample.cipher) + (sample.forTwo ? " two" : " one"));
        QList<const TestCertificate*> recipients{&device};
        if (sample.forTwo)
            recipients.prepend(&otherDevice);
        const QByteArray sealed = encryptedByOpenSsl(QString::fromLatin1(sample.cipher), recipients);

        const auto named = envelopes.recipients(sealed);
        ASSERT_TRUE(named);
        ASSERT_EQ(named->size(), recipients.size());
        const QString serial =
            QString::number(ASN1_INTEGER_get(X509_get0_serialNumber(device.certificate.get())), 16).toUpper();
        const EnvelopeRecipient expected{QStringLiteral("CN=Quorlin Test Intermediate,O=Quorlin Tests"),
                                         serial.rightJustified(2, u'0'),
                                         {}};
        EXPECT_TRUE(named->contains(expected));
        EXPECT_EQ(envelopes.recipientIdentityNames(sealed), QStringList{deviceName});

        const auto opened = envelopes.decrypt(sealed, deviceName);
        ASSERT_TRUE(opened);
        EXPECT_EQ(opened->content, payloadArray);
        EXPECT_EQ(opened->recipientCertificates, QList<QByteArray>{der(device.certificate.get())});
        EXPECT_EQ(opened->unresolvedRecipients.size(), sample.forTwo ? 1 : 0);
    }
}

TEST_F(EnvelopeServicesTest, BadEnvelopesAndKeysGiveTheirOwnFailure) {
    const QByteArray sealed = encryptedByOpenSsl(QStringLiteral("-aes256"), {&device});
    QByteArray unknownCipher = sealed;
    // 2.16.840.1.101.3.4.1.42 becomes .127, which names no cipher.
    const qsizetype at = unknownCipher.indexOf(QByteArray::fromHex("060960864801650304012A"));
    ASSERT_GE(at, 0);
    unknownCipher[at + 10] = char(0x7F);
    const QByteArray forOther = encryptedByOpenSsl(QStringLiteral("-aes256"), {&otherDevice});

    const struct {
        QByteArray envelope;
        std::optional<QString> passphrase;
        Failure failure;
    } cases[] = {
        {sealed.left(sealed.size() - 20), storePassphrase, Failure::malformedEnvelope},
        {payloadArray, storePassphrase, Failure::malformedEnvelope},
        {unknownCipher, storePassphrase, Failure::unknownAlgorithm},
        {forOther, storePassphrase, Failure::notARecipient},
        {sealed, QStringLiteral("wrong passphrase"), Failure::keyUnavailable},
        {sealed, std::nullopt, Failure::keyUnavailable},
    };
    for (const auto& sample : cases) {
        passphrases.answer = sample.passphrase;
        const auto opened = envelopes.decrypt(sample.envelope, deviceName);
        ASSERT_FALSE(opened);
        EXPECT_EQ(opened.error(), sample.failure);
        EXPECT_FALSE(EnvelopeWords::describe(opened.error()).isEmpty());
    }
    EXPECT_EQ(envelopes.decrypt(sealed, QStringLiteral("Nobody")).error(), Failure::keyUnavailable);
}

TEST_F(EnvelopeServicesTest, CertificatesAreReadAsPemOrDerAndBadOnesRefused) {
    const QByteArray expected = der(device.certificate.get());
    EXPECT_EQ(*EnvelopeServices::readCertificateFile(certificateFile(device, QStringLiteral("device"))),
              expected);
    EXPECT_EQ(*EnvelopeServices::readCertificateFile(writeFile(QStringLiteral("device.der"), expected)),
              expected);
    EXPECT_EQ(EnvelopeServices::readCertificateFile(writeFile(QStringLiteral("junk"), "junk")).error(),
              Failure::unreadableCertificate);
    EXPECT_EQ(envelopes.encrypt(payloadArray, {}).error(), Failure::noRecipients);
    EXPECT_EQ(envelopes.encrypt(payloadArray, {QByteArray("junk")}).error(), Failure::unreadableCertificate);
}

} // namespace
} // namespace quorlin::test
