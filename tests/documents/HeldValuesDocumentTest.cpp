// Profiles of the team's making that hold what the bundled manifests don't
// allow, one file per kind: opened and saved as a document, nothing is lost.

#include "DocumentFixture.h"

#include <QDir>

namespace quorlin::test {
namespace {

const QString bundledFolder = QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor/Manifests");

Profile::DomainList bundledDomains() {
    Profile::DomainList domains;
    for (const QString& name : QDir(bundledFolder).entryList({"*.plist"}, QDir::Files))
        domains.append(PFMDomain::make(readDictionary(QDir(bundledFolder).filePath(name))));
    return domains;
}

// Payloads of known types first, as saving puts them.
plist::Dictionary knownPayloadsFirst(plist::Dictionary profile, const Profile::DomainList& domains) {
    plist::Array known;
    plist::Array unknown;
    for (const plist::Value& payload : *profile.array("PayloadContent")) {
        const auto type = payload.dictionary()->string("PayloadType").value_or(QString());
        const bool isKnown = std::any_of(domains.begin(), domains.end(),
                                         [&](const auto& domain) { return domain->domainString() == type; });
        (isKnown ? known : unknown).append(payload);
    }
    profile.insert("PayloadContent", known + unknown);
    return profile;
}

class HeldValuesDocumentTest : public DocumentFixture, public ::testing::WithParamInterface<const char*> {
protected:
    std::unique_ptr<ProfileDocument> openBundled(const QString& filePath) {
        auto document = std::make_unique<ProfileDocument>(domains, environment, defaults);
        document->setNoticePresenter(&notices);
        document->setSavePanelPresenter(&panel);
        const auto read = document->readFromFile(filePath);
        EXPECT_TRUE(read) << (read ? "" : read.error().words.toStdString());
        return document;
    }
    const Profile::DomainList domains = bundledDomains();
};

TEST_P(HeldValuesDocumentTest, OpeningAndSavingKeepsEveryValue) {
    const QString name = QString::fromUtf8(GetParam());
    const QByteArray original = readFile(testDataPath("held-values/" + name));
    auto document = openBundled(writeFile(name, original));
    const qsizetype held = document->profile()->heldValueCount();
    EXPECT_GT(held, 0);
    ASSERT_TRUE(document->makeWindowControllers());
    document->windowDidShow();
    bool saved = false;
    document->saveDocument(1, [&](const auto& outcome) { saved = outcome && outcome->saved; });
    ASSERT_EQ(notices.shown.size(), 1);
    EXPECT_TRUE(notices.shown[0].notice.informativeText.contains(
        QStringLiteral("The file keeps %1 value(s) that the manifests don't allow").arg(held)));
    notices.shown[0].reply({1, false});
    ASSERT_TRUE(saved);
    EXPECT_EQ(readPlain(readFile(path(name))), knownPayloadsFirst(readPlain(original), domains));
}

INSTANTIATE_TEST_SUITE_P(Corpus, HeldValuesDocumentTest,
                         ::testing::Values("excluded.mobileconfig", "wrong-class.mobileconfig",
                                           "undescribed-nested.mobileconfig"));

TEST_F(DocumentFixture, OnePayloadOpensAsANewUntitledProfileWithANotice) {
    const plist::Dictionary payload{{"PayloadType", "com.example.everything"},
                                    {"PayloadUUID", "AAAAAAAA-BBBB-4CCC-8DDD-EEEEEEEEEEEE"},
                                    {"PayloadIdentifier", "org.example.exported"},
                                    {"PayloadVersion", 1},
                                    {"PayloadDisplayName", "Exported"},
                                    {"Count", 3}};
    auto document = openDocument(xml(payload), QStringLiteral("exported.mobileconfig"));
    ASSERT_TRUE(document->profile());
    EXPECT_TRUE(document->profile()->wrappedSinglePayload());
    ASSERT_EQ(document->profile()->configurationPayloads().size(), 1);
    EXPECT_EQ(document->profile()->configurationPayloads().first()->writeOutDictionary(), payload);
    EXPECT_FALSE(document->filePath()) << "saving asks for a new place";
    EXPECT_TRUE(document->makeWindowControllers());
    document->presentOpeningNotices();
    document->windowDidShow();
    EXPECT_TRUE(notices.kinds().contains(DocumentNotice::Kind::singlePayloadWrapped));

    for (const char* refused : {"Profile Service", "Enrollment Service"}) {
        auto refusedDocument = makeDocument();
        EXPECT_FALSE(refusedDocument->readFromData(xml(profileTree({}, refused))));
    }
}

} // namespace
} // namespace quorlin::test
