// Saving a document: the warning about invalid values, the save panel and
// its signing choice, signed and unsigned output, what no data means, the
// defaults remembered, and the change count around a save.

#include "DocumentFixture.h"

#include "documents/DocumentErrorWords.h"
#include "support/ScratchMount.h"

namespace quorlin::test {
namespace {

using SaveOperation = ProfileDocument::SaveOperation;
using SaveOutcome = Expected<ProfileDocument::SaveResult, DocumentError>;

class ProfileDocumentSaveTest : public DocumentFixture {
protected:
    std::unique_ptr<ProfileDocument> newDocument() {
        auto document = makeDocument();
        EXPECT_TRUE(document->readFromData({}));
        EXPECT_TRUE(document->makeWindowControllers());
        document->windowDidShow();
        return document;
    }

    static void edit(ProfileDocument& document, const QString& displayName) {
        document.profile()->rootPayload()->payloadDisplayNameKey()->setValue(plist::Value(displayName));
    }

    // The outcome of a save that may wait for a reply; nothing while it waits.
    struct Outcome {
        std::optional<SaveOutcome> result;
        ProfileDocument::SaveCompletion completion() {
            return [this](const SaveOutcome& outcome) { result = outcome; };
        }
    };
};

TEST_F(ProfileDocumentSaveTest, InvalidValuesAskBeforeSavingUntilSilenced) {
    auto document = newDocument();
    const QString target = path(QStringLiteral("checked.mobileconfig"));
    panel.answer = SavePanelChoice{target, QString()};

    Outcome clean;
    document->saveDocument(0, clean.completion());
    ASSERT_TRUE(clean.result && *clean.result);
    EXPECT_TRUE((*clean.result)->saved);
    EXPECT_TRUE(notices.shown.isEmpty());
    const QByteArray firstSave = readFile(target);

    edit(*document, QStringLiteral("Changed"));
    Outcome one;
    document->saveDocument(1, one.completion());
    EXPECT_FALSE(one.result);
    ASSERT_EQ(notices.shown.size(), 1);
    const DocumentNotice& notice = notices.shown[0].notice;
    EXPECT_EQ(notice.title, QStringLiteral("Profile May Fail Installation"));
    EXPECT_EQ(notice.style, DocumentNotice::Style::warning);
    EXPECT_EQ(
        notice.informativeText,
        QStringLiteral("The profile contains one property with an invalid value (affected section is marked "
                       "with a red badge).\n\nInvalid values can cause the profile to fail installation on "
                       "device."));
    EXPECT_EQ(notice.suppressionTitle, QStringLiteral("Do not show this notice again"));
    ASSERT_EQ(notice.buttons.size(), 2);
    EXPECT_EQ(notice.buttons[0].title, QStringLiteral("Continue with Saving"));
    EXPECT_EQ(notice.buttons[1].title, QStringLiteral("Cancel"));

    // Cancel with the box ticked: no save, and no warning ever again.
    notices.shown[0].reply({0, true});
    ASSERT_TRUE(one.result && *one.result);
    EXPECT_FALSE((*one.result)->saved);
    EXPECT_EQ(readFile(target), firstSave);
    EXPECT_EQ(defaults.boolean(DefaultsKey::noticeSuppressProfileInvalid), true);

    Outcome silenced;
    document->saveDocument(3, silenced.completion());
    ASSERT_TRUE(silenced.result && *silenced.result);
    EXPECT_TRUE((*silenced.result)->saved);
    EXPECT_EQ(notices.shown.size(), 1);
    EXPECT_NE(readFile(target), firstSave);
}

TEST_F(ProfileDocumentSaveTest, ManyInvalidValuesAreCountedAndContinueSaves) {
    auto document = newDocument();
    document->windowDidHide();
    panel.answer = SavePanelChoice{path(QStringLiteral("many.mobileconfig")), QString()};
    Outcome outcome;
    document->saveDocumentAs(3, outcome.completion());
    EXPECT_TRUE(notices.shown.isEmpty());
    EXPECT_EQ(document->queuedNoticeCount(), 1);

    document->windowDidShow();
    ASSERT_EQ(notices.shown.size(), 1);
    EXPECT_EQ(notices.shown[0].notice.informativeText, DocumentErrorWords::profileInvalidPluralInfo.arg(3));
    EXPECT_TRUE(notices.shown[0].notice.informativeText.startsWith(
        QStringLiteral("The profile contains 3 properties with invalid values")));
    notices.shown[0].reply({1, false});
    ASSERT_TRUE(outcome.result && *outcome.result);
    EXPECT_TRUE((*outcome.result)->saved);
    EXPECT_FALSE(defaults.boolean(DefaultsKey::noticeSuppressProfileInvalid));
    EXPECT_TRUE(QFile::exists(path(QStringLiteral("many.mobileconfig"))));
}

TEST_F(ProfileDocumentSaveTest, UnsignedSaveWritesTheProfileAndForgetsTheEmptyName) {
    auto document = newDocument();
    edit(*document, QStringLiteral("Plain Profile"));
    ASSERT_TRUE(document->isDocumentEdited());
    panel.answer = SavePanelChoice{path(QStringLiteral("plain.mobileconfig")), QString()};

    const auto saved = document->save(SaveOperation::save);
    ASSERT_TRUE(saved);
    ASSERT_EQ(panel.requests.size(), 1);
    EXPECT_EQ(panel.requests[0].suggestedName, QStringLiteral("Plain Profile"));
    EXPECT_FALSE(panel.requests[0].currentFilePath);

    const auto reread = ProfileDocument::makeProfile(readFile(path(QStringLiteral("plain.mobileconfig"))),
                                                     fixtureDomains(), environment);
    ASSERT_TRUE(reread);
    EXPECT_EQ((*reread)->profileDictionary(), document->profile()->profileDictionary());
    // "Do not sign" stores an empty name, which the save doesn't keep.
    EXPECT_EQ(document->profile()->saveSignedWithCommonName(), std::nullopt);
    EXPECT_EQ(document->filePath(), path(QStringLiteral("plain.mobileconfig")));
    EXPECT_EQ(document->displayName(), QStringLiteral("plain"));

    // A plain save now goes to the file without the panel.
    edit(*document, QStringLiteral("Plain Profile 2"));
    ASSERT_TRUE(document->save(SaveOperation::save));
    EXPECT_EQ(panel.requests.size(), 1);
    EXPECT_EQ(readPlain(readFile(path(QStringLiteral("plain.mobileconfig")))).string("PayloadDisplayName"),
              QStringLiteral("Plain Profile 2"));
}

TEST_F(ProfileDocumentSaveTest, SignedSaveDecodesToTheSameProfileAndIsRemembered) {
    ASSERT_TRUE(importIdentity(leaf));
    auto document = newDocument();
    panel.answer = SavePanelChoice{path(QStringLiteral("signed.mobileconfig")), signerName};
    const auto saved = document->save(SaveOperation::saveAs);
    ASSERT_TRUE(saved) << saved.error().words.toStdString();
    EXPECT_EQ(panel.requests[0].availableIdentities, QStringList{signerName});

    const auto message = services.decodeSignedMessage(readFile(path(QStringLiteral("signed.mobileconfig"))));
    ASSERT_TRUE(message);
    EXPECT_EQ(message->signerCommonNames, QStringList{signerName});
    ASSERT_EQ(message->signers.size(), 1);
    EXPECT_TRUE(message->signers[0].isSignatureIntact);
    EXPECT_EQ(readPlain(message->content), document->profile()->profileDictionary());
    EXPECT_EQ(document->profile()->saveSignedWithCommonName(), signerName);
    EXPECT_EQ(defaults.string(DefaultsKey::preferencesDefaultsSigningIdentity), signerName);

    auto reopened = openDocument(readFile(path(QStringLiteral("signed.mobileconfig"))));
    EXPECT_EQ(reopened->profile()->saveSignedWithCommonName(), signerName);

    // The panel proposes the document's own identity next time.
    ASSERT_TRUE(document->save(SaveOperation::saveAs));
    EXPECT_EQ(panel.requests[1].signingCommonName, signerName);
    EXPECT_EQ(panel.requests[1].currentFilePath, path(QStringLiteral("signed.mobileconfig")));
    EXPECT_TRUE(panel.requests[1].suggestedName.isEmpty());
}

TEST_F(ProfileDocumentSaveTest, IdentityThatIsGoneGivesNoDataAndTouchesNothing) {
    auto document = openDocument(simpleProfile(), QStringLiteral("kept.mobileconfig"));
    ASSERT_TRUE(document->makeWindowControllers());
    defaults.set(DefaultsKey::preferencesDefaultsSigningIdentity, QStringLiteral("Before"));
    document->setSaveSignedWithCommonName(QStringLiteral("Deleted Identity"));

    const auto failed = document->save(SaveOperation::save);
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().domain, QStringLiteral("NSOSStatusErrorDomain"));
    EXPECT_EQ(failed.error().code, -4);
    EXPECT_EQ(failed.error().words, DocumentErrorWords::cannotProduceData);
    EXPECT_EQ(readFile(path(QStringLiteral("kept.mobileconfig"))), simpleProfile());
    EXPECT_EQ(document->profile()->saveSignedWithCommonName(), QStringLiteral("Deleted Identity"));
    EXPECT_EQ(defaults.string(DefaultsKey::preferencesDefaultsSigningIdentity), QStringLiteral("Before"));

