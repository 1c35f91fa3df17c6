#include "EditorTestSupport.h"

#include "plist/DefaultsKey.h"
#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/SectionFormView.h"

#include <QAction>
#include <QLabel>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

class FormDensity : public EditorFixture {
protected:
    QAction* densityChoice(DocumentWindow& window, const QString& name) const {
        return window.findChild<QAction*>(name);
    }
    // A dock row with a description.
    FieldRowView* describedRow(DocumentWindow& window) const {
        window.selectSection(sectionTitled(window, QStringLiteral("Dock")));
        PayloadFormView* form = window.contentView()->sectionFormView()->payloadViews().first();
        return form->rowForKey(QStringLiteral("tilesize"));
    }
};

TEST_F(FormDensity, CompactFoldsDescriptionsUntilClickedAndIsRememberedForNewWindows) {
    DocumentWindow* window = openShown(QStringLiteral("dock.mobileconfig"));
    ASSERT_TRUE(window);
    FieldRowView* row = describedRow(*window);
    ASSERT_TRUE(row && !row->descriptionLabel()->text().isEmpty());
    EXPECT_TRUE(densityChoice(*window, QStringLiteral("comfortable"))->isChecked());
    EXPECT_FALSE(row->isDescriptionFolded());
    const int comfortableHeight = row->sizeHint().height();

    densityChoice(*window, QStringLiteral("compact"))->trigger();
    EXPECT_EQ(defaults.string(DefaultsKey::lastChoiceFormDensity), QStringLiteral("compact"));
    EXPECT_TRUE(row->isDescriptionFolded());
    EXPECT_LT(row->sizeHint().height(), comfortableHeight);
    EXPECT_EQ(row->descriptionLabel()->toolTip(), FieldRowView::descriptionFoldedTip());
    QTest::mouseClick(row->descriptionLabel(), Qt::LeftButton);
    EXPECT_FALSE(row->isDescriptionFolded());
    QTest::mouseClick(row->descriptionLabel(), Qt::LeftButton);
    EXPECT_TRUE(row->isDescriptionFolded());

    DocumentWindow* second = open(copyProfile(QStringLiteral("two-docks.mobileconfig")));
    ASSERT_TRUE(second);
    EXPECT_TRUE(densityChoice(*second, QStringLiteral("compact"))->isChecked());
    EXPECT_TRUE(second->displaySettings().compactDensity);

    densityChoice(*window, QStringLiteral("comfortable"))->trigger();
    EXPECT_FALSE(row->isDescriptionFolded());
    EXPECT_EQ(defaults.string(DefaultsKey::lastChoiceFormDensity), QStringLiteral("comfortable"));
}

} // namespace
} // namespace quorlin
