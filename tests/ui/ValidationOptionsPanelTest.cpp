#include "ui/ValidationOptionsPanel.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "validation/ValidationSettings.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using Model = PFMSupportedPlatforms::Model;

QLineEdit* fieldNamed(QWidget& panel, const QString& accessibleName) {
    for (QLineEdit* field : panel.findChildren<QLineEdit*>()) {
        if (field->accessibleName() == accessibleName)
            return field;
    }
    return nullptr;
}

// Typing a version targets its platform and is remembered; Reset drops both.
TEST(ValidationOptionsPanel, TypingTargetsThePlatformAndResetForgetsIt) {
    QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(QStringLiteral("defaults.plist")));
    ValidationSettings settings(defaults);
    ValidationOptionsPanel panel(settings);
    ASSERT_FALSE(settings.targetingIOS());

    QLineEdit* iOSMinimum = fieldNamed(panel, QStringLiteral("iOS minimum version"));
    ASSERT_TRUE(iOSMinimum);
    QTest::keyClicks(iOSMinimum, QStringLiteral("15.0"));
    EXPECT_TRUE(settings.targetingIOS());
    EXPECT_FALSE(settings.targetingMacOS());
    EXPECT_EQ(settings.minimumVersion(Model::iOS), QStringLiteral("15.0"));
    const auto stored = defaults.dictionary(DefaultsKey::lastChoiceValidationSettings);
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->value(QStringLiteral("iOSMin")).toString(), QStringLiteral("15.0"));

    // Clearing the text leaves the platform targeted.
    iOSMinimum->selectAll();
    QTest::keyClick(iOSMinimum, Qt::Key_Backspace);
    EXPECT_TRUE(settings.targetingIOS());

    QTest::keyClicks(fieldNamed(panel, QStringLiteral("macOS maximum version")), QStringLiteral("13"));
    QPushButton* reset = panel.findChild<QPushButton*>();
    ASSERT_TRUE(reset);
    reset->click();
    EXPECT_FALSE(settings.targetingAnyPlatform());
    EXPECT_TRUE(settings.maximumVersion(Model::macOS).isEmpty());
    EXPECT_TRUE(fieldNamed(panel, QStringLiteral("macOS maximum version"))->text().isEmpty());
    for (QCheckBox* box : panel.findChildren<QCheckBox*>()) {
        const bool isTarget = box->text() == QStringLiteral("macOS") || box->text() == QStringLiteral("iOS");
        EXPECT_FALSE(isTarget && box->isChecked()) << box->text().toStdString();
    }
}

} // namespace
} // namespace quorlin
