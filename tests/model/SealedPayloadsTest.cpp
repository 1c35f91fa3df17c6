// Profiles whose payloads are sealed for a device: the envelope is kept and
// written back as it came, whatever the profile can or can't open.

#include "ModelTestSupport.h"

#include "plist/XmlWriter.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
const QString sealedName = QStringLiteral("EncryptedPayloadContent");
const QString contentName = QStringLiteral("PayloadContent");
const QByteArray envelope = QByteArray::fromHex("3082000a06092a864886f70d010703a0");

plist::Dictionary sealedTree(const plist::Value& sealed) {
    return {{"PayloadType", "Configuration"},          {"PayloadUUID", "ROOT-UUID"},
            {"PayloadIdentifier", "org.example.root"}, {"PayloadVersion", 1},
            {"PayloadDisplayName", "Sealed"},          {sealedName, sealed}};
}

Profile::Pointer parse(const plist::Dictionary& root) {
    auto parsed = Profile::parseProfile(*plist::XmlWriter::write(plist::Value(root)), fixtureDomains(),
                                        makeTestEnvironment());
    return parsed ? *parsed : nullptr;
}

TEST(SealedPayloadsTest, EnvelopeIsKeptAndWrittenBackWithoutOpenContent) {
    const Profile::Pointer profile = parse(sealedTree(plist::Value(envelope)));
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->encryptedPayloadContent(), envelope);
    EXPECT_TRUE(profile->configurationPayloads().isEmpty());
    const plist::Dictionary written = profile->profileDictionary();
    EXPECT_EQ(written.data(sealedName), envelope);
    EXPECT_FALSE(written.contains(contentName));
    EXPECT_FALSE(profile->rootPayload()
                     ->unfamiliarPreferenceKeys()
                     .value_or(plist::Dictionary())
                     .contains(sealedName));

    // Without the means to open it, it stays sealed; new recipients can't be given.
    EXPECT_EQ(profile->decryptPayloadContent(QStringLiteral("Anyone")).error(),
              ProfileEncryptionServices::Failure::keyUnavailable);
    profile->setEncryptForCertificates({QByteArray("certificate")});
    EXPECT_FALSE(profile->profileData());
    profile->setEncryptForCertificates({});

    // A payload added beside the sealed ones is written in the open rather than lost.
    profile->addPayload(fixtureDomain(QStringLiteral("everything")));
    const plist::Dictionary both = profile->profileDictionary();
    EXPECT_EQ(both.data(sealedName), envelope);
    EXPECT_EQ(both.array(contentName)->size(), 1);
}

TEST(SealedPayloadsTest, EnvelopeThatIsNoDataIsNoPayloadContent) {
    EXPECT_FALSE(parse(sealedTree(plist::Value(QStringLiteral("not data")))));
}

} // namespace
} // namespace quorlin
