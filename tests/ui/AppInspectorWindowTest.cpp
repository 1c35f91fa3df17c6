#include "../apptools/ProgramFiles.h"
#include "RepositoryUiFixtures.h"

#include "plist/XmlWriter.h"
#include "ui/AppInspectorWindow.h"
#include "ui/InfoRowView.h"

#include <QApplication>
#include <QClipboard>
#include <QEnterEvent>
#include <QLabel>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using test::ProgramFiles;

class AppInspectorWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(ProgramFiles::arm64().isEmpty()) << "clang and ld64.lld are needed";
    }

    // Opens an inspector on the path and waits until it has shown its rows or failed.
    bool inspect(const QString& path) {
        m_window = new AppInspectorWindow(path, m_notices);
        QSignalSpy finished(m_window.data(), &AppInspectorWindow::inspectionFinished);
        EXPECT_EQ(m_window->findChild<QLabel*>(QStringLiteral("loadingLabel"))->text(),
                  QStringLiteral("Loading %1...").arg(QFileInfo(path).fileName()));
        m_window->show();
        EXPECT_TRUE(finished.wait(10000));
        return !finished.isEmpty() && finished.first().first().toBool();
    }

    QString information(const char* row) const {
        const auto* view = m_window->findChild<InfoRowView*>(QLatin1String(row));
        return view ? view->information() : QString();
    }

    void TearDown() override { delete m_window.data(); }

    QTemporaryDir m_folder;
    test::RecordingNoticePresenter m_notices;
    QPointer<AppInspectorWindow> m_window;
};

} // namespace

TEST_F(AppInspectorWindowTest, ShowsTheRowsOfAnApplicationAndCopiesOne) {
    const QString app = m_folder.filePath(QStringLiteral("Sample.app"));
    const plist::Dictionary info{{"CFBundleExecutable", "Sample"},
                                 {"CFBundleIdentifier", "com.quorlin.sample"},
                                 {"CFBundleShortVersionString", "2.0"},
                                 {"CFBundleVersion", "7"}};
    ASSERT_TRUE(
        ProgramFiles::write(app + QStringLiteral("/Contents/Info.plist"), *plist::XmlWriter::write(info)));
    ASSERT_TRUE(
        ProgramFiles::write(app + QStringLiteral("/Contents/MacOS/Sample"),
                            ProgramFiles::universal({{ProgramFiles::cpuX86_64, ProgramFiles::x86_64()},
                                                     {ProgramFiles::cpuArm64, ProgramFiles::arm64()}})));
    ASSERT_TRUE(inspect(app));
    EXPECT_EQ(m_window->findChild<QLabel*>(QStringLiteral("loadingLabel")), nullptr);
    EXPECT_EQ(m_window->findChild<QLabel*>(QStringLiteral("nameLabel"))->text(), QStringLiteral("Sample"));
    EXPECT_EQ(m_window->findChild<QLabel*>(QStringLiteral("versionLabel"))->text(),
              QStringLiteral("2.0 (7)"));
    EXPECT_EQ(m_window->findChild<QLabel*>(QStringLiteral("headlineLabel"))->text(),
              QStringLiteral("System Characteristics"));
    EXPECT_EQ(information("bundleIDRow"), QStringLiteral("com.quorlin.sample"));
    EXPECT_EQ(information("architecturesRow"), QStringLiteral("Apple Silicon 64-bit and Intel 64-bit"));
    EXPECT_EQ(information("platformRow"), QStringLiteral("macOS"));
    EXPECT_EQ(m_window->findChild<InfoRowView*>(QStringLiteral("teamIDRow")), nullptr)
        << "no row for no value";
    EXPECT_TRUE(information("codeRequirementRow").startsWith(QLatin1String("cdhash H\"")));

    auto* row = m_window->findChild<InfoRowView*>(QStringLiteral("bundleIDRow"));
    EXPECT_FALSE(row->isCopyButtonShowing());
    QEnterEvent enter(QPointF(2, 2), QPointF(2, 2), QPointF(2, 2));
    QApplication::sendEvent(row, &enter);
    EXPECT_TRUE(row->isCopyButtonShowing());
    row->copy();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("com.quorlin.sample"));
}

TEST_F(AppInspectorWindowTest, AFileThatIsNotAnAppClosesTheWindowWithAnAlert) {
    const QString notes = m_folder.filePath(QStringLiteral("notes.txt"));
    ASSERT_TRUE(ProgramFiles::write(notes, "not an app"));
    EXPECT_FALSE(inspect(notes));
    ASSERT_EQ(m_notices.presented.size(), 1u);
    const ApplicationNotice& notice = m_notices.presented.front().notice;
    EXPECT_EQ(notice.title, QStringLiteral("App Inspection Failed"));
    EXPECT_EQ(notice.informativeText, QStringLiteral("The app bundle notes.txt could not be inspected."));
    ASSERT_EQ(notice.buttons.size(), 1);
    EXPECT_EQ(notice.buttons.first().title, QStringLiteral("Dismiss"));
    EXPECT_TRUE(!m_window || !m_window->isVisible());
}

} // namespace quorlin
