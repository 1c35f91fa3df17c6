// The notices of an opened file: when they go up, in which order, what their
// check boxes remember, and what "Fix and Save" does.

#include "DocumentFixture.h"

#include "documents/DocumentErrorWords.h"

namespace quorlin::test {
namespace {

using Kind = DocumentNotice::Kind;

class ProfileDocumentNoticeTest : public DocumentFixture {
protected:
    // Signed by a signer not on this machine, with a malformed element and
    // two payloads that share a UUID: every opening notice applies.
    QByteArray troubledProfile() {
        plist::Array content =
            sharingOneUuid(QStringLiteral("org.example.one"), QStringLiteral("org.example.two"));
        content.append(QStringLiteral("not a payload"));
        return signedBytes(xml(profileTree(content)), false);
    }
    static plist::Array sharingOneUuid(const QString& first, const QString& second) {
        return {payload(QStringLiteral("com.example.everything"), uuid, first),
                payload(QStringLiteral("com.example.everything"), uuid, second)};
    }
    static inline const QString uuid = QStringLiteral("AAAAAAAA-BBBB-4CCC-8DDD-EEEEEEEEEEEE");

    static int replyTo(RecordingNoticePresenter::Shown& shown, int tag, bool suppress) {
        shown.reply({tag, suppress});
        return tag;
    }
};

TEST_F(ProfileDocumentNoticeTest, NoticesWaitForTheWindowThenComeOldestFirst) {
    auto document = openDocument(troubledProfile());
    ASSERT_TRUE(document->makeWindowControllers());
    document->presentOpeningNotices();
    EXPECT_TRUE(notices.shown.isEmpty());
    EXPECT_EQ(document->queuedNoticeCount(), 3);

    document->windowDidShow();
    EXPECT_EQ(document->queuedNoticeCount(), 0);
    EXPECT_EQ(notices.kinds(),
              (QList<Kind>{Kind::signingIdentityMissing, Kind::malformedPayloadContentRemoved,
                           Kind::iOS15SilentInstallIncompatibility}));

    const DocumentNotice& missing = notices.shown[0].notice;
    EXPECT_EQ(missing.title, QStringLiteral("Signing Identity Missing"));
    EXPECT_EQ(
        missing.informativeText,
        QStringLiteral("The original identity(ies) used to sign this profile is(are) not available on this "
                       "computer.\n\nTo sign the profile when saving, select an available profile signing "
                       "identity in the General settings section."));
    EXPECT_EQ(missing.suppressionKey, QStringLiteral("noticeSuppressSigningIdentityMissing"));
    EXPECT_EQ(notices.shown[1].notice.title, QStringLiteral("Malformed Payload(s)"));
    EXPECT_EQ(notices.shown[1].notice.suppressionKey,
              QStringLiteral("noticeSuppressMalformedPayloadsRemoved"));
    const DocumentNotice& incompatible = notices.shown[2].notice;
    EXPECT_EQ(incompatible.title, QStringLiteral("Fix Profile Incompatibility?"));
    EXPECT_EQ(incompatible.suppressionKey,
              QStringLiteral("noticeSuppressIOS15SilentInstallationIncompatibility"));
    ASSERT_EQ(incompatible.buttons.size(), 2);
    EXPECT_EQ(incompatible.buttons[0].title, QStringLiteral("Fix and Save"));
    EXPECT_EQ(incompatible.buttons[0].tag, 1);
    EXPECT_EQ(incompatible.buttons[1].title, QStringLiteral("Dismiss"));
    EXPECT_EQ(incompatible.buttons[1].tag, 0);
}

TEST_F(ProfileDocumentNoticeTest, VisibleWindowGetsNoticesAtOnce) {
    auto document = openDocument(troubledProfile());
    ASSERT_TRUE(document->makeWindowControllers());
    document->windowDidShow();
    document->presentOpeningNotices();
    EXPECT_EQ(notices.shown.size(), 3);
    EXPECT_EQ(document->queuedNoticeCount(), 0);

    // Hidden again, the window makes notices wait again.
    document->windowDidHide();
    document->presentOpeningNotices();
    EXPECT_EQ(notices.shown.size(), 3);
    EXPECT_EQ(document->queuedNoticeCount(), 3);
}

TEST_F(ProfileDocumentNoticeTest, CheckBoxSilencesANoticeWhicheverButtonWasPressed) {
    auto document = openDocument(troubledProfile());
    ASSERT_TRUE(document->makeWindowControllers());
    document->windowDidShow();
    document->presentOpeningNotices();
    ASSERT_EQ(notices.shown.size(), 3);
    replyTo(notices.shown[0], 1, false);
    replyTo(notices.shown[1], 1, true);
    replyTo(notices.shown[2], 0, true); // "Dismiss"

    EXPECT_FALSE(defaults.boolean(DefaultsKey::noticeSuppressSigningIdentityMissing));
    EXPECT_EQ(defaults.boolean(DefaultsKey::noticeSuppressMalformedPayloadsRemoved), true);
    EXPECT_EQ(defaults.boolean(DefaultsKey::noticeSuppressIOS15SilentInstallationIncompatibility), true);
    // "Dismiss" changes nothing of the profile or its file.
    EXPECT_EQ(document->profile()->validationErrors().size(), 1);

    notices.shown.clear();
    document->presentOpeningNotices();
    EXPECT_EQ(notices.kinds(), QList<Kind>{Kind::signingIdentityMissing});
}

TEST_F(ProfileDocumentNoticeTest, FixAndSaveRepairsTheIdentifiersAndSavesInPlace) {
    auto document = openDocument(xml(
        profileTree(sharingOneUuid(QStringLiteral("org.example.same"), QStringLiteral("org.example.same")))));
    ASSERT_TRUE(document->makeWindowControllers());
    document->windowDidShow();
    document->presentOpeningNotices();
    ASSERT_EQ(notices.kinds(), QList<Kind>{Kind::iOS15SilentInstallIncompatibility});
    replyTo(notices.shown[0], 1, false);

    EXPECT_TRUE(panel.requests.isEmpty());
    EXPECT_TRUE(notices.errors.isEmpty());
    const auto reread =
        ProfileDocument::makeProfile(readFile(*document->filePath()), fixtureDomains(), environment);
    ASSERT_TRUE(reread);
    EXPECT_TRUE((*reread)->validationErrors().isEmpty());
    const auto& payloads = (*reread)->configurationPayloads();
    ASSERT_EQ(payloads.size(), 2);
    EXPECT_EQ(payloads[0]->stringValue(QStringLiteral("PayloadUUID")), uuid);
    EXPECT_NE(payloads[1]->stringValue(QStringLiteral("PayloadUUID")), uuid);
}

TEST_F(ProfileDocumentNoticeTest, FixAndSaveThatCannotWriteShowsTheError) {
    // The profile names an identity that isn't there, so the save gives no data.
    auto document = openDocument(
        xml(profileTree(sharingOneUuid(QStringLiteral("org.example.a"), QStringLiteral("org.example.b")))));
    ASSERT_TRUE(document->makeWindowControllers());
    document->setSaveSignedWithCommonName(QStringLiteral("Deleted Identity"));
    document->windowDidShow();
    document->presentOpeningNotices();
    ASSERT_EQ(notices.shown.size(), 1);
    replyTo(notices.shown[0], 1, false);
    ASSERT_EQ(notices.errors.size(), 1);
    EXPECT_EQ(notices.errors[0].domain, QStringLiteral("NSOSStatusErrorDomain"));
    EXPECT_EQ(notices.errors[0].code, -4);
}

TEST_F(ProfileDocumentNoticeTest, SuppressedNoticesAreNeverQueued) {
    defaults.set(DefaultsKey::noticeSuppressSigningIdentityMissing, true);
    defaults.set(DefaultsKey::noticeSuppressMalformedPayloadsRemoved, true);
    defaults.set(DefaultsKey::noticeSuppressIOS15SilentInstallationIncompatibility, true);
    auto document = openDocument(troubledProfile());
    ASSERT_TRUE(document->makeWindowControllers());
    document->presentOpeningNotices();
    document->windowDidShow();
    EXPECT_TRUE(notices.shown.isEmpty());
}

TEST_F(ProfileDocumentNoticeTest, ReplyAfterTheDocumentClosedIsIgnored) {
    auto document = openDocument(troubledProfile());
    ASSERT_TRUE(document->makeWindowControllers());
    document->windowDidShow();
    document->presentOpeningNotices();
    ASSERT_EQ(notices.shown.size(), 3);
    document.reset();
    replyTo(notices.shown[2], 1, true);
    EXPECT_FALSE(defaults.boolean(DefaultsKey::noticeSuppressIOS15SilentInstallationIncompatibility));
    EXPECT_TRUE(panel.requests.isEmpty());
}

} // namespace
} // namespace quorlin::test