    const auto empty = makeDocument();
    ASSERT_FALSE(empty->data());
    EXPECT_EQ(empty->data().error().code, -4);
    EXPECT_FALSE(empty->writeToFile(path(QStringLiteral("never.mobileconfig")), SaveOperation::save));
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("never.mobileconfig"))));
}

TEST_F(ProfileDocumentSaveTest, SaveOnAFullDiskFailsWithTheReasonAndKeepsTheFile) {
    const ScratchMount disk;
    if (!disk.isMounted())
        GTEST_SKIP() << ScratchMount::kSkipReason;
    disk.fillAfter(QStringLiteral("full.mobileconfig"), simpleProfile());
    auto document = makeDocument();
    ASSERT_TRUE(document->readFromFile(disk.path(QStringLiteral("full.mobileconfig"))));
    edit(*document, QStringLiteral("Longer Than Before, So It Must Be Written"));
    defaults.set(DefaultsKey::preferencesDefaultsSigningIdentity, QStringLiteral("Before"));

    const auto failed = document->save(SaveOperation::save);
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().words, QStringLiteral("no space left on the device"));
    EXPECT_EQ(readFile(disk.path(QStringLiteral("full.mobileconfig"))), simpleProfile());
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_EQ(defaults.string(DefaultsKey::preferencesDefaultsSigningIdentity), QStringLiteral("Before"));
}

