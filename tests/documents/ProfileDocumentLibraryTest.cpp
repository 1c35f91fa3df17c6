// Documents in the profile library of the sibling product: named after the
// profile's identifier, renamed with it, clashes settled with the user, and
// the product's unsaved templates cleaned away.

#include "DocumentFixture.h"
#include "documents/ProfileDocumentBundled.h"
#include "support/TestSupport.h"

#include <QDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;
using Kind = DocumentNotice::Kind;
using Result = Expected<ProfileDocument::SaveResult, DocumentError>;

class LibraryDocumentTest : public DocumentFixture {
protected:
    LibraryDocumentTest() { QDir().mkpath(library); }

    std::unique_ptr<ProfileDocumentBundled> openInLibrary(const QString& name, const QByteArray& bytes) {
        auto document = std::make_unique<ProfileDocumentBundled>(fixtureDomains(), environment, defaults,
                                                                 [this] { return libraryFolder; });
        document->setNoticePresenter(&notices);
        document->setSavePanelPresenter(&panel);
        // A trash of the test's own, so that nothing lands in the user's.
        document->setTrash([this](const QString& filePath) {
            trashed << filePath;
            return QFile::remove(filePath);
        });
        document->windowDidShow();
        EXPECT_TRUE(document->readFromFile(writeFile("Library/Profiles/" + name, bytes)));
        return document;
    }
    static void rename(ProfileDocument& document, const QString& identifier) {
        document.profile()
            ->rootPayload()
            ->keyAtPath(QStringLiteral("PayloadIdentifier"))
            ->setValue(plist::Value(identifier));
    }
    QString inLibrary(const QString& identifier) const {
        return library + "/" + identifier + ".mobileconfig";
    }
    std::optional<Result> save(ProfileDocument& document) {
        std::optional<Result> outcome;
        document.saveDocument(0, [&](const Result& result) { outcome = result; });
        return outcome;
    }

    const QString library = folder.filePath(QStringLiteral("Library/Profiles"));
    std::optional<QString> libraryFolder = library;
    QStringList trashed;
};

TEST_F(LibraryDocumentTest, ARenamedProfileMovesToItsNewNameAndSaysWhereItWent) {
    const auto document = openInLibrary("org.example.root.mobileconfig", simpleProfile());
    EXPECT_TRUE(document->isQuorlinLibraryProfile());
    EXPECT_FALSE(ProfileDocumentBundled::isInLibrary(library + "-other/x.mobileconfig", library));

    // Saved under its own name, no clash arises.
    ASSERT_TRUE(save(*document).value().value().saved);
    rename(*document, "org.example.renamed");
    const auto saved = save(*document);
    ASSERT_TRUE(saved && *saved && (*saved)->saved);
    EXPECT_EQ(document->filePath(), inLibrary("org.example.renamed"));
    EXPECT_FALSE(QFileInfo::exists(inLibrary("org.example.root")));
    ASSERT_EQ(notices.kinds(), (QList<Kind>{Kind::savedToQuorlinLibrary, Kind::savedToQuorlinLibrary}));
    EXPECT_EQ(notices.shown.last().notice.informativeText,
              QStringLiteral("Document Test was saved to Quorlin's profile library."));

    // The save panel opened on a library profile suggests the identifier.
    document->saveDocumentAs(0, [](const Result&) {});
    EXPECT_EQ(panel.requests.last().suggestedName, QStringLiteral("org.example.renamed"));

    // Without the library it is an ordinary document.
    libraryFolder.reset();
    EXPECT_FALSE(document->isQuorlinLibraryProfile());
}

TEST_F(LibraryDocumentTest, AClashOffersCancelReplaceOrANewIdentifier) {
    writeFile("Library/Profiles/org.example.taken.mobileconfig", QByteArray("another profile"));
    const auto document = openInLibrary("org.example.root.mobileconfig", simpleProfile());
    rename(*document, "org.example.taken");

    EXPECT_FALSE(save(*document)) << "the answer waits for the user";
    ASSERT_EQ(notices.kinds(), QList<Kind>{Kind::quorlinLibraryIdentifierClash});
    ASSERT_EQ(notices.shown.last().notice.buttons.size(), 3);
    std::optional<Result> outcome;
    document->saveToQuorlinLibrary([&](const Result& result) { outcome = result; });
    notices.shown.last().reply({DocumentNotice::cancelSave, false});
    ASSERT_TRUE(outcome && *outcome);
    EXPECT_FALSE((*outcome)->saved);
    EXPECT_EQ(readFile(inLibrary("org.example.taken")), QByteArray("another profile"));

    document->saveToQuorlinLibrary([&](const Result& result) { outcome = result; });
    notices.shown.last().reply({DocumentNotice::generateNewIdentifier, false});
    ASSERT_TRUE((*outcome)->saved);
    const QString fresh = *document->profile()->payloadIdentifier();
    EXPECT_NE(fresh, QStringLiteral("org.example.taken"));
    EXPECT_EQ(document->filePath(), inLibrary(fresh));
    EXPECT_EQ(readFile(inLibrary("org.example.taken")), QByteArray("another profile"));

    rename(*document, "org.example.taken");
    document->saveToQuorlinLibrary([&](const Result& result) { outcome = result; });
    notices.shown.last().reply({DocumentNotice::replaceExisting, false});
    ASSERT_TRUE((*outcome)->saved);
    EXPECT_EQ(trashed, QStringList{inLibrary("org.example.taken")})
        << "the other file went to the trash first";
    EXPECT_EQ(document->filePath(), inLibrary("org.example.taken"));
    EXPECT_NE(readFile(inLibrary("org.example.taken")), QByteArray("another profile"));
}

TEST_F(LibraryDocumentTest, AnUnsavedTemplateOfTheSiblingProductGoesWhenClosed) {
    const plist::Dictionary properties{{"IsNewProfile", true}, {"PayloadType", "com.example.everything"}};
    plist::Dictionary tree = profileTree({});
    tree.insert(QStringLiteral("ZNTHProfileProperties"), properties);
    auto document = openInLibrary("template.mobileconfig", xml(tree));
    EXPECT_TRUE(document->isLoadedNew());
    document.reset();
    EXPECT_FALSE(QFileInfo::exists(library + "/template.mobileconfig"));

    document = openInLibrary("template.mobileconfig", xml(tree));
    ASSERT_TRUE(save(*document));
    const QString saved = *document->filePath();
    document.reset();
    EXPECT_TRUE(QFileInfo::exists(saved)) << "after one save it stays";

    // Without a library, a save there is refused with its words.
    libraryFolder.reset();
    document = openInLibrary("other.mobileconfig", simpleProfile());
    notices.shown.clear();
    document->saveToQuorlinLibrary([](const Result&) {});
    ASSERT_EQ(notices.kinds(), QList<Kind>{Kind::quorlinLibrarySaveFailed});
    EXPECT_EQ(
        notices.shown.last().notice.title,
        QStringLiteral("Could not save to Quorlin library because the library location could not be found."));
}

} // namespace
} // namespace quorlin
