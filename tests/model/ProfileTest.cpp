// Profiles: making one, reading one (and refusing what isn't one), keeping
// what no domain describes, identifier repair, the removal password link
// and the choice of signer.

#include "ModelTestSupport.h"

#include "plist/XmlWriter.h"

#include <QDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;
using Errors = Profile::Errors;
using ErrorKind = Profile::ValidationErrorKind;

QByteArray xml(const plist::Value& root) {
    return *plist::XmlWriter::write(root);
}

plist::Dictionary payloadDictionary(const QString& type, const QString& uuid, plist::Dictionary extra = {}) {
    extra.insert("PayloadType", type);
    extra.insert("PayloadUUID", uuid);
    extra.insert("PayloadVersion", 1);
    return extra;
}

plist::Dictionary profileTree(const plist::Array& content, const plist::Dictionary& extra = {}) {
    plist::Dictionary root{{"PayloadType", "Configuration"},
                           {"PayloadUUID", "ROOT-UUID"},
                           {"PayloadIdentifier", "org.example.root"},
                           {"PayloadVersion", 1},
                           {"PayloadDisplayName", "Test"},
                           {"PayloadContent", content}};
    for (auto entry = extra.begin(); entry != extra.end(); ++entry)
        root.insert(entry.key(), entry.value());
    return root;
}

class RecordingDelegate : public ProfileDelegate {
public:
    void profileDidChange(Profile&, Payload*, PreferenceKey* key) override {
        changes.append(key ? key->name() : QStringLiteral("<payload>"));
    }
    void profileRemovalPasswordPayloadCountDidChange(Profile&) override { ++removalPasswordCountChanges; }
    QStringList changes;
    int removalPasswordCountChanges = 0;
};

class ProfileTest : public ::testing::Test {
protected:
    Profile::Pointer parse(const plist::Value& root) {
        auto parsed = Profile::parseProfile(xml(root), fixtureDomains(), environment);
        EXPECT_TRUE(parsed);
        return parsed ? *parsed : nullptr;
    }
    Errors parseError(const QByteArray& data) {
        const auto parsed = Profile::parseProfile(data, fixtureDomains(), environment);
        EXPECT_FALSE(parsed);
        return parsed ? Errors::profileParsingFailedUnknown : parsed.error();
    }
    static plist::Dictionary saved(Profile& profile) {
        const auto data = profile.profileData();
        EXPECT_TRUE(data);
        const auto read = plist::PlistReader::read(data.value_or(QByteArray()));
        return read && read->root.dictionary() ? *read->root.dictionary() : plist::Dictionary();
    }
    static plist::Array savedContent(Profile& profile) {
        const plist::Dictionary root = saved(profile);
        return root.array("PayloadContent") ? *root.array("PayloadContent") : plist::Array();
    }

    std::shared_ptr<ProfileEnvironment> environment = makeTestEnvironment();
};

TEST_F(ProfileTest, NewProfileNeedsARootDomain) {
    EXPECT_FALSE(Profile::makeNewProfile({fixtureDomain("everything")}, environment));
}

TEST_F(ProfileTest, NewProfileTakesIdentifiersAndPreferences) {
    environment->organizationName = "Example Org";
    environment->consentText = "Please agree";
    const auto profile = Profile::makeNewProfile(fixtureDomains(), environment);
    ASSERT_TRUE(profile);
    const QString uuid = CountingUUIDSource::format(1);
    EXPECT_EQ(profile->rootPayload()->stringValue("PayloadUUID"), uuid);
    EXPECT_EQ(profile->payloadIdentifier(), "Test-Host." + uuid);
    EXPECT_EQ(profile->preferencesDefault(".PayloadOrganization"),
              profile->rootPayload()->keyAtPath("PayloadOrganization"));
    EXPECT_EQ(profile->preferencesDefault(".ConsentText"),
              profile->rootPayload()->keyAtPath("ConsentText.default"));

    const plist::Dictionary root = saved(*profile);
    EXPECT_EQ(root.value("PayloadType"), plist::Value("Configuration"));
    EXPECT_EQ(root.value("PayloadOrganization"), plist::Value("Example Org"));
    EXPECT_EQ(root.value("ConsentText"), plist::Value(plist::Dictionary{{"default", "Please agree"}}));
    EXPECT_EQ(root.value("PayloadContent"), plist::Value(plist::Array{}));
}

