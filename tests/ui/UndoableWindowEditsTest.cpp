#include "EditorTestSupport.h"

#include "ui/ContentView.h"
#include "ui/PayloadFormView.h"
#include "ui/SectionFormView.h"
#include "workspace/EditHistory.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"
#include "workspace/SectionArrayController.h"

#include <QAction>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QUndoStack>

#include <gtest/gtest.h>

#include <algorithm>

namespace quorlin {
namespace {

using namespace test;

class UndoableWindowEditsTest : public EditorFixture {
protected:
    static QByteArray bytesOf(DocumentWindow& window) { return profileBytes(*window.document().profile()); }
    static PFMSection* unfamiliarSection(DocumentWindow& window) {
        for (PFMSection* section : window.sections().content()) {
            if (section->sectionKind() == PFMSection::Kinds::unfamiliar)
                return section;
        }
        return nullptr;
    }
};

TEST_F(UndoableWindowEditsTest, RemovingAnUnfamiliarSectionIsOneEditThatUndoTakesBack) {
    DocumentWindow* window = openShown(QStringLiteral("dock-and-lab.mobileconfig"));
    ASSERT_TRUE(window);
    PFMSection* lab = unfamiliarSection(*window);
    ASSERT_TRUE(lab);
    window->selectSection(lab);
    const QByteArray opened = bytesOf(*window);
    ASSERT_TRUE(opened.contains("com.example.lab.settings"));
    ASSERT_TRUE(window->removePayloadAction()->isEnabled());

    window->removePayloadAction()->trigger();
    EXPECT_FALSE(window->sections().content().contains(lab));
    EXPECT_FALSE(bytesOf(*window).contains("com.example.lab.settings"));
    EXPECT_TRUE(bytesOf(*window).contains("com.apple.dock"));
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_EQ(window->history().undoStack().count(), 1);

    window->undoAction()->trigger();
    EXPECT_TRUE(window->sections().arrangedObjects().contains(lab));
    EXPECT_EQ(bytesOf(*window), opened);
    EXPECT_FALSE(window->isWindowModified());
    window->redoAction()->trigger();
    EXPECT_FALSE(bytesOf(*window).contains("com.example.lab.settings"));
    window->closeApproved();
}

TEST_F(UndoableWindowEditsTest, DroppingAPayloadsUnfamiliarKeysIsOneEditThatUndoTakesBack) {
    DocumentWindow* window = openShown(QStringLiteral("dock-with-unknown-key.mobileconfig"));
    ASSERT_TRUE(window);
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    ASSERT_TRUE(dock);
    window->selectSection(dock);
    PayloadFormView* form = window->contentView()->sectionFormView()->payloadViews().first();
    const QByteArray opened = bytesOf(*window);
    ASSERT_TRUE(opened.contains("MysteryKey"));
    ASSERT_TRUE(form->unfamiliarNotice()->isVisibleTo(form));

    auto* remove = form->unfamiliarNotice()->parentWidget()->findChild<QPushButton*>();
    ASSERT_TRUE(remove);
    QTest::mouseClick(remove, Qt::LeftButton);
    EXPECT_FALSE(bytesOf(*window).contains("MysteryKey"));
    EXPECT_FALSE(form->unfamiliarNotice()->isVisibleTo(form));
    EXPECT_TRUE(window->isWindowModified());

    window->undoAction()->trigger();
    EXPECT_EQ(bytesOf(*window), opened);
    EXPECT_TRUE(form->unfamiliarNotice()->isVisibleTo(form));
    EXPECT_FALSE(window->isWindowModified());
    window->redoAction()->trigger();
    EXPECT_FALSE(bytesOf(*window).contains("MysteryKey"));
    window->closeApproved();
}

TEST_F(UndoableWindowEditsTest, AddingAPayloadFromAFileIsUndoable) {
    DocumentWindow* window = openShown(QStringLiteral("dock.mobileconfig"));
    ASSERT_TRUE(window);
    PFMSection* pem = sectionTitled(*window, QStringLiteral("Certificate (PEM)"));
    ASSERT_TRUE(pem);
    const QString certificate = path(QStringLiteral("root.pem"));
    {
        QFile file(certificate);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(
            "-----BEGIN CERTIFICATE-----\nMIIBszCCAVmgAwIBAgIUQuorlinTest\n-----END CERTIFICATE-----\n");
    }
    const QByteArray opened = bytesOf(*window);

    window->addPayload(*pem);
    auto* dialog = window->findChild<QFileDialog*>();
    ASSERT_TRUE(dialog);
    dialog->selectFile(certificate);
    QMetaObject::invokeMethod(dialog, "accept");
    ASSERT_EQ(pem->payloadsConfigured(), 1);
    const QByteArray added = bytesOf(*window);
    EXPECT_TRUE(added.contains("com.apple.security.pem"));
    EXPECT_TRUE(window->isWindowModified());

    window->undoAction()->trigger();
    EXPECT_EQ(pem->payloadsConfigured(), 0);
    EXPECT_EQ(bytesOf(*window), opened);
    EXPECT_FALSE(window->isWindowModified());
    window->redoAction()->trigger();
    EXPECT_EQ(bytesOf(*window), added);
    window->closeApproved();
}

// A duplicate identifier that the save repairs: nothing is left to save
// afterwards, and undo still walks back through every state.
TEST_F(UndoableWindowEditsTest, ASaveThatRepairsIdentifiersLeavesAConsistentHistory) {
    DocumentWindow* window = openShown(QStringLiteral("dock.mobileconfig"));
    ASSERT_TRUE(window);
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    ASSERT_TRUE(dock && dock->sectionViewController());
    const auto profile = window->document().profile();
    const QByteArray opened = bytesOf(*window);
    const auto identifier = dock->sectionViewController()->payloadControllers().front()->payload()->keyAtPath(
        QStringLiteral("PayloadIdentifier"));
    window->history().setValue(identifier, plist::Value(*profile->payloadIdentifier()));
    const QByteArray duplicated = bytesOf(*window);

    bool saved = false;
    window->save(ProfileDocument::SaveOperation::save, [&saved](bool done) { saved = done; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return saved; }, 5000));
    const QByteArray written = bytesOf(*window);
    EXPECT_NE(written, duplicated);
    EXPECT_TRUE(profile->validationErrors().isEmpty());
    EXPECT_EQ(window->history().changeCount(), 0);
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_FALSE(window->document().isDocumentEdited());