TEST_F(ProfileDocumentSaveTest, OnlyUserSavesUpdateTheDefaults) {
    auto document = newDocument();
    defaults.set(DefaultsKey::preferencesDefaultsSigningIdentity, QStringLiteral("Before"));
    ASSERT_TRUE(
        document->writeToFile(path(QStringLiteral("auto.mobileconfig")), SaveOperation::autosaveElsewhere));
    EXPECT_TRUE(QFile::exists(path(QStringLiteral("auto.mobileconfig"))));
    EXPECT_EQ(defaults.string(DefaultsKey::preferencesDefaultsSigningIdentity), QStringLiteral("Before"));

    defaults.set(DefaultsKey::preferencesDefaultsAutomaticallyUpdate, false);
    ASSERT_TRUE(document->writeToFile(path(QStringLiteral("off.mobileconfig")), SaveOperation::saveTo));
    EXPECT_EQ(defaults.string(DefaultsKey::preferencesDefaultsSigningIdentity), QStringLiteral("Before"));

    // An unsigned save forgets the signing identity.
    defaults.set(DefaultsKey::preferencesDefaultsAutomaticallyUpdate, true);
    ASSERT_TRUE(document->writeToFile(path(QStringLiteral("to.mobileconfig")), SaveOperation::saveTo));
    EXPECT_FALSE(defaults.hasPersistentValue(DefaultsKey::preferencesDefaultsSigningIdentity));
}

TEST_F(ProfileDocumentSaveTest, PreferencesOfANewProfileAreRememberedAfterSaving) {
    environment->organizationName = QStringLiteral("Example Org");
    auto document = newDocument();
    const auto organization = document->profile()->preferencesDefault(QStringLiteral(".PayloadOrganization"));
    ASSERT_TRUE(organization);
    organization->setValue(plist::Value(QStringLiteral("Renamed Org")));
    ASSERT_TRUE(document->writeToFile(path(QStringLiteral("org.mobileconfig")), SaveOperation::saveTo));
    EXPECT_EQ(defaults.string(DefaultsKey::preferencesDefaultsOrganizationName),
              QStringLiteral("Renamed Org"));
}

TEST_F(ProfileDocumentSaveTest, SavingClearsTheEditsMadeBeforeItAndCountsThoseItMakes) {
    auto document = openDocument(simpleProfile(), QStringLiteral("count.mobileconfig"));
    ASSERT_TRUE(document->makeWindowControllers());
    edit(*document, QStringLiteral("Edited"));
    EXPECT_EQ(document->changeCount(), 1);
    ASSERT_TRUE(document->save(SaveOperation::save));
    EXPECT_FALSE(document->isDocumentEdited());

    // Saving to another place leaves the document's own file unsaved.
    edit(*document, QStringLiteral("Edited again"));
    panel.answer = SavePanelChoice{path(QStringLiteral("elsewhere.mobileconfig")), std::nullopt};
    ASSERT_TRUE(document->save(SaveOperation::saveTo));
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_EQ(document->filePath(), path(QStringLiteral("count.mobileconfig")));

    // A save that settles the signing choice counts that as an edit.
    ASSERT_TRUE(document->save(SaveOperation::save));
    document->setSaveSignedWithCommonName(QString());
    EXPECT_EQ(document->changeCount(), 1);
    ASSERT_TRUE(document->save(SaveOperation::save));
    EXPECT_EQ(document->changeCount(), 1);
    EXPECT_EQ(document->profile()->saveSignedWithCommonName(), std::nullopt);
}

