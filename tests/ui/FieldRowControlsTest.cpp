// The rows of a form as a user handles them: each simple control writes what
// is entered through the history, a right click inside any control offers the
// row's own menu, a check box's title is its label, the keyboard reaches a
// row's information, and the signing row's menu and pop-up follow the profile
// and the user's default.

#include "documents/ProfileSigningBridge.h"
#include "documents/SigningFixture.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "support/DataManifests.h"
#include "ui/ContentView.h"
#include "ui/DateInstrumentWidget.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/PropertyInfoPopover.h"
#include "ui/SectionFormView.h"
#include "ui/SigningRowView.h"
#include "workspace/EditHistory.h"
#include "workspace/WorkspaceTestSupport.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDateTimeEdit>
#include <QDesktopServices>
#include <QEnterEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include <functional>

namespace quorlin {
namespace {

using namespace test;
using MenuAction = FieldViewController::MenuAction;

// One payload of the controls domain in a shown form, edits going to a history.
class ControlsForm : public ::testing::Test {
protected:
    void SetUp() override {
        const auto domains = withGeneralDomain({dataDomain(QStringLiteral("ui/controls.plist"))});
        profile = Profile::makeNewProfile(domains, makeTestEnvironment());
        collection = std::make_unique<PFMSectionCollection>(domains);
        PFMSection* section = sectionTitled(*collection, QStringLiteral("Controls"));
        ASSERT_NE(section, nullptr);
        section->setKeyValueWriter(history.keyValueWriter());
        history.addPayload(*section, profile);
        view.resize(800, 600);
        view.setSection(section);
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
        form = view.sectionFormView()->payloadViews().first();
    }

    FieldRowView* row(const QString& name) const { return form->rowForKey(name); }

