#include "../apptools/ProgramFiles.h"

#include "apptools/iTunesQueryHelper.h"
#include "plist/XmlWriter.h"
#include "support/LocalHttpServer.h"
#include "ui/AppSelectorSheet.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using apptools::AppSearchResult;
using ResultType = AppSearchResult::ResultType;

class AppSelectorSheetTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_server.listen());
        m_helper.setBaseUrl(m_server.baseUrl());
        m_helper.setTransferTimeout(2000);
        const QUrl url = m_helper.searchUrl(QStringLiteral("safari"));
        const QString path = url.path() + u'?' + url.query(QUrl::FullyDecoded);
        m_server.setBody(
            path, R"({"results": [{"trackName": "Safari Reader", "bundleId": "com.example.reader"}]})");
        m_server.setContentType(path, "text/javascript; charset=utf-8");
    }

    void type(const QString& term) {
        auto* field = m_sheet.findChild<QLineEdit*>(QStringLiteral("searchField"));
        field->setText(term);
        QSignalSpy finished(&m_sheet, &AppSelectorSheet::searchFinished);
        QTest::keyClick(field, Qt::Key_Return);
        if (!term.isEmpty()) {
            EXPECT_TRUE(finished.wait(10000));
        }
    }

    QStringList bundleIds() const {
        QStringList ids;
        for (const AppSearchResult& row : m_sheet.results())
            ids << row.bundleId;
        return ids;
    }

    QTemporaryDir m_folder;
    test::LocalHttpServer m_server{m_folder.path()};
    apptools::iTunesQueryHelper m_helper;
    AppSelectorSheet m_sheet{m_helper};
};

} // namespace

TEST_F(AppSelectorSheetTest, SearchListsSystemAndStoreAppsAndTheChosenRowIsTaken) {
    type(QStringLiteral("safari"));
    EXPECT_EQ(bundleIds(), (QStringList{"com.apple.mobilesafari", "com.example.reader", "safari"}));
    EXPECT_FALSE(m_sheet.findChild<QWidget*>(QStringLiteral("busyIndicator"))->isVisibleTo(&m_sheet));
    auto* table = m_sheet.findChild<QTreeWidget*>(QStringLiteral("resultsTable"));
    EXPECT_EQ(table->topLevelItem(1)->text(2), QStringLiteral("Store App"));

    table->setCurrentItem(table->topLevelItem(1));
    QTest::mouseClick(m_sheet.findChild<QPushButton*>(QStringLiteral("chooseButton")), Qt::LeftButton);
    EXPECT_EQ(m_sheet.result(), QDialog::Accepted);
    EXPECT_EQ(m_sheet.chosenBundleId(), QStringLiteral("com.example.reader"));
    EXPECT_EQ(m_sheet.chosenAppName(), QStringLiteral("Safari Reader"));
}

TEST_F(AppSelectorSheetTest, AFailedSearchKeepsTheSystemRowsAndAnEmptyOneShowsNone) {
    type(QStringLiteral("safari"));
    m_server.close();
    type(QStringLiteral("safari reader"));
    EXPECT_EQ(bundleIds(), QStringList{"com.apple.mobilesafari"});
    type(QString());
    EXPECT_TRUE(m_sheet.results().isEmpty());
}

TEST_F(AppSelectorSheetTest, AnAppOnDiskGivesItsIdentifierAndAnythingElseIsRefused) {
    ASSERT_FALSE(test::ProgramFiles::arm64().isEmpty()) << "clang and ld64.lld are needed";
    const QString notes = m_folder.filePath(QStringLiteral("notes.txt"));
    ASSERT_TRUE(test::ProgramFiles::write(notes, "not an app"));
    EXPECT_FALSE(m_sheet.chooseFile(notes));
    EXPECT_FALSE(m_sheet.chosenBundleId());

    const QString app = m_folder.filePath(QStringLiteral("Tool.app"));
    ASSERT_TRUE(
        test::ProgramFiles::write(app + QStringLiteral("/Contents/MacOS/Tool"), test::ProgramFiles::arm64()));
    ASSERT_TRUE(test::ProgramFiles::write(
        app + QStringLiteral("/Contents/Info.plist"),
        *plist::XmlWriter::write(
            plist::Dictionary{{"CFBundleExecutable", "Tool"}, {"CFBundleIdentifier", "com.example.tool"}})));
    EXPECT_TRUE(m_sheet.chooseFile(app));
    EXPECT_EQ(m_sheet.chosenBundleId(), QStringLiteral("com.example.tool"));
    EXPECT_EQ(m_sheet.chosenAppName(), QStringLiteral("Tool"));
}

} // namespace quorlin
