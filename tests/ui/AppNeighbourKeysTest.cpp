#include "../apptools/IconSetBuilder.h"
#include "../apptools/ProgramFiles.h"
#include "../apptools/SignatureBlobBuilder.h"
#include "../documents/TestPki.h"
#include "InstrumentWidgetFixture.h"

#include "apptools/iTunesQueryHelper.h"
#include "fields/ArrayInstrumentController.h"
#include "plist/XmlWriter.h"
#include "ui/AppSelectorSheet.h"
#include "ui/ArrayInstrumentWidget.h"
#include "ui/FileInstrumentWidget.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

namespace quorlin {
namespace {

using namespace test;

const QString domain = QStringLiteral("com.example.privacy");
const QString sample = QStringLiteral("com.quorlin.sample");
const QString team = QStringLiteral("QRLN123456");
const QString requirementText = QStringLiteral(
    R"(identifier "com.quorlin.sample" and anchor apple generic and certificate leaf[subject.OU] = QRLN123456)");

plist::Dictionary key(const char* name, const char* control = nullptr) {
    plist::Dictionary made{{"pfm_name", name}, {"pfm_type", "string"}};
    if (control)
        made.insert(QStringLiteral("pfm_quorlin_control_type"), QString::fromLatin1(control));
    return made;
}

plist::Dictionary rows(const char* name, const plist::Array& columns) {
    return {{"pfm_name", name},
            {"pfm_type", "array"},
            {"pfm_subkeys",
             plist::Array{plist::Dictionary{{"pfm_type", "dictionary"}, {"pfm_subkeys", columns}}}}};
}

// Privacy rows (the app, and the app it sends events to), login-item rules,
// and an extension with its team at the top level.
std::shared_ptr<const PFMDomain> privacyDomain() {
    const plist::Array services{key("Identifier", "bundle-id"),  key("IdentifierType"),
                                key("CodeRequirement"),          key("AEReceiverIdentifier", "bundle-id"),
                                key("AEReceiverIdentifierType"), key("AEReceiverCodeRequirement")};
    return domainWithKeys(
        plist::Array{rows("Services", services),
                     rows("Rules", {key("BundleIdentifier", "bundle-id"), key("TeamIdentifier")}),
                     key("ExtensionIdentifier", "bundle-id"), key("TeamIdentifier")},
        domain);
}

// Takes an app on disk in the real sheet; without one, an identifier as a store row gives it.
class SheetChooser : public ScriptedChooser {
public:
    std::optional<QString> appPath;
    std::optional<apptools::ChosenApp> chooseApp(QWidget* parent) override {
        if (!appPath)
            return ScriptedChooser::chooseApp(parent);
        apptools::iTunesQueryHelper helper;
        AppSelectorSheet sheet(helper, parent);
        return sheet.chooseFile(*appPath) ? sheet.chosenApp() : std::nullopt;
    }
};

class AppNeighbourKeysTest : public InstrumentWidgetFixture {
protected:
    // Sample.app, signed by a developer of the test PKI, with an icon set.
    void SetUp() override {
        ASSERT_FALSE(ProgramFiles::arm64().isEmpty()) << "clang and ld64.lld are needed";
        open({privacyDomain()});
        const TestCertificate root = TestPki::issue(QStringLiteral("Quorlin Test Root"), nullptr, true);
        const TestCertificate leaf = TestPki::issue(QStringLiteral("Developer ID Application"), &root, false);
        using namespace requirement;
        SignatureParts parts{sample,
                             team,
                             0,
                             both(both(identifier(sample.toLatin1()), appleGenericAnchor()),
                                  certificateField(0, "subject.OU", equals(team.toLatin1()))),
                             {},
                             {},
                             leaf.certificate.get(),
                             leaf.key.get(),
                             {leaf.certificate.get()}};
        const QString contents = m_app + QStringLiteral("/Contents/");
        ASSERT_TRUE(ProgramFiles::write(
            contents + QStringLiteral("MacOS/Sample"),
            ProgramFiles::withSignature(ProgramFiles::arm64(), embeddedSignature(parts))));
        ASSERT_TRUE(ProgramFiles::write(contents + QStringLiteral("Resources/Sample.icns"),
                                        iconSet({{"ic07", pngImage(128)}})));
        ASSERT_TRUE(
            ProgramFiles::write(contents + QStringLiteral("Info.plist"),
                                *plist::XmlWriter::write(plist::Dictionary{{"CFBundleExecutable", "Sample"},
                                                                           {"CFBundleIdentifier", sample},
                                                                           {"CFBundleName", "Sample"},
                                                                           {"CFBundleIconFile", "Sample"}})));
    }