    Profile::Pointer profile;
    std::unique_ptr<PFMSectionCollection> collection;
    EditHistory history;
    ContentView view;
    PayloadFormView* form = nullptr;
};

// Where a right click lands in a control: the text part when it has one.
QWidget* clickTarget(QWidget& control) {
    if (auto* text = qobject_cast<QPlainTextEdit*>(&control))
        return text->viewport();
    if (auto* combo = qobject_cast<QComboBox*>(&control); combo && combo->lineEdit())
        return combo->lineEdit();
    return &control;
}

QMenu* rightClick(QWidget* target) {
    const QPoint inside(4, 4);
    QContextMenuEvent event(QContextMenuEvent::Mouse, inside, target->mapToGlobal(inside));
    QApplication::sendEvent(target, &event);
    return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

// Each simple control: its widget, an edit as a user makes it and what that
// stores, and whether Qt's own edit items follow the row's in its menu.
struct ControlCase {
    QString keyName;
    const char* widgetClass;
    std::function<void(QWidget&)> edit;
    plist::Value expected;
    bool hasEditItems;
};

std::vector<ControlCase> controlCases() {
    const auto typing = [](const QString& text) {
        return [text](QWidget& widget) { QTest::keyClicks(&widget, text); };
    };
    const QDateTime when(QDate(2024, 5, 17), QTime(9, 30), Qt::UTC);
    return {
        {QStringLiteral("Count"), "quorlin::NumberInstrumentWidget", typing(QStringLiteral("1x2")),
         plist::Value(qint64(12)), true},
        {QStringLiteral("Ratio"), "quorlin::NumberInstrumentWidget", typing(QStringLiteral("-1.5")),
         plist::Value(-1.5), true},
        {QStringLiteral("Name"), "quorlin::StringInstrumentWidget", typing(QStringLiteral("Alpha")),
         plist::Value(QStringLiteral("Alpha")), true},
        {QStringLiteral("Notes"), "quorlin::TextInstrumentWidget", typing(QStringLiteral("one")),
         plist::Value(QStringLiteral("one")), true},
        {QStringLiteral("Colour"), "quorlin::PopUpInstrumentWidget",
         [](QWidget& widget) {
             auto& popUp = static_cast<QComboBox&>(widget);
             popUp.setCurrentIndex(popUp.findText(QStringLiteral("green")));
             Q_EMIT popUp.activated(popUp.currentIndex());
         },
         plist::Value(QStringLiteral("green")), false},
        {QStringLiteral("Server"), "quorlin::ComboBoxInstrumentWidget",
         [](QWidget& widget) {
             auto& combo = static_cast<QComboBox&>(widget);
             EXPECT_EQ(combo.count(), 2);
             combo.setCurrentIndex(1);
             Q_EMIT combo.textActivated(combo.currentText());
         },
         plist::Value(QStringLiteral("b.example")), true},
        {QStringLiteral("Server"), "quorlin::ComboBoxInstrumentWidget",
         [](QWidget& widget) {
             QTest::keyClicks(static_cast<QComboBox&>(widget).lineEdit(), QStringLiteral("c.example"));
         },
         plist::Value(QStringLiteral("c.example")), true},
        {QStringLiteral("When"), "quorlin::DateInstrumentWidget",
         [when](QWidget& widget) { static_cast<QDateTimeEdit&>(widget).setDateTime(when.toLocalTime()); },
         plist::Value(plist::Date::fromDateTime(when)), true},
        {QStringLiteral("Enabled"), "quorlin::BooleanInstrumentWidget",
         [](QWidget& widget) { QTest::mouseClick(&widget, Qt::LeftButton); }, plist::Value(true), false},
    };
}

TEST_F(ControlsForm, EachWritesWhatIsEnteredThroughTheHistoryAndUndoEmptiesIt) {
    for (const ControlCase& test : controlCases()) {
        SCOPED_TRACE(test.keyName.toStdString());
        FieldRowView* field = row(test.keyName);
        ASSERT_NE(field, nullptr);
        ASSERT_EQ(field->instrumentWidgets().size(), 1);
        QWidget& widget = *field->instrumentWidgets().first();
        EXPECT_STREQ(widget.metaObject()->className(), test.widgetClass);
        EXPECT_EQ(widget.accessibleName(), test.keyName + QStringLiteral(" Title"));
        const PreferenceKey::Pointer stored = field->field().field();
        ASSERT_TRUE(stored->value().isAbsent());

        test.edit(widget);
        ASSERT_NE(stored->value().plistValue(), nullptr);
        EXPECT_EQ(*stored->value().plistValue(), test.expected);

        history.undoStack().undo();
        EXPECT_TRUE(stored->value().isAbsent());
        if (auto* line = qobject_cast<QLineEdit*>(&widget)) {
            EXPECT_TRUE(line->text().isEmpty());
        } else if (auto* text = qobject_cast<QPlainTextEdit*>(&widget)) {
            EXPECT_TRUE(text->toPlainText().isEmpty());
        } else if (auto* check = qobject_cast<QCheckBox*>(&widget)) {
            EXPECT_FALSE(check->isChecked());
        } else if (auto* date = qobject_cast<QDateTimeEdit*>(&widget)) {
            EXPECT_EQ(date->dateTime(), DateInstrumentWidget::emptyDateTime());
        } else if (auto* combo = qobject_cast<QComboBox*>(&widget)) {
            EXPECT_TRUE(combo->currentText().isEmpty());
        }
    }
}

TEST_F(ControlsForm, ARightClickInEachControlOffersTheRowsMenuWhoseUnsetIsOneUndoableStep) {
    for (const ControlCase& test : controlCases()) {
        SCOPED_TRACE(test.keyName.toStdString());
        FieldRowView* field = row(test.keyName);
        ASSERT_NE(field, nullptr);
        QWidget& control = *field->instrumentWidgets().first();
        const PreferenceKey::Pointer stored = field->field().field();
        test.edit(control);
        ASSERT_NE(stored->value().plistValue(), nullptr);
        const plist::Value edited = *stored->value().plistValue();
        const int steps = history.undoStack().count();

        QMenu* menu = rightClick(clickTarget(control));
        ASSERT_NE(menu, nullptr);
        const QList<QAction*> items = menu->actions();
        ASSERT_GE(items.size(), 4);
        for (int index = 0; index < 4; ++index) {
            const auto action = MenuAction(items.at(index)->data().toInt());
            EXPECT_EQ(action, MenuAction(index));
            EXPECT_EQ(items.at(index)->isEnabled(), field->field().validateMenuItem(action));
        }
        if (test.hasEditItems) {
            ASSERT_GT(items.size(), 5);
            EXPECT_TRUE(items.at(4)->isSeparator());
            EXPECT_TRUE(std::any_of(items.begin() + 5, items.end(), [](QAction* item) {
                return item->text().contains(QStringLiteral("Copy"));
            }));
        } else {
            EXPECT_EQ(items.size(), 4);
        }

        ASSERT_TRUE(items.first()->isEnabled());
        items.first()->trigger();
        menu->close();
        EXPECT_TRUE(stored->value().isAbsent());
        EXPECT_EQ(history.undoStack().count(), steps + 1);
        history.undoStack().undo();
        ASSERT_NE(stored->value().plistValue(), nullptr);
        EXPECT_EQ(*stored->value().plistValue(), edited);
    }
}

TEST_F(ControlsForm, ClickingACheckBoxsTitleTogglesItAsOneUndoableStep) {
    FieldRowView* field = row(QStringLiteral("Enabled"));
    ASSERT_NE(field, nullptr);
    auto* box = qobject_cast<QCheckBox*>(field->instrumentWidgets().first());
    ASSERT_NE(box, nullptr);
    const PreferenceKey::Pointer stored = field->field().field();

    const int steps = history.undoStack().count();
    QTest::mouseClick(field->titleLabel(), Qt::LeftButton);
    ASSERT_NE(stored->value().plistValue(), nullptr);
    EXPECT_EQ(*stored->value().plistValue(), plist::Value(true));
    EXPECT_TRUE(box->isChecked());
    EXPECT_EQ(history.undoStack().count(), steps + 1);

    history.undoStack().undo();
    EXPECT_TRUE(stored->value().isAbsent());
    EXPECT_FALSE(box->isChecked());
    history.undoStack().redo();
    EXPECT_TRUE(box->isChecked());
    history.undoStack().undo();
    // A right button on the title is no click.
    QTest::mouseClick(field->titleLabel(), Qt::RightButton);
    EXPECT_TRUE(stored->value().isAbsent());
}

TEST_F(ControlsForm, TheShortcutOpensTheInformationOfTheFocusedRowWhoseButtonIsNamed) {
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    for (const QString& name : {QStringLiteral("Name"), QStringLiteral("Notes")}) {
        SCOPED_TRACE(name.toStdString());
        FieldRowView* field = row(name);
        QWidget* control = field->instrumentWidgets().first();
        control->setFocus();
        ASSERT_TRUE(QTest::qWaitFor([&] { return control->hasFocus(); }));
        QTest::keySequence(control, FieldRowView::propertyInfoShortcut());
        auto* popover = field->findChild<PropertyInfoPopover*>(QStringLiteral("PropertyInfoPopover"));
        ASSERT_NE(popover, nullptr);
        EXPECT_EQ(popover->model(), field->field().propertyInfo());
        popover->close();
        auto* button = field->findChild<QToolButton*>(QStringLiteral("propertyInfoButton"));
        EXPECT_FALSE(button->accessibleName().isEmpty());
        EXPECT_TRUE(button->toolTip().contains(
            FieldRowView::propertyInfoShortcut().toString(QKeySequence::NativeText)));
    }
}

TEST_F(ControlsForm, TheInfoButtonShowsOnHoverAndTheDetailsEndWithTheDocumentation) {
    FieldRowView* name = row(QStringLiteral("Name"));
    auto* info = name->findChild<QToolButton*>(QStringLiteral("propertyInfoButton"));
    EXPECT_FALSE(info->isVisible());
    const QPointF inside(4, 4);
    QEnterEvent enter(inside, inside, name->mapToGlobal(inside));
    QApplication::sendEvent(name, &enter);
    EXPECT_TRUE(info->isVisible());
    PropertyInfoPopover* popover = name->openPropertyInfo();
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(name, &leave);
    EXPECT_TRUE(info->isVisible()) << "it lingers while its popover is open";
    popover->close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !info->isVisible(); }));

