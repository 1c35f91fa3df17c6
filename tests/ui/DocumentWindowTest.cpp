#include "EditorTestSupport.h"

#include "model/ModelTestSupport.h"
#include "plist/DefaultsKey.h"
#include "plist/Utilities.h"
#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/PayloadSelectorDialog.h"
#include "ui/SaveDialogPresenter.h"
#include "ui/SectionFormView.h"
#include "ui/SectionListModel.h"
#include "ui/SectionListView.h"
#include "ui/WindowNoticePresenter.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"
#include "workspace/SectionArrayController.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

class DocumentWindowTest : public EditorFixture {
protected:
    PreferenceKey::Pointer dockKey(DocumentWindow& window, const QString& name, size_t form = 0) {
        PFMSection* dock = sectionTitled(window, QStringLiteral("Dock"));
        if (!dock || !dock->sectionViewController())
            return nullptr;
        return dock->sectionViewController()->payloadControllers()[form]->payload()->keyAtPath(name);
    }
};

// Open, edit, see the badge, undo to the same bytes, save signed, reopen to the same bytes.
TEST_F(DocumentWindowTest, EditUndoSaveSignedAndReopen) {
    ASSERT_TRUE(importIdentity(leaf));
    const QString filePath = copyProfile(QStringLiteral("dock.mobileconfig"));
    DocumentWindow* window = open(filePath);
    ASSERT_TRUE(window);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    ASSERT_TRUE(dock);
    window->selectSection(dock);
    EXPECT_EQ(window->selectedSection(), dock);
    const QByteArray opened = profileBytes(*window->document().profile());
    EXPECT_FALSE(SectionArrayController::errorBadge(*dock));
    EXPECT_FALSE(window->isWindowModified());

    // An icon size beyond the manifest's range is an error the side-bar shows.
    SectionFormView* form = window->contentView()->sectionFormView();
    ASSERT_TRUE(form);
    ASSERT_FALSE(form->payloadViews().isEmpty());
    FieldRowView* row = form->payloadViews().first()->rowForKey(QStringLiteral("tilesize"));
    ASSERT_TRUE(row);
    auto* field = row->instrumentWidgets().isEmpty()
                      ? nullptr
                      : qobject_cast<QLineEdit*>(row->instrumentWidgets().first());
    ASSERT_TRUE(field);
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, QStringLiteral("500"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(dockKey(*window, QStringLiteral("tilesize"))->value().plistValue()->toInteger(), 500);
    SectionListModel& sideBar = window->sectionListView()->sectionModel();
    const QModelIndex dockRow = sideBar.index(int(window->sections().arrangedObjects().indexOf(dock)), 0);
    EXPECT_EQ(sideBar.data(dockRow, SectionListModel::BadgeRole).toInt(), 1);
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_TRUE(window->document().isDocumentEdited());
    EXPECT_NE(profileBytes(*window->document().profile()), opened);

    // Undo from the field itself reaches the history, not the field's own undo.
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(sideBar.data(dockRow, SectionListModel::BadgeRole).isValid());
    EXPECT_EQ(field->text(), QStringLiteral("48"));
    EXPECT_EQ(profileBytes(*window->document().profile()), opened);
    EXPECT_FALSE(window->document().isDocumentEdited());
    EXPECT_FALSE(window->isWindowModified());

    // Save As, choosing the identity in the panel and typing its passphrase.
    const QString signedPath = path(QStringLiteral("signed.mobileconfig"));
    answerWhenShown<QFileDialog>(SaveDialogPresenter::dialogObjectName, [&](QFileDialog& dialog) {
        auto* popUp = dialog.findChild<QComboBox*>(SaveDialogPresenter::signingPopUpObjectName);
        ASSERT_TRUE(popUp);
        EXPECT_EQ(popUp->itemText(0), SaveDialogPresenter::doNotSignTitle);
        popUp->setCurrentText(signerName);
        dialog.selectFile(signedPath);
        QMetaObject::invokeMethod(&dialog, "accept");
    });
    bool passphraseHidden = false;
    answerWhenShown<QInputDialog>(PassphraseDialog::dialogObjectName, [&](QInputDialog& dialog) {
        passphraseHidden = dialog.textEchoMode() == QLineEdit::Password;
        dialog.setTextValue(storePassphrase);
        dialog.accept();
    });
    std::optional<bool> saved;
    window->save(ProfileDocument::SaveOperation::saveAs, [&](bool done) { saved = done; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return saved.has_value(); }, 10000));
    EXPECT_TRUE(*saved);
    EXPECT_TRUE(passphraseHidden);
    EXPECT_EQ(window->document().filePath(), signedPath);
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(controller.recentDocuments().first(), QFileInfo(signedPath).absoluteFilePath());

    const auto decoded = services.decodeSignedMessage(readFile(signedPath));
    ASSERT_TRUE(decoded);
    ASSERT_FALSE(decoded->signers.isEmpty());
    EXPECT_EQ(decoded->content, opened);

    bool closed = false;
    controller.closeDocument(window, [&](bool done) { closed = done; });
    EXPECT_TRUE(closed);
    DocumentWindow* reopened = open(signedPath);
    ASSERT_TRUE(reopened);
    EXPECT_EQ(profileBytes(*reopened->document().profile()), opened);
    EXPECT_EQ(reopened->document().profile()->saveSignedWithCommonName(), signerName);
}

