#include "EditorTestSupport.h"
#include "RepositoryUiFixtures.h"

#include "documents/SigningProfileEnvironment.h"
#include "plist/DefaultsKey.h"
#include "ui/PreferencesWindow.h"

#include <QCheckBox>
#include <QLineEdit>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

// New documents take the organization and consent text of the preferences;
// the preferences window feeds later edits of them to the open documents.
class PreferencesDefaultsUpdateTest : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        defaults.set(DefaultsKey::preferencesDefaultsOrganizationName, QStringLiteral("Old Org"));
        defaults.set(DefaultsKey::preferencesDefaultsAutomaticallyUpdate, true);
        window = std::make_unique<PreferencesWindow>(
            defaults, PreferencesWindow::Services{notices, restarter, {}, std::nullopt});
        QObject::connect(window.get(), &PreferencesWindow::profileDefaultTextEdited, &documents,
                         &DocumentController::updatePreferencesDefault);
    }

    DocumentController::Supply readingDefaults() {
        DocumentController::Supply made = supply();
        made.environment = [this] {
            return SigningProfileEnvironment::make(
                defaults, SigningServices(&passphraseDialog, path(QStringLiteral("data"))));
        };
        return made;
    }
    void type(const QString& field, const QString& text) {
        auto* edit = window->findChild<QLineEdit*>(field);
        ASSERT_TRUE(edit) << field.toStdString();
        edit->selectAll();
        QTest::keyClicks(edit, text);
    }
    static std::optional<QString> filled(DocumentWindow& window, const QString& name) {
        const auto key = window.document().profile()->preferencesDefault(name);
        const plist::Value* value = key ? key->value().plistValue() : nullptr;
        return value ? value->toString() : std::nullopt;
    }
    static std::optional<QString> organization(DocumentWindow& window) {
        const auto key =
            window.document().profile()->rootPayload()->keyAtPath(QStringLiteral("PayloadOrganization"));
        const plist::Value* value = key ? key->value().plistValue() : nullptr;
        return value ? value->toString() : std::nullopt;
    }

    RecordingNoticePresenter notices;
    RecordingRestarter restarter;
    DocumentController documents{defaults, readingDefaults()};
    std::unique_ptr<PreferencesWindow> window;
};

TEST_F(PreferencesDefaultsUpdateTest, EditedTextsReachTheKeysTheyFilledAsUndoableEdits) {
    DocumentWindow* made = documents.newDocument();
    ASSERT_EQ(filled(*made, QStringLiteral(".PayloadOrganization")), QStringLiteral("Old Org"));
    const QString filePath = copyProfile(QStringLiteral("dock.mobileconfig"));
    auto opened = documents.openDocument(filePath);
    ASSERT_TRUE(opened);
    DocumentWindow* read = *opened;
    const auto readOrganization = organization(*read);

    type(QStringLiteral("organizationNameTextField"), QStringLiteral("New Org"));
    EXPECT_EQ(organization(*made), QStringLiteral("New Org"));
    EXPECT_TRUE(made->document().isDocumentEdited());
    // A file read from disk was never filled from the preferences.
    EXPECT_EQ(organization(*read), readOrganization);
    EXPECT_FALSE(read->document().isDocumentEdited());

    // Each keystroke is a step; undoing them all gives back the first text.
    while (made->history().undoStack().canUndo())
        made->history().undoStack().undo();
    EXPECT_EQ(organization(*made), QStringLiteral("Old Org"));
    EXPECT_FALSE(made->document().isDocumentEdited());

    // With the choice off, open documents keep their text.
    window->findChild<QCheckBox*>(QStringLiteral("automaticDefaultsUpdateCheckbox"))->setChecked(false);
    type(QStringLiteral("organizationNameTextField"), QStringLiteral("Later Org"));
    EXPECT_EQ(defaults.string(DefaultsKey::preferencesDefaultsOrganizationName), QStringLiteral("Later Org"));
    EXPECT_EQ(organization(*made), QStringLiteral("Old Org"));
}

} // namespace
} // namespace quorlin