    FieldDisplaySettings settings;
    view.setFieldDisplaySettings(settings);
    // A check box row with nothing below it keeps close to the next; details open it up.
    FieldRowView* enabled = row(QStringLiteral("Enabled"));
    EXPECT_EQ(enabled->layout()->contentsMargins().bottom(), 1);
    settings.showPropertyDocumentationButton = true;
    settings.showFieldName = true;
    view.setFieldDisplaySettings(settings);
    EXPECT_EQ(enabled->layout()->contentsMargins().bottom(), 16);
    auto* documentation = name->findChild<QToolButton*>(QStringLiteral("documentationButton"));
    ASSERT_NE(documentation, nullptr);
    EXPECT_EQ(documentation->parentWidget()->objectName(), QStringLiteral("fieldDetails"));
}

TEST_F(ControlsForm, EveryControlKeepsItsWholeHeightWhenTheFontDoubles) {
    QFont large = view.font();
    large.setPointSizeF(large.pointSizeF() * 2);
    view.setFont(large);
    view.resize(1600, 1200);
    QApplication::processEvents();
    for (const ControlCase& test : controlCases()) {
        SCOPED_TRACE(test.keyName.toStdString());
        QWidget* control = row(test.keyName)->instrumentWidgets().first();
        control->ensurePolished();
        EXPECT_EQ(control->font().pointSizeF(), large.pointSizeF());
        EXPECT_GE(control->height(), control->sizeHint().height());
        // A check box's square is the style's, whatever the font.
        if (!qobject_cast<QCheckBox*>(control)) {
            EXPECT_GE(control->height(), QFontMetrics(large).height());
        }
    }
    // The text view shows four lines of the larger font.
    EXPECT_GE(row(QStringLiteral("Notes"))->instrumentWidgets().first()->height(),
              4 * QFontMetrics(large).lineSpacing());
}