TEST_F(ProfileTest, WhatIsNotAConfigurationProfileIsRefused) {
    EXPECT_EQ(parseError("not a property list"), Errors::profileParsingFailedUnknown);
    EXPECT_EQ(parseError(xml(plist::Array{1})), Errors::profileParsingFailedUnknown);
    EXPECT_EQ(parseError(xml(plist::Dictionary{{"PayloadContent", plist::Array{}}})),
              Errors::profileParsingFailedUnknown);
    EXPECT_EQ(parseError(xml(profileTree({}, {{"PayloadType", "Profile Service"}}))),
              Errors::profileParsingFailedProfileServicePayload);
    EXPECT_EQ(parseError(xml(profileTree({}, {{"PayloadType", "Enrollment Service"}}))),
              Errors::profileParsingFailedEnrollmentServicePayload);
    EXPECT_EQ(parseError(xml(profileTree({}, {{"PayloadType", "configuration"}}))),
              Errors::profileParsingFailedUnknown);
    plist::Dictionary withoutContent = profileTree({});
    withoutContent.remove("PayloadContent");
    EXPECT_EQ(parseError(xml(withoutContent)), Errors::profileParsingFailedUnknown);
    EXPECT_EQ(parseError(xml(profileTree({}, {{"PayloadContent", "none"}}))),
              Errors::profileParsingFailedUnknown);

    // One payload, as consoles export them, becomes the payload of a new profile.
    const plist::Dictionary exported = payloadDictionary("com.example.everything", "E-1", {{"Count", 3}});
    const auto wrapped = parse(plist::Value(exported));
    ASSERT_TRUE(wrapped);
    EXPECT_TRUE(wrapped->wrappedSinglePayload());
    ASSERT_EQ(wrapped->configurationPayloads().size(), 1);
    EXPECT_EQ(wrapped->configurationPayloads().first()->writeOutDictionary().value("Count"), plist::Value(3));
    EXPECT_EQ(wrapped->payloadIdentifier(), "Test-Host." + CountingUUIDSource::format(1)) << "a new root";

    const auto noRoot =
        Profile::parseProfile(xml(profileTree({})), {fixtureDomain("everything")}, environment);
    ASSERT_FALSE(noRoot);
    EXPECT_EQ(noRoot.error(), Errors::profileParsingFailedUnknown);
}

TEST_F(ProfileTest, UnknownPayloadsAreKeptAndSavedAfterKnownOnes) {
    const plist::Dictionary unknown =
        payloadDictionary("com.vendor.secret", "U-1", {{"Anything", plist::Array{1, 2}}});
    const plist::Dictionary known = payloadDictionary(
        "com.example.everything", "K-1", {{"PayloadIdentifier", "org.example.known"}, {"Name", "n"}});
    const auto profile = parse(profileTree({unknown, known}));
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->unfamiliarPayloads(), QList<plist::Dictionary>{unknown});
    ASSERT_EQ(profile->configurationPayloads().size(), 1);

    const plist::Array content = savedContent(*profile);
    ASSERT_EQ(content.size(), 2);
    EXPECT_EQ(content[0].dictionary()->value("PayloadUUID"), plist::Value("K-1"));
    EXPECT_EQ(content[1], plist::Value(unknown));
}

TEST_F(ProfileTest, MalformedContentIsDroppedAndFlagged) {
    const auto profile = parse(profileTree(
        {"a string", plist::Dictionary{{"PayloadUUID", "X"}}, payloadDictionary("", "E-1"),
         payloadDictionary("com.example.everything", "K-1", {{"PayloadIdentifier", "org.example.k"}})}));
    ASSERT_TRUE(profile);
    EXPECT_TRUE(profile->malformedPayloadContentRemoved());
    EXPECT_EQ(savedContent(*profile).size(), 1);

    EXPECT_FALSE(parse(profileTree({}))->malformedPayloadContentRemoved());
}

TEST_F(ProfileTest, DuplicateUUIDIsReplacedOnSaveForTheLaterPayloadOnly) {
    const auto profile = parse(profileTree(
        {payloadDictionary("com.example.everything", "SAME", {{"PayloadIdentifier", "org.example.a"}}),
         payloadDictionary("com.example.everything", "SAME", {{"PayloadIdentifier", "org.example.b"}})}));
    const auto second = profile->configurationPayloads()[1];
    EXPECT_EQ(profile->validationErrors(),
              (QList<Profile::ValidationError>{{ErrorKind::nonUniquePayloadUUIDFound, second}}));

    const plist::Array content = savedContent(*profile);
    EXPECT_EQ(content[0].dictionary()->value("PayloadUUID"), plist::Value("SAME"));
    EXPECT_EQ(content[1].dictionary()->value("PayloadUUID"), plist::Value(CountingUUIDSource::format(1)));
    EXPECT_TRUE(profile->validationErrors().isEmpty());
}

TEST_F(ProfileTest, IdentifierLeftAtDefaultOrRepeatedIsRegenerated) {
    const auto profile = parse(profileTree(
        {payloadDictionary("com.example.everything", "A", {{"PayloadIdentifier", "com.example.everything"}}),
         payloadDictionary("com.example.everything", "B", {{"PayloadIdentifier", "org.example.root"}})}));
    const auto& payloads = profile->configurationPayloads();
    EXPECT_EQ(profile->validationErrors(),
              (QList<Profile::ValidationError>{{ErrorKind::identifierValueEqualsItsDefault, payloads[0]},
                                               {ErrorKind::nonUniquePayloadIdentifierFound, payloads[1]}}));
    profile->repairValidationErrors();
    EXPECT_EQ(payloads[0]->stringValue("PayloadIdentifier"), "com.example.everything.A");
    EXPECT_EQ(payloads[1]->stringValue("PayloadIdentifier"), "com.example.everything.B");
}

