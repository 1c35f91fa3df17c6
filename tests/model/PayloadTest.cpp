// Payloads: what a read payload keeps, how identifiers are made, and the
// export of one payload as a preference file.

#include "ModelTestSupport.h"
#include "support/DataManifests.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;

const QString uuid = QStringLiteral("11111111-2222-4333-8444-555555555555");

plist::Array identityKeys(const std::optional<QString>& identifierDefault) {
    plist::Dictionary identifier{{"pfm_require", "always"}};
    if (identifierDefault)
        identifier.insert("pfm_default", *identifierDefault);
    return {keyTree("PayloadUUID", "string", {{"pfm_require", "always"}}),
            keyTree("PayloadIdentifier", "string", identifier), keyTree("PayloadDisplayName", "string"),
            keyTree("Note", "string")};
}

std::shared_ptr<ProfileEnvironment> environmentWith(std::optional<QString> prefix,
                                                    std::optional<QString> host) {
    auto environment = makeTestEnvironment();
    environment->identifierPrefix = [prefix] { return prefix; };
    environment->hostName = std::move(host);
    return environment;
}

TEST(PayloadTest, UndescribedTopLevelEntriesComeBackUnchanged) {
    const plist::Dictionary input{{"Name", "n"},
                                  {"VendorSetting", plist::Dictionary{{"deep", plist::Array{1, "x"}}}},
                                  {"Legacy", plist::Value(QByteArray("\x00\x01", 2))}};
    const auto payload = Payload::make(fixtureDomain("everything"), nullptr, makeTestEnvironment(), input);
    ASSERT_TRUE(payload->unfamiliarPreferenceKeys());
    EXPECT_EQ(payload->unfamiliarPreferenceKeys()->keys(), (QStringList{"Legacy", "VendorSetting"}));
    const plist::Dictionary written = payload->writeOutDictionary();
    for (const QString& name : input.keys())
        EXPECT_EQ(written.value(name), input.value(name)) << name.toStdString();
    // Required keys missing from the input come back with their defaults.
    EXPECT_EQ(written.value("PayloadVersion"), plist::Value(1));

    payload->clearUnfamiliarPreferenceKeys();
    EXPECT_FALSE(payload->writeOutDictionary().contains("VendorSetting"));
}

TEST(PayloadTest, GhostValueReadFromFileIsWrittenBack) {
    const auto domain = domainWithKeys({keyTree("Shadow", "string", {{"pfm_quorlin_ghost_key", true}})});
    const auto payload =
        Payload::make(domain, nullptr, makeTestEnvironment(), plist::Dictionary{{"Shadow", "s"}});
    EXPECT_EQ(*payload->keyAtPath("Shadow")->value().plistValue(), plist::Value("s"));
    EXPECT_FALSE(payload->unfamiliarPreferenceKeys());
    EXPECT_EQ(payload->writeOutDictionary(), (plist::Dictionary{{"Shadow", "s"}}));
}

TEST(PayloadTest, NewPayloadJoinsTheDomainDefaultIdentifierAndItsUUID) {
    const auto payload =
        Payload::makeNewPayload(fixtureDomain("everything"), nullptr, makeTestEnvironment(), uuid);
    EXPECT_EQ(payload->stringValue("PayloadUUID"), uuid);
    EXPECT_EQ(payload->stringValue("PayloadIdentifier"), "com.example.everything." + uuid);
    EXPECT_EQ(payload->stringValue("PayloadType"), "com.example.everything");
    EXPECT_EQ(payload->displayName(), "com.example.everything");
}

TEST(PayloadTest, IdentifierWithoutDomainDefaultUsesPrefixThenHostName) {
    const auto domain = domainWithKeys(identityKeys(std::nullopt));
    const auto withPrefix =
        Payload::makeNewPayload(domain, nullptr, environmentWith("org.example", "Mac Pro (2)"), uuid);
    EXPECT_EQ(withPrefix->stringValue("PayloadIdentifier"), "org.example." + uuid);

    const auto fromHost = Payload::makeNewPayload(domain, nullptr, environmentWith("", "Mac Pro (2)"), uuid);
    EXPECT_EQ(fromHost->stringValue("PayloadIdentifier"), "Mac-Pro-2." + uuid);

    const auto nameless =
        Payload::makeNewPayload(domain, nullptr, environmentWith(std::nullopt, std::nullopt), uuid);
    EXPECT_EQ(nameless->stringValue("PayloadIdentifier"), "." + uuid);
}

