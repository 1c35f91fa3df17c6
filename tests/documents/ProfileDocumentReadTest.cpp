// Opening a document: plain and signed files, the refusals and their words,
// the signer matched against the user's identities, empty and template files.

#include "DocumentFixture.h"

#include "documents/DocumentErrorWords.h"

namespace quorlin::test {
namespace {

using ProfileDocumentReadTest = DocumentFixture;

TEST_F(ProfileDocumentReadTest, PlainXmlAndBinaryFilesOpenWithTheirFile) {
    for (const QString& name :
         {QStringLiteral("every-kind.mobileconfig"), QStringLiteral("every-kind-binary.mobileconfig")}) {
        SCOPED_TRACE(name.toStdString());
        auto document = openDocument(readFile(testDataPath(QStringLiteral("model/profiles/") + name)), name);
        ASSERT_TRUE(document->profile());
        EXPECT_FALSE(document->profile()->configurationPayloads().isEmpty());
        EXPECT_EQ(document->filePath(), folder.filePath(name));
        EXPECT_EQ(document->displayName(), QFileInfo(name).completeBaseName());
        EXPECT_EQ(document->shouldBeValueValidatedOnLaunch(), true);
        EXPECT_FALSE(document->profile()->saveSignedWithCommonName());
        EXPECT_FALSE(document->isDocumentEdited());
    }
}

TEST_F(ProfileDocumentReadTest, EmptyFileIsANewProfileNamedAfterItsWindow) {
    auto document = makeDocument();
    document->setTransient(true);
    ASSERT_TRUE(document->readFromData({}));
    EXPECT_FALSE(document->profile());
    EXPECT_EQ(document->shouldBeValueValidatedOnLaunch(), false);

    ASSERT_TRUE(document->makeWindowControllers());
    ASSERT_TRUE(document->profile());
    EXPECT_EQ(document->profile()->rootPayload()->displayName(), QStringLiteral("Untitled"));
    // Naming the profile is the document's doing, not an edit.
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_TRUE(document->isTransient());

    document->profile()->rootPayload()->payloadDisplayNameKey()->setValue(
        plist::Value(QStringLiteral("Edited")));
    EXPECT_EQ(document->changeCount(), 1);
    EXPECT_FALSE(document->isTransient());
}

TEST_F(ProfileDocumentReadTest, OtherKindsOfProfileAreRefusedWithTheirCodeAndWords) {
    const QByteArray service = xml(profileTree({}, QStringLiteral("Profile Service")));
    const QByteArray enrollment = xml(profileTree({}, QStringLiteral("Enrollment Service")));

    auto named = makeDocument();
    auto refused = named->readFromFile(writeFile(QStringLiteral("service.mobileconfig"), service));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().domain, QStringLiteral("ProfileDocumentErrorDomain"));
    EXPECT_EQ(refused.error().code, 1);
    EXPECT_EQ(refused.error().filePath, folder.filePath(QStringLiteral("service.mobileconfig")));
    EXPECT_EQ(refused.error().words,
              QStringLiteral("The document “service.mobileconfig” is a profile service "
                             "payload and not a configuration profile."));
    EXPECT_FALSE(named->profile());

    refused = makeDocument()->readFromFile(writeFile(QStringLiteral("enroll.mobileconfig"), enrollment));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().code, 2);
    EXPECT_EQ(refused.error().words, DocumentErrorWords::enrollmentServicePayload.arg("enroll.mobileconfig"));

    // Without a file the words name none.
    refused = makeDocument()->readFromData(service);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().code, 1);
    EXPECT_FALSE(refused.error().filePath);
    EXPECT_EQ(refused.error().words, DocumentErrorWords::profileServicePayloadAnonymous);
    refused = makeDocument()->readFromData(enrollment);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().words, DocumentErrorWords::enrollmentServicePayloadAnonymous);

    // A signed refusal is refused for what it holds, not as unreadable.
    refused = makeDocument()->readFromData(signedBytes(service, false));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().code, 1);
}

TEST_F(ProfileDocumentReadTest, WhatIsNoConfigurationProfileFailsWithCodeZeroAndNoFile) {
    plist::Dictionary noContent = profileTree({});
    noContent.remove(QStringLiteral("PayloadContent"));
    plist::Dictionary contentDictionary = profileTree({});
    contentDictionary.insert(QStringLiteral("PayloadContent"), plist::Dictionary());
    const QList<QByteArray> unreadable = {
        "not a property list",
        xml(noContent),
        xml(contentDictionary),
        xml(profileTree({}, QStringLiteral("Something Else"))),
        *plist::XmlWriter::write(plist::Value(plist::Array{QStringLiteral("root is an array")})),
        signedBytes("signed, but no property list", false),
    };
    for (const QByteArray& bytes : unreadable) {
        SCOPED_TRACE(bytes.left(80).toStdString());
        const auto refused =
            makeDocument()->readFromFile(writeFile(QStringLiteral("bad.mobileconfig"), bytes));
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error().domain, DocumentError::profileDocumentErrorDomain);
        EXPECT_EQ(refused.error().code, 0);
        EXPECT_FALSE(refused.error().filePath);
        EXPECT_EQ(refused.error().words, DocumentErrorWords::cannotRead);
    }
}

