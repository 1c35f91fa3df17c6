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

const QString privacyDomain = QStringLiteral("com.example.privacy");
const QString team = QStringLiteral("QRLN123456");
const QString requirementText = QStringLiteral(
    R"(identifier "com.quorlin.sample" and anchor apple generic and certificate leaf[subject.OU] = QRLN123456)");

plist::Dictionary key(const QString& name, bool app = false, const plist::Array& range = {}) {
    plist::Dictionary key{{QStringLiteral("pfm_name"), name},
                          {QStringLiteral("pfm_title"), name},
                          {QStringLiteral("pfm_type"), QStringLiteral("string")}};
    if (app)
        key.insert(QStringLiteral("pfm_quorlin_control_type"), QStringLiteral("bundle-id"));
    if (!range.isEmpty())
        key.insert(QStringLiteral("pfm_range_list"), range);
    return key;
}

plist::Dictionary rows(const QString& name, const plist::Array& columns) {
    const plist::Dictionary item{{QStringLiteral("pfm_type"), QStringLiteral("dictionary")},
                                 {QStringLiteral("pfm_subkeys"), columns}};
    return {{QStringLiteral("pfm_name"), name},
            {QStringLiteral("pfm_type"), QStringLiteral("array")},
            {QStringLiteral("pfm_subkeys"), plist::Array{item}}};
}

// Rows of a privacy payload (the app and the app it sends events to), rows
// of login-item rules, and an extension with its team at the top level.
std::shared_ptr<const PFMDomain> privacyDomainWithKeys() {
    const plist::Array types{QStringLiteral("bundleID"), QStringLiteral("path")};
    const plist::Array services{key("Identifier", true),
                                key("IdentifierType", false, types),
                                key("CodeRequirement"),
                                key("AEReceiverIdentifier", true),
                                key("AEReceiverIdentifierType", false, types),
                                key("AEReceiverCodeRequirement")};
    const plist::Array rules{key("BundleIdentifier", true), key("TeamIdentifier")};
    return domainWithKeys(plist::Array{rows("Services", services), rows("Rules", rules),
                                       key("ExtensionIdentifier", true), key("TeamIdentifier")},
                          privacyDomain);
}

// Chooses an app on disk in the real sheet, or an identifier as a store row gives it.
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
    void SetUp() override {
        ASSERT_FALSE(ProgramFiles::arm64().isEmpty()) << "clang and ld64.lld are needed";
        open({privacyDomainWithKeys()});
        m_app = makeSignedApp();
    }

    // Sample.app, signed by a developer of the test PKI, with an icon set.
    QString makeSignedApp() const {
        const TestCertificate root = TestPki::issue(QStringLiteral("Quorlin Test Root"), nullptr, true);
        const TestCertificate leaf = TestPki::issue(
            QStringLiteral("Developer ID Application: Quorlin Tests (QRLN123456)"), &root, false);
        SignatureParts parts;
        parts.identifier = QStringLiteral("com.quorlin.sample");
        parts.teamIdentifier = team;
        using namespace requirement;
        parts.designatedRequirement = both(both(identifier("com.quorlin.sample"), appleGenericAnchor()),
                                           certificateField(0, "subject.OU", equals(team.toLatin1())));
        parts.signer = leaf.certificate.get();
        parts.signerKey = leaf.key.get();
        parts.storedCertificates = {leaf.certificate.get(), root.certificate.get()};
        const QString app = m_folder.filePath(QStringLiteral("Sample.app/Contents/"));
        EXPECT_TRUE(ProgramFiles::write(
            app + QStringLiteral("MacOS/Sample"),
            ProgramFiles::withSignature(ProgramFiles::arm64(), embeddedSignature(parts))));
        EXPECT_TRUE(ProgramFiles::write(app + QStringLiteral("Resources/Sample.icns"),
                                        iconSet({{"ic07", pngImage(128)}})));
        EXPECT_TRUE(ProgramFiles::write(
            app + QStringLiteral("Info.plist"),
            *plist::XmlWriter::write(plist::Dictionary{{"CFBundleExecutable", "Sample"},
                                                       {"CFBundleIdentifier", "com.quorlin.sample"},
                                                       {"CFBundleName", "Sample"},
                                                       {"CFBundleIconFile", "Sample"}})));
        return m_folder.filePath(QStringLiteral("Sample.app"));
    }

    // A row of the table, filled with values of another app.
    void showRow(const QString& array, const plist::Dictionary& before) {
        FieldViewController* row = field(privacyDomain, array);
        ASSERT_TRUE(row && !row->instruments().isEmpty());
        m_table = dynamic_cast<ArrayInstrumentController*>(row->instruments().first().get());
        m_widget = std::make_unique<ArrayInstrumentWidget>(*row, *m_table);
        m_widget->setChooser(m_chooser);
        m_widget->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_widget.get()));
        m_widget->addRow();
        if (QWidget* editor = QApplication::focusWidget(); editor && editor != m_widget->tableView())
            QTest::keyClick(editor, Qt::Key_Escape);
        const auto* cells = m_table->rows().first()->value().keyMap();
        for (const QString& name : before.keys())
            m_history.setValue(cells->value(name), PreferenceKeyValue(before.value(name)));
        ASSERT_EQ(writtenRow(array), before);
    }

    void doubleClickColumn(const QString& identifier) {
        QTableView& view = *m_widget->tableView();
        int column = 0;
        while (m_table->columns().at(column).identifier != identifier)
            ++column;
        const QPointF at = view.visualRect(view.model()->index(0, column)).center();
        QMouseEvent click(QEvent::MouseButtonDblClick, at, view.viewport()->mapToGlobal(at), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view.viewport(), &click);
    }

    plist::Dictionary writtenRow(const QString& array) const {
        const plist::Value rows = writtenValue(privacyDomain, array);
        return rows.array() && !rows.array()->isEmpty() ? *rows.array()->first().dictionary()
                                                        : plist::Dictionary{};
    }

    QTemporaryDir m_folder;
    QString m_app;
    std::shared_ptr<SheetChooser> m_chooser = std::make_shared<SheetChooser>();
    ArrayInstrumentController* m_table = nullptr;
    std::unique_ptr<ArrayInstrumentWidget> m_widget;
};

} // namespace