TEST(PayloadTest, HostNameLosesEverythingButLettersDigitsAndDashes) {
    EXPECT_EQ(ProfileEnvironment::identifierPrefixFromHostName("Jane's MacBook Air"), "Janes-MacBook-Air");
    EXPECT_EQ(ProfileEnvironment::identifierPrefixFromHostName("büro_rechner.local"), "brorechnerlocal");
}

TEST(PayloadTest, RootIdentifierIgnoresTheDefault) {
    const auto domain = domainWithKeys(identityKeys(QStringLiteral("com.example.root")), QString());
    const auto root = Payload::makeNewPayload(domain, nullptr, environmentWith("org.example", {}), uuid);
    EXPECT_EQ(root->stringValue("PayloadIdentifier"), "org.example." + uuid);
}

TEST(PayloadTest, IdentifierWithoutUUIDTakesAFreshOne) {
    const auto payload = Payload::make(fixtureDomain("everything"), nullptr, makeTestEnvironment());
    EXPECT_EQ(payload->generateIdentifier(), "com.example.everything." + CountingUUIDSource::format(1));
    EXPECT_FALSE(payload->stringValue("PayloadUUID"));

    const auto withoutKey =
        Payload::make(domainWithKeys({keyTree("Note", "string")}), nullptr, makeTestEnvironment());
    EXPECT_FALSE(withoutKey->generateIdentifier());
}

TEST(PayloadTest, KeyAtPathNeedsDictionariesAlongTheWay) {
    const auto payload = Payload::make(fixtureDomain("everything"), nullptr, makeTestEnvironment());
    EXPECT_EQ(payload->keyAtPath("Settings.Inner.Flag")->name(), "Flag");
    EXPECT_FALSE(payload->keyAtPath("Settings.Missing"));
    EXPECT_FALSE(payload->keyAtPath("Name.Anything"));
    EXPECT_FALSE(payload->keyAtPath(""));
}

TEST(PayloadTest, ExportCanStripThePayloadKeys) {
    QTemporaryDir folder;
    const auto payload =
        Payload::makeNewPayload(fixtureDomain("everything"), nullptr, makeTestEnvironment(), uuid);
    payload->keyAtPath("Count")->setValue(plist::Value(3));
    const QString path = folder.filePath("export.plist");

    ASSERT_TRUE(payload->exportToFile(path, true));
    EXPECT_EQ(readDictionary(path), (plist::Dictionary{{"Count", 3}}));
    ASSERT_TRUE(payload->exportToFile(path, false));
    EXPECT_EQ(readDictionary(path), payload->writeOutDictionary());
    EXPECT_FALSE(payload->exportToFile(folder.filePath("no/such/folder.plist"), false));
}

TEST(PayloadTest, FileBasedPayloadTakesTheFileBytesAndName) {
    QTemporaryDir folder;
    const QString path = folder.filePath("certificate.cer");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("\x30\x82\x01\x0a", 4));
    file.close();
    const auto domain = dataDomain("model/manifests/file-based.plist");
    const auto payload = Payload::makeNewPayloadFromFile(domain, nullptr, makeTestEnvironment(), uuid, path);
    EXPECT_EQ(payload->writeOutDictionary(),
              (plist::Dictionary{{"PayloadContent", plist::Value(QByteArray("\x30\x82\x01\x0a", 4))},
                                 {"PayloadCertificateFileName", "certificate.cer"}}));

    const auto unreadable = Payload::makeNewPayloadFromFile(domain, nullptr, makeTestEnvironment(), uuid,
                                                            folder.filePath("gone.cer"));
    EXPECT_TRUE(unreadable->keyAtPath("PayloadContent")->value().isAbsent());
}

} // namespace
} // namespace quorlin