    window->undoAction()->trigger();
    EXPECT_EQ(bytesOf(*window), duplicated);
    EXPECT_TRUE(window->isWindowModified());
    window->undoAction()->trigger();
    EXPECT_EQ(bytesOf(*window), opened);
    window->history().undoStack().setIndex(window->history().undoStack().count());
    EXPECT_EQ(bytesOf(*window), written);
    EXPECT_FALSE(window->isWindowModified());
    window->closeApproved();
}

TEST_F(UndoableWindowEditsTest, ShowConfiguredOnlyHidesRowsThatDoNotWriteOut) {
    DocumentWindow* window = openShown(QStringLiteral("dock.mobileconfig"));
    ASSERT_TRUE(window);
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    ASSERT_TRUE(dock && dock->sectionViewController());
    window->selectSection(dock);
    const PayloadViewController& form = *dock->sectionViewController()->payloadControllers().front();
    const auto hiddenRows = [&form](bool writingOut) {
        int count = 0;
        for (const FormField& field : form.fieldViewControllers()) {
            if (field.key && field.hidden && field.key->isWritingOut() == writingOut)
                ++count;
        }
        return count;
    };
    const int unwrittenHiddenBefore = hiddenRows(false);

    window->configuredOnlyAction()->setChecked(true);
    EXPECT_TRUE(window->displaySettings().filteredForConfigured);
    EXPECT_GT(hiddenRows(false), unwrittenHiddenBefore);
    for (const FormField& field : form.fieldViewControllers()) {
        if (field.key && !field.key->isWritingOut()) {
            EXPECT_TRUE(field.hidden) << field.key->name().toStdString();
        }
    }
    // "tilesize" is set in the file, so it stays.
    EXPECT_TRUE(std::any_of(
        form.fieldViewControllers().begin(), form.fieldViewControllers().end(), [](const FormField& field) {
            return field.key && field.key->name() == QStringLiteral("tilesize") && !field.hidden;
        }));

    window->configuredOnlyAction()->setChecked(false);
    EXPECT_FALSE(window->displaySettings().filteredForConfigured);
    EXPECT_EQ(hiddenRows(false), unwrittenHiddenBefore);
    window->closeApproved();
}

} // namespace
} // namespace quorlin