// The platform's parser refuses empty data elements and needs a repair; ours
// reads them as empty data, so such files open as they are.
TEST_F(ProfileDocumentReadTest, AFileOfTwoHundredMegabytesIsRefusedUnreadWithItsNameAndSize) {
    QFile file(path(QStringLiteral("huge.mobileconfig")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(qint64(200) << 20)); // sparse: nothing to write
    file.close();
    const auto refused = makeDocument()->readFromFile(file.fileName());
    ASSERT_FALSE(refused);
    EXPECT_TRUE(refused.error().words.contains(QStringLiteral("“huge.mobileconfig”")));
    EXPECT_TRUE(refused.error().words.contains(QStringLiteral("200 MB")))
        << refused.error().words.toStdString();
}

TEST_F(ProfileDocumentReadTest, EmptyDataElementsOpenAndOtherParseFaultsDoNot) {
    QByteArray bytes = simpleProfile();
    const QByteArray marker = "<key>PayloadVersion</key>";
    const int at = int(bytes.indexOf(marker));
    ASSERT_GT(at, 0);
    for (const QByteArray& empty : {QByteArray("<data/>"), QByteArray("<data></data>")}) {
        QByteArray withEmptyData = bytes;
        withEmptyData.insert(at, "<key>Blob</key>" + empty);
        auto document = openDocument(withEmptyData);
        ASSERT_TRUE(document->profile());
        const plist::Dictionary saved = readPlain(*document->data());
        const plist::Dictionary& first = *saved.array(QStringLiteral("PayloadContent"))->first().dictionary();
        EXPECT_EQ(first.data(QStringLiteral("Blob")), QByteArray());
    }
    QByteArray broken = bytes;
    broken.insert(at, "<key>Blob</key><data>");
    const auto refused = makeDocument()->readFromData(broken);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().code, 0);
}

TEST_F(ProfileDocumentReadTest, SignerAmongTheIdentitiesBecomesTheSigningChoice) {
    auto document = openDocument(signedBytes(simpleProfile(), true));
    ASSERT_TRUE(document->profile());
    EXPECT_EQ(document->profile()->saveSignedWithCommonName(), signerName);
    EXPECT_FALSE(document->profile()->loadedSignedButCannotBeSignedWithLoadedIdentity());
    EXPECT_EQ(document->filePath(), folder.filePath(QStringLiteral("opened.mobileconfig")));
}

TEST_F(ProfileDocumentReadTest, UnknownSignerLeavesNoFileSoAPlainSaveAsksForAPlace) {
    const QByteArray original = signedBytes(simpleProfile(), false);
    auto document = openDocument(original);
    ASSERT_TRUE(document->profile());
    EXPECT_TRUE(document->profile()->loadedSignedButCannotBeSignedWithLoadedIdentity());
    EXPECT_FALSE(document->profile()->saveSignedWithCommonName());
    EXPECT_FALSE(document->filePath());

    ASSERT_TRUE(document->makeWindowControllers());
    panel.answer = SavePanelChoice{path(QStringLiteral("copy.mobileconfig")), QString()};
    const auto saved = document->save(ProfileDocument::SaveOperation::save);
    ASSERT_TRUE(saved);
    EXPECT_TRUE(saved->saved);
    ASSERT_EQ(panel.requests.size(), 1);
    EXPECT_EQ(panel.requests.first().suggestedName, QStringLiteral("Document Test"));
    EXPECT_FALSE(panel.requests.first().signingCommonName);
    EXPECT_EQ(readFile(path(QStringLiteral("opened.mobileconfig"))), original);
    EXPECT_EQ(document->filePath(), path(QStringLiteral("copy.mobileconfig")));
    EXPECT_EQ(readPlain(readFile(path(QStringLiteral("copy.mobileconfig")))),
              document->profile()->profileDictionary());
}

TEST_F(ProfileDocumentReadTest, TemplatesOfNewProfilesAreNotValidatedOnOpen) {
    const auto withProperties = [](const plist::Value& isNew) {
        plist::Dictionary root = profileTree({});
        root.insert(QStringLiteral("ZNTHProfileProperties"),
                    plist::Dictionary{{QStringLiteral("IsNewProfile"), isNew}});
        return xml(root);
    };
    EXPECT_EQ(openDocument(withProperties(true))->shouldBeValueValidatedOnLaunch(), false);
    EXPECT_EQ(openDocument(withProperties(1))->shouldBeValueValidatedOnLaunch(), false);
    EXPECT_EQ(openDocument(withProperties(false))->shouldBeValueValidatedOnLaunch(), true);
    // A value of the wrong type doesn't make a template.
    EXPECT_EQ(openDocument(withProperties(QStringLiteral("yes")))->shouldBeValueValidatedOnLaunch(), true);
}

TEST_F(ProfileDocumentReadTest, CommandLineReadingNeedsNoDocument) {
    const auto made = ProfileDocument::makeProfile(simpleProfile(), fixtureDomains(), environment);
    ASSERT_TRUE(made);
    EXPECT_EQ((*made)->configurationPayloads().size(), 1);
    const auto refused = ProfileDocument::makeProfile(xml(profileTree({}, QStringLiteral("Profile Service"))),
                                                      fixtureDomains(), environment,
                                                      QStringLiteral("/somewhere/x.mobileconfig"));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().words, DocumentErrorWords::profileServicePayload.arg("x.mobileconfig"));
}

} // namespace
} // namespace quorlin::test