TEST_F(DocumentWindowTest, NoticeWaitsForTheWindowAndItsBoxSilencesIt) {
    const QString filePath = copyProfile(QStringLiteral("malformed-content.mobileconfig"));
    const auto makeWindow = [&] {
        auto document = std::make_unique<ProfileDocument>(bundledDomains(), supply().environment(), defaults);
        EXPECT_TRUE(document->readFromFile(filePath));
        document->makeWindowControllers();
        return std::make_unique<DocumentWindow>(std::move(document), bundledDomains(), defaults, nullptr);
    };
    auto window = makeWindow();
    EXPECT_EQ(window->document().queuedNoticeCount(), 1);
    QApplication::processEvents();
    EXPECT_FALSE(visibleWidget(WindowNoticePresenter::noticeObjectName));

    window->show();
    auto* box = waitForWidget<QMessageBox>(WindowNoticePresenter::noticeObjectName);
    ASSERT_TRUE(box);
    EXPECT_EQ(box->text(), QStringLiteral("Malformed Payload(s)"));
    EXPECT_EQ(box->windowModality(), Qt::WindowModal);
    EXPECT_EQ(window->document().queuedNoticeCount(), 0);
    ASSERT_TRUE(box->checkBox());
    box->checkBox()->setChecked(true);
    box->buttons().first()->click();
    EXPECT_EQ(defaults.boolean(DefaultsKey::noticeSuppressMalformedPayloadsRemoved), true);

    auto again = makeWindow();
    EXPECT_EQ(again->document().queuedNoticeCount(), 0);
}

TEST_F(DocumentWindowTest, CommandsFollowTheSectionTheyActOn) {
    DocumentWindow* window = open(copyProfile(QStringLiteral("dock.mobileconfig")));
    ASSERT_TRUE(window);
    struct Case {
        const char* section;
        bool add, remove, populate;
    };
    // General: required, one only, and there. Dock: one of several possible. Dictionary: one only, not there.
    const Case cases[] = {
        {"General", false, false, true},
        {"Dock", true, true, true},
        {"Dictionary", true, false, false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.section);
        PFMSection* section = sectionTitled(*window, QString::fromLatin1(row.section));
        ASSERT_TRUE(section);
        window->selectSection(section);
        window->updateCommandStates();
        EXPECT_EQ(window->addPayloadAction()->isEnabled(), row.add);
        EXPECT_EQ(window->removePayloadAction()->isEnabled(), row.remove);
        EXPECT_EQ(window->populateAction()->isEnabled(), row.populate);
        EXPECT_EQ(window->exportAction()->isEnabled(), row.populate);
        // A disabled command says why.
        for (QAction* action : {window->removePayloadAction(), window->populateAction()})
            EXPECT_TRUE(action->isEnabled() || !action->toolTip().isEmpty());
    }
    EXPECT_TRUE(window->showInFileManagerAction()->isEnabled());

    // A required section keeps its payload even when the command reaches it.
    PFMSection* general = sectionTitled(*window, QStringLiteral("General"));
    window->removePayloads(*general);
    EXPECT_EQ(general->payloadsConfigured(), 1);
    EXPECT_FALSE(visibleWidget(PayloadSelectorDialog::dialogObjectName));
}

