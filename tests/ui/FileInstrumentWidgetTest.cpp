#include "../apptools/ProgramFiles.h"
#include "InstrumentWidgetFixture.h"
#include "support/DataManifests.h"

#include "fields/CustomPlistInstrumentController.h"
#include "fields/DataInstrumentController.h"
#include "fields/FileChoice.h"
#include "plist/XmlWriter.h"
#include "ui/FileInstrumentWidget.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

namespace quorlin {
namespace {

using namespace test;

const QString filesDomain = QStringLiteral("com.example.files");

class FileInstrumentWidgetTest : public InstrumentWidgetFixture {
protected:
    // A certificate that must be a ".cer" starting with a DER sequence, an image, a free-form
    // dictionary and an app's identifier.
    void SetUp() override { open({dataDomain(QStringLiteral("ui/files.plist"))}); }

    FileInstrumentWidget& showField(const QString& key) {
        FieldViewController* row = field(filesDomain, key);
        EXPECT_TRUE(row && !row->instruments().isEmpty());
        m_instrument = row->instruments().first().get();
        m_widget = std::make_unique<FileInstrumentWidget>(*row, *m_instrument);
        m_widget->setChooser(m_chooser);
        m_widget->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(m_widget.get()));
        return *m_widget;
    }

    QString writeFile(const QString& name, const QByteArray& bytes) const {
        const QString path = m_folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }

    void chooseThroughButton(const QString& path) {
        m_chooser->fileToOpen = path;
        QTest::mouseClick(m_widget->findChild<QPushButton*>("chooseButton"), Qt::LeftButton);
    }

    void drop(const QString& path) {
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(path)});
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_widget.get(), &enter);
        ASSERT_TRUE(enter.isAccepted());
        QDropEvent dropped(QPointF(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_widget.get(), &dropped);
    }

    QLabel& label(const char* name) const { return *m_widget->findChild<QLabel*>(name); }
    plist::Value written(const QString& key) const { return writtenValue(filesDomain, key); }

    QTemporaryDir m_folder;
    std::shared_ptr<ScriptedChooser> m_chooser = std::make_shared<ScriptedChooser>();
    InstrumentController* m_instrument = nullptr;
    std::unique_ptr<FileInstrumentWidget> m_widget;
};

TEST_F(FileInstrumentWidgetTest, DataTakesFilesOfItsKindAndRefusesOthers) {
    showField(QStringLiteral("Certificate"));
    auto& data = dynamic_cast<DataInstrumentController&>(*m_instrument);
    const QByteArray before = bytes();
    const QByteArray der("\x30\x82\x01\x0a\x02\x82\x01\x01\x00\xc3", 10);
    const QByteArray otherDer("\x30\x82\x00\x01\xff", 5);

    chooseThroughButton(writeFile(QStringLiteral("server.cer"), der));
    EXPECT_EQ(m_chooser->offeredExtensions, QStringList{QStringLiteral("cer")});
    EXPECT_EQ(written(QStringLiteral("Certificate")), plist::Value(der));
    EXPECT_TRUE(label("summaryLabel").text().startsWith(*data.sizeText()));
    EXPECT_TRUE(label("summaryLabel").text().contains(QStringLiteral("server.cer")));
    EXPECT_TRUE(label("previewLabel").text().startsWith(QStringLiteral("30 82 01 0a")));
    EXPECT_EQ(m_widget->findChild<QPushButton*>("chooseButton")->text(), FileChoice::chooseButtonTitle(true));
    EXPECT_FALSE(label("refusalLabel").isVisible());

    // A wrong extension and a wrong signature are refused in the logic's words; the value stays.
    for (const auto& [name, content] : {std::pair{QStringLiteral("notes.txt"), der},
                                        std::pair{QStringLiteral("fake.cer"), QByteArray("PK\x03\x04", 4)}}) {
        chooseThroughButton(writeFile(name, content));
        EXPECT_TRUE(label("refusalLabel").isVisible()) << name.toStdString();
        EXPECT_TRUE(label("refusalLabel").text().contains(FileChoice::incompatibleText()));
        EXPECT_EQ(written(QStringLiteral("Certificate")), plist::Value(der));
    }

    drop(writeFile(QStringLiteral("other.cer"), otherDer));
    EXPECT_EQ(written(QStringLiteral("Certificate")), plist::Value(otherDer));
    EXPECT_FALSE(label("refusalLabel").isVisible());
    EXPECT_TRUE(label("summaryLabel").text().contains(QStringLiteral("other.cer")));

    // The history takes the display back with the value.
    m_history.undoStack().setIndex(0);
    EXPECT_EQ(bytes(), before);
    EXPECT_FALSE(label("previewLabel").isVisible());
    EXPECT_FALSE(label("summaryLabel").isVisible());
    EXPECT_EQ(m_widget->findChild<QPushButton*>("chooseButton")->text(),
              FileChoice::chooseButtonTitle(false));
    m_history.undoStack().redo();
    EXPECT_FALSE(written(QStringLiteral("Certificate")).isNull());
    EXPECT_TRUE(label("summaryLabel").text().startsWith(*data.sizeText()));

    QTest::mouseClick(m_widget->findChild<QPushButton*>("clearButton"), Qt::LeftButton);
    EXPECT_TRUE(written(QStringLiteral("Certificate")).isNull());
    EXPECT_FALSE(label("previewLabel").isVisible());
    EXPECT_FALSE(m_widget->findChild<QPushButton*>("clearButton")->isVisible());
}