TEST_F(ProfileDocumentSaveTest, SaveBrokenOffBeforeCommitKeepsTheOldFileAndTheEdits) {
    ASSERT_TRUE(importIdentity(leaf));
    const QByteArray original = signedBytes(simpleProfile(), true);
    auto document = openDocument(original, QStringLiteral("signed.mobileconfig"));
    ASSERT_TRUE(document->makeWindowControllers());
    edit(*document, QStringLiteral("Never Written"));
    defaults.set(DefaultsKey::preferencesDefaultsSigningIdentity, QStringLiteral("Before"));
    bool gateReached = false;
    document->setCommitGate([&](const QString&) {
        gateReached = true;
        return false;
    });

    const auto failed = document->save(SaveOperation::save);
    ASSERT_FALSE(failed);
    EXPECT_TRUE(gateReached);
    EXPECT_EQ(failed.error().domain, DocumentError::fileErrorDomain);
    EXPECT_EQ(readFile(path(QStringLiteral("signed.mobileconfig"))), original);
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_EQ(defaults.string(DefaultsKey::preferencesDefaultsSigningIdentity), QStringLiteral("Before"));

    document->setCommitGate({});
    ASSERT_TRUE(document->save(SaveOperation::save));
    EXPECT_NE(readFile(path(QStringLiteral("signed.mobileconfig"))), original);
}

TEST_F(ProfileDocumentSaveTest, PayloadsAreReportedWhenLoadedAddedAndSaved) {
    auto document = openDocument(simpleProfile(), QStringLiteral("events.mobileconfig"));
    EXPECT_EQ(events.events, QStringList{"Payload loaded: com.example.everything"});
    const auto removalPassword =
        document->profile()->domainForType(QStringLiteral("com.apple.profileRemovalPassword"));
    const auto everything = document->profile()->domainForType(QStringLiteral("com.example.everything"));

    // Before the window watches, an added payload isn't reported.
    document->profile()->addPayload(everything);
    ASSERT_TRUE(document->makeWindowControllers());
    document->profile()->addPayload(removalPassword);
    const Payload::Pointer first = document->profile()->configurationPayloads().first();
    document->profile()->removePayload(first);
    ASSERT_TRUE(
        document->writeToFile(path(QStringLiteral("auto.mobileconfig")), SaveOperation::autosaveElsewhere));
    ASSERT_TRUE(document->save(SaveOperation::save));
    EXPECT_EQ(events.events,
              (QStringList{"Payload loaded: com.example.everything",
                           "Payload added: com.apple.profileRemovalPassword",
                           "Payload saved: com.example.everything com.apple.profileRemovalPassword"}));
}

TEST_F(ProfileDocumentSaveTest, CancelledPanelSavesNothing) {
    auto document = newDocument();
    const auto cancelled = document->save(SaveOperation::save);
    ASSERT_TRUE(cancelled);
    EXPECT_FALSE(cancelled->saved);
    EXPECT_FALSE(document->filePath());
    EXPECT_EQ(panel.requests.size(), 1);
}

TEST_F(ProfileDocumentSaveTest, PanelFallsBackToTheLastUsedIdentityForAnUnknownName) {
    ASSERT_TRUE(importIdentity(leaf));
    defaults.set(DefaultsKey::lastUsedSigningIdentityCommonName, signerName);
    auto document = newDocument();

    document->setSaveSignedWithCommonName(QStringLiteral("From Another Machine"));
    document->save(SaveOperation::saveAs);
    // An unset choice is "Do not sign", whatever was used last.
    document->setSaveSignedWithCommonName(std::nullopt);
    document->save(SaveOperation::saveAs);
    ASSERT_EQ(panel.requests.size(), 2);
    EXPECT_EQ(panel.requests[0].signingCommonName, signerName);
    EXPECT_EQ(panel.requests[1].signingCommonName, std::nullopt);
}

} // namespace
} // namespace quorlin::test