TEST_F(DocumentWindowTest, RemovingAsksWhichOnlyAmongSeveral) {
    DocumentWindow* window = open(copyProfile(QStringLiteral("two-docks.mobileconfig")));
    ASSERT_TRUE(window);
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    ASSERT_TRUE(dock);
    ASSERT_EQ(dock->payloadsConfigured(), 2);
    const QByteArray opened = profileBytes(*window->document().profile());

    window->removePayloads(*dock);
    auto* selector = waitForWidget<PayloadSelectorDialog>(PayloadSelectorDialog::dialogObjectName);
    ASSERT_TRUE(selector);
    EXPECT_FALSE(selector->actionButton()->isEnabled());
    selector->setChecked(1, true);
    selector->actionButton()->click();
    ASSERT_EQ(dock->payloadsConfigured(), 1);
    EXPECT_EQ(dock->sectionViewController()->payloadControllers()[0]->payload()->stringValue(
                  QStringLiteral("PayloadDisplayName")),
              QStringLiteral("Dock"));

    // One left: no question.
    window->removePayloads(*dock);
    EXPECT_EQ(dock->payloadsConfigured(), 0);
    EXPECT_FALSE(visibleWidget(PayloadSelectorDialog::dialogObjectName));
    EXPECT_FALSE(window->removePayloadAction()->isEnabled() && window->commandSection() == dock);

    window->undoAction()->trigger();
    window->undoAction()->trigger();
    EXPECT_EQ(profileBytes(*window->document().profile()), opened);
    EXPECT_FALSE(window->document().isDocumentEdited());
}

TEST_F(DocumentWindowTest, SectionsFollowPayloadsTheProfileMakesAndFileSectionsNameWhatTheyTake) {
    // The payload the profile adds to follow "HasRemovalPasscode" shows in its section, and goes with it.
    auto made = std::make_unique<ProfileDocument>(fixtureDomains(), makeTestEnvironment(), defaults);
    ASSERT_TRUE(made->readFromData({}) && made->makeWindowControllers());
    DocumentWindow passcodeWindow(std::move(made), fixtureDomains(), defaults, nullptr);
    PFMSection* password = nullptr;
    for (PFMSection* section : passcodeWindow.sections().content()) {
        if (section->domains().contains(QStringLiteral("com.apple.profileRemovalPassword")))
            password = section;
    }
    ASSERT_TRUE(password);
    const auto passcode =
        passcodeWindow.document().profile()->rootPayload()->keyAtPath(QStringLiteral("HasRemovalPasscode"));
    ASSERT_TRUE(passcode);
    passcodeWindow.history().setValue(passcode, plist::Value(true), QStringLiteral("HasRemovalPasscode"));
    EXPECT_EQ(password->payloadsConfigured(), 1);
    EXPECT_TRUE(password->sectionViewController());
    passcodeWindow.undoAction()->trigger();
    EXPECT_EQ(password->payloadsConfigured(), 0);
    EXPECT_FALSE(password->sectionViewController());

    DocumentWindow* window = open(copyProfile(QStringLiteral("dock.mobileconfig")));
    ASSERT_TRUE(window);
    PFMSection* fileBased = nullptr;
    for (PFMSection* section : window->sections().content()) {
        if (!fileBased && !section->allowedFileExtensions().isEmpty())
            fileBased = section;
    }
    ASSERT_TRUE(fileBased);

    // The file panel lists the extensions; a file it can't take gets the section's words.
    window->addPayload(*fileBased);
    auto* panel = window->findChild<QFileDialog*>();
    ASSERT_TRUE(panel);
    QStringList extensions;
    for (const QString& extension : fileBased->allowedFileExtensions())
        extensions << "." + extension;
    EXPECT_EQ(panel->windowTitle(), QStringLiteral("Select a %1 to add to the configuration profile (%2)")
                                        .arg(fileBased->sectionProperties().title.toLower(),
                                             Utilities::joinedTermSeries(extensions, true)));
    const QString empty = path(QStringLiteral("empty.") + fileBased->allowedFileExtensions().first());
    QFile emptyFile(empty);
    ASSERT_TRUE(emptyFile.open(QIODevice::WriteOnly));
    emptyFile.close();
    Q_EMIT panel->fileSelected(empty);
    auto* notice = waitForWidget<QMessageBox>(WindowNoticePresenter::errorObjectName);
    ASSERT_TRUE(notice);
    EXPECT_EQ(notice->text(), QStringLiteral("File incompatible"));
    EXPECT_EQ(notice->informativeText(),
              QStringLiteral("The selected file is not the right type for this configuration section."));
    notice->close();
    panel->close();
}

} // namespace
} // namespace quorlin