TEST_F(FileInstrumentWidgetTest, ImageIsStoredAsTheFileHasItAndPreviewed) {
    showField(QStringLiteral("Icon"));
    QImage image(200, 100, QImage::Format_ARGB32);
    image.fill(Qt::darkCyan);
    const QString path = m_folder.filePath(QStringLiteral("icon.png"));
    ASSERT_TRUE(image.save(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray png = file.readAll();

    chooseThroughButton(path);
    EXPECT_EQ(written(QStringLiteral("Icon")), plist::Value(png));
    const QPixmap preview = label("previewLabel").pixmap();
    ASSERT_FALSE(preview.isNull());
    EXPECT_EQ(preview.devicePixelRatio(), m_widget->devicePixelRatioF());
    const QSizeF shown = preview.deviceIndependentSize();
    EXPECT_LE(shown.width(), 64);
    EXPECT_DOUBLE_EQ(shown.width() / shown.height(), 2.0) << "the preview keeps the image's shape";

    chooseThroughButton(writeFile(QStringLiteral("broken.png"), "not an image"));
    EXPECT_TRUE(label("refusalLabel").text().contains(FileChoice::incompatibleText()));
    EXPECT_EQ(written(QStringLiteral("Icon")), plist::Value(png));
    EXPECT_FALSE(label("previewLabel").pixmap().isNull());
}

TEST_F(FileInstrumentWidgetTest, CustomDictionaryShowsItsKeysAndRefusesAnArray) {
    showField(QStringLiteral("Extra"));
    auto& custom = dynamic_cast<CustomPlistInstrumentController&>(*m_instrument);
    const plist::Dictionary content{{QStringLiteral("Alpha"), 1},
                                    {QStringLiteral("Beta"), QStringLiteral("b")}};
    chooseThroughButton(
        writeFile(QStringLiteral("extra.plist"), *plist::XmlWriter::write(plist::Value(content))));
    EXPECT_EQ(written(QStringLiteral("Extra")), plist::Value(content));
    EXPECT_TRUE(label("summaryLabel").text().startsWith(custom.explanatoryText()));
    EXPECT_TRUE(label("summaryLabel").text().contains(QStringLiteral("Alpha, Beta")));
    EXPECT_TRUE(m_widget->findChild<QPushButton*>("exportButton")->isVisible());

    const plist::Value array(plist::Array{QStringLiteral("x")});
    chooseThroughButton(writeFile(QStringLiteral("list.plist"), *plist::XmlWriter::write(array)));
    EXPECT_TRUE(label("refusalLabel").text().contains(custom.checkImportedRoot(array)->informativeText));
    EXPECT_EQ(written(QStringLiteral("Extra")), plist::Value(content));
}

TEST_F(FileInstrumentWidgetTest, AppSelectorStoresTheChosenIdentifier) {
    showField(QStringLiteral("App"));
    m_chooser->bundleId = QStringLiteral("com.example.Mail");
    QTest::mouseClick(m_widget->findChild<QPushButton*>("chooseButton"), Qt::LeftButton);
    EXPECT_EQ(written(QStringLiteral("App")), plist::Value(QStringLiteral("com.example.Mail")));
    EXPECT_EQ(label("summaryLabel").text(), QStringLiteral("com.example.Mail"));

    // Cancelling the choice changes nothing.
    m_chooser->bundleId.reset();
    QTest::mouseClick(m_widget->findChild<QPushButton*>("chooseButton"), Qt::LeftButton);
    EXPECT_EQ(written(QStringLiteral("App")), plist::Value(QStringLiteral("com.example.Mail")));

    QTest::mouseClick(m_widget->findChild<QPushButton*>("clearButton"), Qt::LeftButton);
    EXPECT_TRUE(written(QStringLiteral("App")).isNull());
    EXPECT_FALSE(label("summaryLabel").isVisible());
}

TEST_F(FileInstrumentWidgetTest, AppDroppedOnTheFieldGivesItsIdentifierAndNeverAPath) {
    ASSERT_FALSE(test::ProgramFiles::arm64().isEmpty()) << "clang and ld64.lld are needed";
    showField(QStringLiteral("App"));
    drop(writeFile(QStringLiteral("notes.txt"), "not an app"));
    EXPECT_TRUE(written(QStringLiteral("App")).isNull());
    EXPECT_TRUE(label("refusalLabel")
                    .text()
                    .contains(QStringLiteral("The app bundle notes.txt could not be inspected.")));

    const QString app = m_folder.filePath(QStringLiteral("Mail.app"));
    ASSERT_TRUE(
        test::ProgramFiles::write(app + QStringLiteral("/Contents/MacOS/Mail"), test::ProgramFiles::arm64()));
    ASSERT_TRUE(test::ProgramFiles::write(
        app + QStringLiteral("/Contents/Info.plist"),
        *plist::XmlWriter::write(
            plist::Dictionary{{"CFBundleExecutable", "Mail"}, {"CFBundleIdentifier", "com.example.Mail"}})));
    drop(app);
    EXPECT_EQ(written(QStringLiteral("App")), plist::Value(QStringLiteral("com.example.Mail")));
    EXPECT_FALSE(label("refusalLabel").isVisible());
}

} // namespace
} // namespace quorlin
