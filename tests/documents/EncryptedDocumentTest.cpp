// Documents whose payloads are sealed for devices: kept as they are, opened
// with an identity that is a recipient, sealed again on save, and signed
// around it all.

#include "DocumentFixture.h"

#include "documents/EnvelopeServices.h"

namespace quorlin::test {
namespace {

using Failure = ProfileEncryptionServices::Failure;
const QString sealedName = QStringLiteral("EncryptedPayloadContent");
const QString contentName = QStringLiteral("PayloadContent");

class EncryptedDocumentTest : public DocumentFixture {
protected:
    static inline const QString deviceName = QStringLiteral("Quorlin Test Device");
    TestCertificate device = TestPki::issue(deviceName, &intermediate, false, {}, KeyType::rsa);
    TestCertificate otherDevice =
        TestPki::issue(QStringLiteral("Other Device"), &intermediate, false, {}, KeyType::rsa);
    std::shared_ptr<EnvelopeServices> envelopes = std::make_shared<EnvelopeServices>(
        SigningServices(&passphrases, folder.filePath(QStringLiteral("data"))));
    plist::Array payloads{payload(QStringLiteral("com.example.everything"),
                                  QStringLiteral("AAAAAAAA-BBBB-4CCC-8DDD-EEEEEEEEEEEE"),
                                  QStringLiteral("org.example.everything.one"))};

    EncryptedDocumentTest() { environment->encryptionServices = envelopes; }

    QByteArray sealedFor(const QList<const TestCertificate*>& recipients) {
        QList<QByteArray> certificates;
        for (const TestCertificate* recipient : recipients)
            certificates.append(der(recipient->certificate.get()));
        return envelopes->encrypt(*plist::XmlWriter::write(plist::Value(payloads)), certificates).value();
    }

    static plist::Dictionary sealedTree(const QByteArray& envelope) {
        plist::Dictionary tree = profileTree({});
        tree.remove(contentName);
        tree.insert(sealedName, plist::Value(envelope));
        return tree;
    }

    std::unique_ptr<ProfileDocument> openShown(const QByteArray& bytes) {
        auto document = openDocument(bytes);
        document->makeWindowControllers();
        document->presentOpeningNotices();
        document->windowDidShow();
        return document;
    }
};

TEST_F(EncryptedDocumentTest, SignedSealedProfileRoundTripsWithOnlyTheUsersEditAndNamesItsRecipient) {
    const QByteArray envelope = sealedFor({&otherDevice});
    const plist::Dictionary original = sealedTree(envelope);
    auto document = openShown(signedBytes(xml(original), true));

    EXPECT_TRUE(document->profile()->configurationPayloads().isEmpty());
    ASSERT_EQ(notices.kinds(), QList{DocumentNotice::Kind::payloadsEncrypted});
    const QString text = notices.shown.first().notice.informativeText;
    EXPECT_TRUE(text.contains(QStringLiteral("CN=Quorlin Test Intermediate,O=Quorlin Tests, serial ")));

    document->profile()->rootPayload()->payloadDisplayNameKey()->setValue(
        plist::Value(QStringLiteral("Edited")));
    const auto saved = document->data();
    ASSERT_TRUE(saved);
    const auto message = services.decodeSignedMessage(*saved);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->signerCommonNames, QStringList{signerName});
    plist::Dictionary expected = original;
    expected.insert(QStringLiteral("PayloadDisplayName"), plist::Value(QStringLiteral("Edited")));
    EXPECT_EQ(readPlain(message->content), expected);
}

TEST_F(EncryptedDocumentTest, RecipientIdentityDecryptsAndSavesSealedForTheRecipientsItKnows) {
    ASSERT_TRUE(importIdentity(device));
    auto document = openShown(xml(sealedTree(sealedFor({&device, &otherDevice}))));
    ASSERT_EQ(notices.kinds(), QList{DocumentNotice::Kind::payloadsDecryptable});
    passphrases.askedFor.clear();
    notices.shown.first().reply({1, false});

    EXPECT_EQ(passphrases.askedFor, QStringList{deviceName});
    ASSERT_EQ(document->profile()->configurationPayloads().size(), 1);
    EXPECT_FALSE(document->profile()->encryptedPayloadContent());
    // The other device's certificate isn't at hand, and the user is told so.
    EXPECT_EQ(notices.kinds().last(), DocumentNotice::Kind::recipientsMissing);
    EXPECT_TRUE(notices.shown.last().notice.informativeText.contains(QStringLiteral("serial")));

    const plist::Dictionary saved = readPlain(*document->data());
    EXPECT_FALSE(saved.contains(contentName));
    const auto opened = envelopes->decrypt(*saved.data(sealedName), deviceName);
    ASSERT_TRUE(opened);
    // What the payload writes out, which adds the defaults it shows.
    const plist::Array written{
        plist::Value(document->profile()->configurationPayloads().first()->writeOutDictionary())};
    EXPECT_EQ(plist::PlistReader::read(opened->content)->root, plist::Value(written));
    EXPECT_TRUE(envelopes->recipients(*saved.data(sealedName))->size() == 1);

    ASSERT_TRUE(document->encryptFor({}));
    const plist::Dictionary open = readPlain(*document->data());
    EXPECT_EQ(*open.array(contentName), written);
    EXPECT_FALSE(open.contains(sealedName));
}

TEST_F(EncryptedDocumentTest, BadEnvelopeFailsClearlyAndStaysAsItWas) {
    ASSERT_TRUE(importIdentity(device));
    const QByteArray sealed = sealedFor({&device});
    const QByteArray truncated = sealed.left(sealed.size() / 2);
    auto document = openShown(xml(sealedTree(truncated)));
    EXPECT_EQ(notices.kinds(), QList{DocumentNotice::Kind::payloadsEncrypted});

    const auto decrypted = document->decryptPayloads(deviceName);
    ASSERT_FALSE(decrypted);
    EXPECT_EQ(decrypted.error().domain, DocumentError::envelopeErrorDomain);
    EXPECT_EQ(decrypted.error().code, int(Failure::malformedEnvelope));
    const auto sealedAgain =
        document->encryptFor({writeFile(QStringLiteral("d.pem"), TestPki::pem(device.certificate.get()))});
    ASSERT_FALSE(sealedAgain);
    EXPECT_EQ(sealedAgain.error().code, int(Failure::stillEncrypted));
    EXPECT_EQ(readPlain(*document->data()), sealedTree(truncated));

    // A payload added beside the sealed ones is written in the open rather than lost.
    document->profile()->addPayload(
        document->profile()->domainForType(QStringLiteral("com.example.everything")));
    const plist::Dictionary both = readPlain(*document->data());
    EXPECT_EQ(both.data(sealedName), truncated);
    EXPECT_EQ(both.array(contentName)->size(), 1);
}

} // namespace
} // namespace quorlin::test