    // The first row of a table, holding the values of another app, with its app cell double-clicked.
    void chooseInRow(const QString& array, const plist::Dictionary& before, const QString& column) {
        FieldViewController* field = this->field(domain, array);
        auto* table = dynamic_cast<ArrayInstrumentController*>(field->instruments().first().get());
        ArrayInstrumentWidget widget(*field, *table);
        widget.setChooser(m_chooser);
        widget.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
        widget.addRow();
        if (QWidget* editor = QApplication::focusWidget(); editor && editor != widget.tableView())
            QTest::keyClick(editor, Qt::Key_Escape);
        for (const QString& name : before.keys())
            m_history.setValue(table->rows().first()->value().keyMap()->value(name),
                               PreferenceKeyValue(before.value(name)));
        int index = 0;
        while (table->columns().at(index).identifier != column)
            ++index;
        QTableView& view = *widget.tableView();
        const QPointF at = view.visualRect(view.model()->index(0, index)).center();
        QMouseEvent click(QEvent::MouseButtonDblClick, at, view.viewport()->mapToGlobal(at), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view.viewport(), &click);
    }

    plist::Dictionary firstRow(const QString& array) const {
        const plist::Value rows = writtenValue(domain, array);
        return rows.array() ? *rows.array()->first().dictionary() : plist::Dictionary{};
    }

    QTemporaryDir m_folder;
    QString m_app = m_folder.filePath(QStringLiteral("Sample.app"));
    std::shared_ptr<SheetChooser> m_chooser = std::make_shared<SheetChooser>();
};

} // namespace

TEST_F(AppNeighbourKeysTest, ChoosingAnAppFillsTheKeysBesideItInOneStepThatUndoes) {
    const plist::Dictionary other{
        {"Identifier", "com.example.old"},     {"IdentifierType", "path"},
        {"CodeRequirement", "identifier old"}, {"AEReceiverIdentifier", "com.example.to"},
        {"AEReceiverIdentifierType", "path"},  {"AEReceiverCodeRequirement", "identifier to"}};
    const auto with = [&other](const plist::Dictionary& changes) {
        plist::Dictionary row = other;
        for (const QString& name : changes.keys())
            row.insert(name, changes.value(name));
        return row;
    };
    const plist::Dictionary oldRule{{"BundleIdentifier", "com.example.old"}, {"TeamIdentifier", "OLDTEAM"}};
    const struct {
        const char* name;
        const char* array;
        plist::Dictionary before;
        const char* column;
        const char* typed; // or an app from disk
        plist::Dictionary after;
    } cases[] = {
        {"the app of a privacy row", "Services", other, "Identifier", nullptr,
         with(
             {{"Identifier", sample}, {"IdentifierType", "bundleID"}, {"CodeRequirement", requirementText}})},
        {"the app it sends events to", "Services", other, "AEReceiverIdentifier", nullptr,
         with({{"AEReceiverIdentifier", sample},
               {"AEReceiverIdentifierType", "bundleID"},
               {"AEReceiverCodeRequirement", requirementText}})},
        {"a store pick knows no requirement", "Services", other, "Identifier", "com.example.store",
         with({{"Identifier", "com.example.store"}, {"IdentifierType", "bundleID"}})},
        {"a typed path", "Services", with({{"IdentifierType", "bundleID"}}), "Identifier",
         "/usr/bin/osascript", with({{"Identifier", "/usr/bin/osascript"}})},
        {"a rule's team",
         "Rules",
         oldRule,
         "BundleIdentifier",
         nullptr,
         {{"BundleIdentifier", sample}, {"TeamIdentifier", team}}},
    };
    for (const auto& example : cases) {
        SCOPED_TRACE(example.name);
        m_history.undoStack().clear();
        open({privacyDomain()});
        m_chooser->appPath = example.typed ? std::nullopt : std::optional(m_app);
        m_chooser->bundleId = QString::fromLatin1(example.typed);
        chooseInRow(example.array, example.before, example.column);
        EXPECT_EQ(firstRow(example.array), example.after);
        m_history.undoStack().undo();
        EXPECT_EQ(firstRow(example.array), example.before) << "one step undoes the whole choice";
    }
}

TEST_F(AppNeighbourKeysTest, AnAppDroppedOnAFieldShowsItsNameAndIconAndFillsItsTeam) {
    FieldViewController* row = field(domain, QStringLiteral("ExtensionIdentifier"));
    FileInstrumentWidget widget(*row, *row->instruments().first());
    widget.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(m_app)});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &enter);
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &drop);

    EXPECT_EQ(writtenValue(domain, QStringLiteral("TeamIdentifier")), plist::Value(team));
    EXPECT_EQ(widget.findChild<QLabel*>("summaryLabel")->text(),
              QStringLiteral("Sample (com.quorlin.sample)"));
    EXPECT_FALSE(widget.findChild<QLabel*>("previewLabel")->pixmap().isNull()) << "the icon set's PNG shows";
    m_history.undoStack().undo();
    EXPECT_TRUE(writtenValue(domain, QStringLiteral("ExtensionIdentifier")).isNull());
    EXPECT_TRUE(writtenValue(domain, QStringLiteral("TeamIdentifier")).isNull());
}

} // namespace quorlin
