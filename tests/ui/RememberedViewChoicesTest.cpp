// The issues panel comes back as the user left it, in every new window,
// and the form's density reads from the factory table until chosen.

#include "EditorTestSupport.h"

#include "ui/IssuesPanel.h"

#include <QAction>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

class RememberedViewChoices : public EditorFixture {};

TEST_F(RememberedViewChoices, TheIssuesPanelIsRememberedAndTheDensityHasAFactoryValue) {
    EXPECT_EQ(defaults.string(DefaultsKey::lastChoiceFormDensity), DefaultsValue::formDensityComfortable);
    const auto openWindow = [this] { return openShown(QStringLiteral("dock.mobileconfig")); };
    DocumentWindow* first = openWindow();
    ASSERT_TRUE(first);
    EXPECT_FALSE(first->issuesPanel()->isVisible());
    first->issuesPanel()->toggleViewAction()->trigger();
    EXPECT_EQ(defaults.boolean(DefaultsKey::lastChoiceShowIssues), true);
    // A window that goes hides the panel without the user closing it.
    first->close();
    QTest::qWait(0);
    EXPECT_EQ(defaults.boolean(DefaultsKey::lastChoiceShowIssues), true);

    DocumentWindow* second = openWindow();
    ASSERT_TRUE(second);
    EXPECT_TRUE(second->issuesPanel()->isVisible());
    second->issuesPanel()->close();
    EXPECT_EQ(defaults.boolean(DefaultsKey::lastChoiceShowIssues), false);
    second->close();
    QTest::qWait(0);
    DocumentWindow* third = openWindow();
    ASSERT_TRUE(third);
    EXPECT_FALSE(third->issuesPanel()->isVisible());
}

} // namespace
} // namespace quorlin
