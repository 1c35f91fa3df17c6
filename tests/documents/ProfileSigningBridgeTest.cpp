#include "SigningFixture.h"

#include "documents/ProfileSigningBridge.h"

namespace quorlin::test {
namespace {

using ProfileSigningBridgeTest = SigningFixture;

TEST_F(ProfileSigningBridgeTest, SignsByNameAndReadsBackContentAndSigners) {
    ASSERT_TRUE(importIdentity(leaf));
    ASSERT_TRUE(importIdentity(namelessLeaf));
    ProfileSigningBridge bridge(SigningServices(&passphrases, folder.filePath(QStringLiteral("data"))));

    QStringList names = bridge.identityCommonNames();
    names.sort();
    EXPECT_EQ(names, (QStringList{signerName, "Unknown"}));

    const QByteArray profile = "<plist version=\"1.0\"><dict/></plist>";
    const std::optional<QByteArray> signedProfile = bridge.sign(profile, signerName);
    ASSERT_TRUE(signedProfile);
    EXPECT_FALSE(bridge.sign(profile, QStringLiteral("Nobody")));

    const std::optional<ProfileSigningServices::SignedContent> read =
        bridge.readSignedContent(*signedProfile);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->content, profile);
    EXPECT_EQ(read->signerCommonNames, QStringList{signerName});
    EXPECT_FALSE(bridge.readSignedContent(profile));
}

} // namespace
} // namespace quorlin::test
