// Each simple instrument's widget, edited as a user would, against the key
// it writes: the value lands in the profile through the history, and undo
// brings the widget back to empty.

#include "ui/ContentView.h"
#include "ui/DateInstrumentWidget.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/SectionFormView.h"
#include "workspace/EditHistory.h"
#include "workspace/WorkspaceTestSupport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>

namespace quorlin {
namespace {

using namespace test;

plist::Dictionary key(const QString& name, const QString& type, plist::Dictionary extra = {}) {
    extra.insert(QStringLiteral("pfm_name"), name);
    extra.insert(QStringLiteral("pfm_title"), name + QStringLiteral(" Title"));
    extra.insert(QStringLiteral("pfm_type"), type);
    return extra;
}

std::shared_ptr<const PFMDomain> instrumentsDomain() {
    const plist::Array keys{
        key(QStringLiteral("Count"), QStringLiteral("integer")),
        key(QStringLiteral("Ratio"), QStringLiteral("real")),
        key(QStringLiteral("Name"), QStringLiteral("string")),
        key(QStringLiteral("Notes"), QStringLiteral("string"),
            {{QStringLiteral("pfm_quorlin_control_type"), QStringLiteral("text")}}),
        key(QStringLiteral("Colour"), QStringLiteral("string"),
            {{QStringLiteral("pfm_range_list"),
              plist::Array{QStringLiteral("red"), QStringLiteral("green")}}}),
        key(QStringLiteral("Server"), QStringLiteral("string"),
            {{QStringLiteral("pfm_quorlin_suggestions"),
              plist::Array{QStringLiteral("a.example"), QStringLiteral("b.example")}}}),
        key(QStringLiteral("When"), QStringLiteral("date")),
        key(QStringLiteral("Enabled"), QStringLiteral("boolean")),
    };
    return PFMDomain::make({{QStringLiteral("pfm_domain"), QStringLiteral("com.example.instruments")},
                            {QStringLiteral("pfm_title"), QStringLiteral("Instruments")},
                            {QStringLiteral("pfm_description"), QStringLiteral("Every simple control")},
                            {QStringLiteral("pfm_format_version"), 1},
                            {QStringLiteral("pfm_subkeys"), keys}});
}

struct Case {
    QString keyName;
    const char* widgetClass;
    std::function<void(QWidget&)> edit;
    plist::Value expected;
};

TEST(InstrumentWidgets, EachWritesWhatIsEnteredThroughTheHistoryAndUndoEmptiesIt) {
    const auto domain = instrumentsDomain();
    ASSERT_TRUE(domain);
    const auto domains = withGeneralDomain({domain});
    const auto profile = Profile::makeNewProfile(domains, makeTestEnvironment());
    PFMSectionCollection collection(domains);
    EditHistory history;
    PFMSection* section = sectionTitled(collection, QStringLiteral("Instruments"));
    ASSERT_NE(section, nullptr);
    section->setKeyValueWriter(history.keyValueWriter());
    history.addPayload(*section, profile);
    ContentView view;
    view.resize(800, 600);
    view.setSection(section);
    view.show();
    PayloadFormView& form = *view.sectionFormView()->payloadViews().first();

    const QDateTime when(QDate(2024, 5, 17), QTime(9, 30), Qt::UTC);
    const std::vector<Case> cases{
        {QStringLiteral("Count"), "quorlin::NumberInstrumentWidget",
         [](QWidget& widget) { QTest::keyClicks(&widget, QStringLiteral("1x2")); }, plist::Value(qint64(12))},
        {QStringLiteral("Ratio"), "quorlin::NumberInstrumentWidget",
         [](QWidget& widget) { QTest::keyClicks(&widget, QStringLiteral("-1.5")); }, plist::Value(-1.5)},
        {QStringLiteral("Name"), "quorlin::StringInstrumentWidget",
         [](QWidget& widget) { QTest::keyClicks(&widget, QStringLiteral("Alpha")); },
         plist::Value(QStringLiteral("Alpha"))},
        {QStringLiteral("Notes"), "quorlin::TextInstrumentWidget",
         [](QWidget& widget) { QTest::keyClicks(&widget, QStringLiteral("one")); },
         plist::Value(QStringLiteral("one"))},
        {QStringLiteral("Colour"), "quorlin::PopUpInstrumentWidget",
         [](QWidget& widget) {
             auto& popUp = static_cast<QComboBox&>(widget);
             const int index = popUp.findText(QStringLiteral("green"));
             popUp.setCurrentIndex(index);
             Q_EMIT popUp.activated(index);
         },
         plist::Value(QStringLiteral("green"))},
        {QStringLiteral("Server"), "quorlin::ComboBoxInstrumentWidget",
         [](QWidget& widget) {
             auto& combo = static_cast<QComboBox&>(widget);
             EXPECT_EQ(combo.count(), 2);
             combo.setCurrentIndex(1);
             Q_EMIT combo.textActivated(combo.currentText());
         },
         plist::Value(QStringLiteral("b.example"))},
        {QStringLiteral("When"), "quorlin::DateInstrumentWidget",
         [when](QWidget& widget) { static_cast<QDateTimeEdit&>(widget).setDateTime(when.toLocalTime()); },
         plist::Value(plist::Date::fromDateTime(when))},
        {QStringLiteral("Enabled"), "quorlin::BooleanInstrumentWidget",
         [](QWidget& widget) { QTest::mouseClick(&widget, Qt::LeftButton); }, plist::Value(true)},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.keyName.toStdString());
        FieldRowView* row = form.rowForKey(test.keyName);
        ASSERT_NE(row, nullptr);
        ASSERT_EQ(row->instrumentWidgets().size(), 1);
        QWidget& widget = *row->instrumentWidgets().first();
        EXPECT_STREQ(widget.metaObject()->className(), test.widgetClass);
        EXPECT_EQ(widget.accessibleName(), test.keyName + QStringLiteral(" Title"));
        const PreferenceKey::Pointer stored = row->field().field();
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

} // namespace
} // namespace quorlin