class SigningRowControls : public SigningFixture {
protected:
    void TearDown() override {
        UserDefaults::standard().remove(DefaultsKey::preferencesDefaultsSigningIdentity);
    }

    Profile::Pointer makeProfile(std::shared_ptr<ProfileEnvironment> environment = makeTestEnvironment()) {
        return Profile::makeNewProfile(withGeneralDomain({}), std::move(environment));
    }
};

struct SigningMenuCase {
    std::optional<QString> profileName;
    std::optional<QString> defaultName;
    bool unsetEnabled;
    bool toDefaultEnabled;
};

TEST_F(SigningRowControls, TheMenuEnablesUnsetAndSetToDefaultByTheProfileAndTheUsersDefault) {
    const QString one = QStringLiteral("One Signer");
    const QString two = QStringLiteral("Two Signer");
    const std::vector<SigningMenuCase> cases{
        {std::nullopt, std::nullopt, false, false},
        {one, std::nullopt, true, true},
        {std::nullopt, one, false, true},
        {one, one, true, false},
        {one, two, true, true},
    };
    for (const SigningMenuCase& test : cases) {
        SCOPED_TRACE(test.profileName.value_or(QStringLiteral("-")).toStdString() + " / " +
                     test.defaultName.value_or(QStringLiteral("-")).toStdString());
        const auto profile = makeProfile();
        profile->setSaveSignedWithCommonName(test.profileName);
        UserDefaults::standard().set(DefaultsKey::preferencesDefaultsSigningIdentity,
                                     test.defaultName ? plist::Value(*test.defaultName) : plist::Value());
        SigningRowView row(profile, {});
        QMenu* menu = row.makeContextMenu(&row);
        const QList<QAction*> items = menu->actions();
        ASSERT_GE(items.size(), 2);
        EXPECT_EQ(items.at(0)->isEnabled(), test.unsetEnabled);
        EXPECT_EQ(items.at(1)->isEnabled(), test.toDefaultEnabled);
        if (test.toDefaultEnabled) {
            items.at(1)->trigger();
            EXPECT_EQ(profile->saveSignedWithCommonName(), test.defaultName);
        }
        delete menu;
    }
}

TEST_F(SigningRowControls, ThePopUpFollowsTheProfilesSigningNameChangedElsewhere) {
    ASSERT_TRUE(importIdentity(leaf));
    auto environment = makeTestEnvironment();
    environment->signingServices = std::make_shared<ProfileSigningBridge>(services);
    const auto profile = makeProfile(environment);
    SigningRowView row(profile, {});
    row.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&row));
    auto* writeOut = row.findChild<QLabel*>(QStringLiteral("writeOutIndicator"));
    ASSERT_EQ(row.popUp()->currentText(), SigningRowView::noValueLabel());

    profile->setSaveSignedWithCommonName(signerName);
    EXPECT_TRUE(QTest::qWaitFor([&] { return row.popUp()->currentText() == signerName; }, 2000));
    EXPECT_TRUE(writeOut->isVisibleTo(&row));
    profile->setSaveSignedWithCommonName(std::nullopt);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return row.popUp()->currentText() == SigningRowView::noValueLabel(); }, 2000));
    EXPECT_FALSE(writeOut->isVisibleTo(&row));
}

} // namespace
} // namespace quorlin