TEST_F(AppNeighbourKeysTest, ChoosingAnAppFillsTheKeysBesideItInOneStepThatUndoes) {
    const plist::Dictionary other{
        {"Identifier", "com.example.old"},     {"IdentifierType", "path"},
        {"CodeRequirement", "identifier old"}, {"AEReceiverIdentifier", "com.example.receiver"},
        {"AEReceiverIdentifierType", "path"},  {"AEReceiverCodeRequirement", "identifier receiver"}};
    const auto with = [&other](std::initializer_list<std::pair<const char*, QString>> changes) {
        plist::Dictionary row = other;
        for (const auto& [name, value] : changes)
            row.insert(QString::fromLatin1(name), plist::Value(value));
        return row;
    };
    const QString sample = QStringLiteral("com.quorlin.sample");
    const struct {
        const char* name;
        QString array;
        plist::Dictionary before;
        QString column;
        bool fromDisk;
        plist::Dictionary after;
    } cases[] = {
        {"the app of a privacy row", "Services", other, "Identifier", true,
         with(
             {{"Identifier", sample}, {"IdentifierType", "bundleID"}, {"CodeRequirement", requirementText}})},
        {"the app it sends events to", "Services", other, "AEReceiverIdentifier", true,
         with({{"AEReceiverIdentifier", sample},
               {"AEReceiverIdentifierType", "bundleID"},
               {"AEReceiverCodeRequirement", requirementText}})},
        {"a store pick knows no requirement", "Services", other, "Identifier", false,
         with({{"Identifier", "com.example.store"}, {"IdentifierType", "bundleID"}})},
        {"a rule's team",
         "Rules",
         {{"BundleIdentifier", "com.example.old"}, {"TeamIdentifier", "OLDTEAM"}},
         "BundleIdentifier",
         true,
         {{"BundleIdentifier", sample}, {"TeamIdentifier", team}}},
    };
    for (const auto& example : cases) {
        SCOPED_TRACE(example.name);
        m_widget.reset();
        m_history.undoStack().clear();
        open({privacyDomainWithKeys()});
        showRow(example.array, example.before);
        m_chooser->appPath = example.fromDisk ? std::optional(m_app) : std::nullopt;
        m_chooser->bundleId = QStringLiteral("com.example.store");
        const int steps = m_history.undoStack().index();
        doubleClickColumn(example.column);
        EXPECT_EQ(writtenRow(example.array), example.after);
        EXPECT_EQ(m_history.undoStack().index(), steps + 1);
        m_history.undoStack().undo();
        EXPECT_EQ(writtenRow(example.array), example.before);
    }
}

TEST_F(AppNeighbourKeysTest, AnAppDroppedOnAFieldShowsItsNameAndIconAndFillsItsTeam) {
    FieldViewController* row = field(privacyDomain, QStringLiteral("ExtensionIdentifier"));
    ASSERT_TRUE(row);
    auto widget = std::make_unique<FileInstrumentWidget>(*row, *row->instruments().first());
    widget->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(widget.get()));
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(m_app)});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget.get(), &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget.get(), &drop);

    EXPECT_EQ(writtenValue(privacyDomain, QStringLiteral("ExtensionIdentifier")),
              plist::Value(QStringLiteral("com.quorlin.sample")));
    EXPECT_EQ(writtenValue(privacyDomain, QStringLiteral("TeamIdentifier")), plist::Value(team));
    EXPECT_EQ(widget->findChild<QLabel*>("summaryLabel")->text(),
              QStringLiteral("Sample (com.quorlin.sample)"));
    const QLabel* preview = widget->findChild<QLabel*>("previewLabel");
    EXPECT_TRUE(preview->isVisible());
    EXPECT_FALSE(preview->pixmap().isNull()) << "the icon set's PNG is shown";

    m_history.undoStack().undo();
    EXPECT_TRUE(writtenValue(privacyDomain, QStringLiteral("ExtensionIdentifier")).isNull());
    EXPECT_TRUE(writtenValue(privacyDomain, QStringLiteral("TeamIdentifier")).isNull());
}

} // namespace quorlin