TEST_F(ProfileTest, MissingRequiredIdentifiersAreReportedButNotRepaired) {
    // Without a default, nothing fills the identifier in.
    const auto bareDomain =
        domainWithKeys({keyTree("PayloadUUID", "string", {{"pfm_require", "always"}}),
                        keyTree("PayloadIdentifier", "string", {{"pfm_require", "always"}})},
                       "com.example.bare");
    const auto parsed =
        Profile::parseProfile(xml(profileTree({plist::Dictionary{{"PayloadType", "com.example.bare"}}})),
                              fixtureDomains() << bareDomain, environment);
    ASSERT_TRUE(parsed);
    const auto profile = *parsed;
    const auto payload = profile->configurationPayloads().first();
    EXPECT_EQ(profile->validationErrors(),
              (QList<Profile::ValidationError>{{ErrorKind::noRequiredPayloadUUIDKeyFound, payload},
                                               {ErrorKind::noRequiredPayloadIdentifierFound, payload}}));
    const plist::Array content = savedContent(*profile);
    EXPECT_FALSE(content[0].dictionary()->contains("PayloadUUID"));
    EXPECT_FALSE(content[0].dictionary()->contains("PayloadIdentifier"));
}

TEST_F(ProfileTest, NewUUIDsAvoidThoseInUse) {
    environment->uuids = std::make_shared<CountingUUIDSource>(2);
    const auto profile = Profile::makeNewProfile(fixtureDomains(), environment);
    const auto payload = profile->addPayload(fixtureDomain("everything"));
    EXPECT_EQ(profile->rootPayload()->stringValue("PayloadUUID"), CountingUUIDSource::format(1));
    EXPECT_EQ(payload->stringValue("PayloadUUID"), CountingUUIDSource::format(2));
}

TEST_F(ProfileTest, RemovalPasscodeAndItsPayloadFollowEachOther) {
    const auto profile = Profile::makeNewProfile(fixtureDomains(), environment);
    auto delegate = std::make_shared<RecordingDelegate>();
    profile->setDelegate(delegate);
    const auto passcode = profile->rootPayload()->keyAtPath("HasRemovalPasscode");

    passcode->setValue(plist::Value(true));
    passcode->setValue(plist::Value(true));
    ASSERT_EQ(profile->configurationPayloads().size(), 1);
    EXPECT_EQ(profile->configurationPayloads().first()->domainPrototype().domainString(),
              "com.apple.profileRemovalPassword");
    EXPECT_EQ(delegate->removalPasswordCountChanges, 1);

    passcode->setValue(plist::Value(false));
    EXPECT_TRUE(profile->configurationPayloads().isEmpty());
    EXPECT_EQ(delegate->removalPasswordCountChanges, 2);

    const auto added = profile->addPayload(fixtureDomain("removal-password"));
    EXPECT_EQ(*passcode->value().plistValue(), plist::Value(true));
    profile->removePayload(added);
    EXPECT_TRUE(passcode->value().isAbsent());
    EXPECT_TRUE(delegate->changes.contains("HasRemovalPasscode"));
    EXPECT_TRUE(delegate->changes.contains("<payload>"));
}

TEST_F(ProfileTest, SiblingProductsNewProfileGetsItsFirstPayload) {
    const plist::Dictionary properties{{"IsNewProfile", true}, {"PayloadType", "com.example.everything"}};
    const auto profile = parse(profileTree({}, {{"ZNTHProfileProperties", properties}}));
    EXPECT_EQ(profile->znthProfileProperties(), properties);
    ASSERT_EQ(profile->configurationPayloads().size(), 1);
    EXPECT_FALSE(saved(*profile).contains("ZNTHProfileProperties"));

    const plist::Dictionary single{{"IsNewProfile", true},
                                   {"PayloadType", "com.apple.profileRemovalPassword"}};
    const auto withSingle = parse(profileTree({payloadDictionary("com.apple.profileRemovalPassword", "R-1",
                                                                 {{"PayloadIdentifier", "org.example.r"}})},
                                              {{"ZNTHProfileProperties", single}}));
    EXPECT_EQ(withSingle->configurationPayloads().size(), 1);
}

TEST_F(ProfileTest, SigningNeedsAKnownIdentity) {
    const auto profile = Profile::makeNewProfile(fixtureDomains(), environment);
    profile->setSaveSignedWithCommonName(QStringLiteral("Developer ID: Jane"));
    EXPECT_FALSE(profile->signingName(std::nullopt));
    EXPECT_FALSE(profile->profileData());

    const auto unsignedData = profile->profileData(QString());
    ASSERT_TRUE(unsignedData);
    EXPECT_TRUE(plist::PlistReader::read(*unsignedData));
    EXPECT_FALSE(profile->saveSignedWithCommonName());
}

} // namespace
} // namespace quorlin
