#include "EditorTestSupport.h"

#include "documents/DocumentErrorWords.h"
#include "ui/WindowNoticePresenter.h"
#include "workspace/PFMSectionViewController.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

class DocumentControllerTest : public EditorFixture {
protected:
    // A user's edit: the name of the profile.
    static void rename(DocumentWindow& window, const QString& name) {
        window.history().setValue(
            window.document().profile()->rootPayload()->keyAtPath(QStringLiteral("PayloadDisplayName")),
            plist::Value(name), QStringLiteral("PayloadDisplayName"));
    }

    static QPushButton* buttonTitled(QMessageBox& box, const QString& title) {
        for (QAbstractButton* button : box.buttons()) {
            if (button->text().remove(u'&') == title)
                return qobject_cast<QPushButton*>(button);
        }
        return nullptr;
    }
};

TEST_F(DocumentControllerTest, TheLaunchDocumentGivesWayToAFileUnlessEdited) {
    DocumentWindow* launch = controller.openUntitledAtLaunch();
    ASSERT_TRUE(launch);
    EXPECT_TRUE(launch->document().isTransient());
    // The user's own new document is never transient.
    DocumentWindow* mine = controller.newDocument();
    EXPECT_FALSE(mine->document().isTransient());
    controller.closeDocument(mine);
    ASSERT_EQ(controller.windows().size(), 1);

    DocumentWindow* file = open(copyProfile(QStringLiteral("dock.mobileconfig")));
    ASSERT_EQ(controller.windows(), QList<DocumentWindow*>{file});
    // Opening it again raises the same window.
    EXPECT_EQ(open(*file->document().filePath()), file);
    controller.closeDocument(file);

    DocumentWindow* edited = controller.openUntitledAtLaunch();
    rename(*edited, QStringLiteral("Typed"));
    EXPECT_FALSE(edited->document().isTransient());
    DocumentWindow* second = open(copyProfile(QStringLiteral("two-docks.mobileconfig")));
    EXPECT_EQ(controller.windows(), (QList<DocumentWindow*>{edited, second}));
}

TEST_F(DocumentControllerTest, ClosingAnEditedDocumentAsks) {
    DocumentWindow* window = open(copyProfile(QStringLiteral("dock.mobileconfig")));
    ASSERT_TRUE(window);
    rename(*window, QStringLiteral("Changed"));
    window->close();
    auto* question = waitForWidget<QMessageBox>(DocumentWindow::closeQuestionObjectName);
    ASSERT_TRUE(question);
    EXPECT_EQ(question->windowModality(), Qt::WindowModal);
    buttonTitled(*question, QStringLiteral("Cancel"))->click();
    EXPECT_EQ(controller.windows().size(), 1);
    EXPECT_TRUE(window->isVisible());

    QPointer<DocumentWindow> closing(window);
    window->close();
    question = waitForWidget<QMessageBox>(DocumentWindow::closeQuestionObjectName);
    ASSERT_TRUE(question);
    buttonTitled(*question, DocumentWindow::dontSaveTitle)->click();
    EXPECT_TRUE(controller.windows().isEmpty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return closing.isNull(); }));
    // Nothing was written.
    EXPECT_EQ(readFile(path(QStringLiteral("dock.mobileconfig"))),
              readFile(testDataPath(QStringLiteral("ui/dock.mobileconfig"))));
}

TEST_F(DocumentControllerTest, ReloadGivesBackTheFileAndEmptyDocuments) {
    const QString filePath = copyProfile(QStringLiteral("dock.mobileconfig"));
    ASSERT_TRUE(open(filePath));
    DocumentWindow* first = controller.newDocument();
    DocumentWindow* second = controller.newDocument();
    const QStringList untitledUUIDs{
        *first->document().profile()->rootPayload()->stringValue(QStringLiteral("PayloadUUID")),
        *second->document().profile()->rootPayload()->stringValue(QStringLiteral("PayloadUUID"))};
    QSignalSpy lastClosed(&controller, &DocumentController::lastWindowClosed);

    controller.reloadAllDocuments();
    EXPECT_TRUE(controller.isReloading());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !controller.isReloading(); }));
    EXPECT_EQ(lastClosed.count(), 0);
    ASSERT_EQ(controller.windows().size(), 3);
    int files = 0;
    for (DocumentWindow* window : controller.windows()) {
        const auto& reopenedPath = window->document().filePath();
        if (reopenedPath) {
            EXPECT_EQ(*reopenedPath, filePath);
            ++files;
            continue;
        }
        // A new document each, not the old ones kept.
        EXPECT_FALSE(untitledUUIDs.contains(
            *window->document().profile()->rootPayload()->stringValue(QStringLiteral("PayloadUUID"))));
        EXPECT_FALSE(window->document().isDocumentEdited());
    }
    EXPECT_EQ(files, 1);

    // Cancelling the question stops the reload; what closed stays closed.
    rename(*controller.windows().last(), QStringLiteral("Kept"));
    controller.reloadAllDocuments();
    auto* question = waitForWidget<QMessageBox>(DocumentWindow::closeQuestionObjectName);
    ASSERT_TRUE(question);
    buttonTitled(*question, QStringLiteral("Cancel"))->click();
    EXPECT_FALSE(controller.isReloading());
    EXPECT_EQ(controller.windows().size(), 1);

    // With nothing open the reload ends at once.
    DocumentController empty(defaults, supply());
    empty.reloadAllDocuments();
    EXPECT_FALSE(empty.isReloading());
}

TEST_F(DocumentControllerTest, RefusedFilesAreReportedAndTheOthersOpen) {
    const QString good = copyProfile(QStringLiteral("dock.mobileconfig"));
    const QString bad = path(QStringLiteral("not-a-profile.mobileconfig"));
    QFile file(bad);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("this is no property list");
    file.close();

    controller.openDocuments({bad, good});
    ASSERT_EQ(controller.windows().size(), 1);
    EXPECT_EQ(controller.windows().first()->document().filePath(), good);
    auto* error = waitForWidget<QMessageBox>(WindowNoticePresenter::errorObjectName);
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->text().contains(QStringLiteral("not-a-profile.mobileconfig")));
    // The refusal's words, then where and why.
    EXPECT_TRUE(error->informativeText().startsWith(DocumentErrorWords::cannotRead +
                                                    QStringLiteral("\n\nNot a property list: ")))
        << error->informativeText().toStdString();
}

TEST_F(DocumentControllerTest, ProfilesDroppedOnAWindowOpen) {
    DocumentWindow* window = open(copyProfile(QStringLiteral("dock.mobileconfig")));
    ASSERT_TRUE(window);
    const QString other = copyProfile(QStringLiteral("two-docks.mobileconfig"));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(other), QUrl::fromLocalFile(path(QStringLiteral("defaults.plist")))});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window, &drop);
    ASSERT_EQ(controller.windows().size(), 2);
    EXPECT_EQ(controller.windows().last()->document().filePath(), other);

    // Nothing that isn't a profile is taken.
    QMimeData settingsOnly;
    settingsOnly.setUrls({QUrl::fromLocalFile(path(QStringLiteral("defaults.plist")))});
    QDragEnterEvent refused(QPoint(10, 10), Qt::CopyAction, &settingsOnly, Qt::LeftButton, Qt::NoModifier);
    refused.setAccepted(false);
    QApplication::sendEvent(window, &refused);
    EXPECT_FALSE(refused.isAccepted());
}

} // namespace
} // namespace quorlin
