// Instruments whose value comes from a file or a sheet: what a file must be
// to be taken, the words shown and the alerts of refusal. Files are made
// here, at test time.

#include "FieldsTestSupport.h"
#include "support/DataManifests.h"

#include "fields/AppSelectorInstrumentController.h"
#include "fields/CustomPlistInstrumentController.h"
#include "fields/DataInstrumentController.h"
#include "fields/ImageInstrumentController.h"
#include "plist/XmlWriter.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;

const QString importTitle = QStringLiteral("Could not load plist file");

QByteArray pngBytes() {
    QImage image(4, 4, QImage::Format_ARGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

class FileInstrumentsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        payload = dataPayload("fields/file-instruments.plist");
    }
    QString write(const QString& name, const QByteArray& bytes) {
        const QString path = folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }
    QString writePlist(const QString& name, const plist::Value& root) {
        return write(name, *plist::XmlWriter::write(root));
    }
    template <typename Instrument>
    std::unique_ptr<Instrument> instrument(const QString& key) {
        auto made = std::make_unique<Instrument>();
        made->setWriter(writer);
        made->setRepresentedObject(payload->keyAtPath(key));
        return made;
    }
    plist::Value written(const QString& key) {
        return payload->keyAtPath(key)->writeOutValue().value_or(plist::Value());
    }

    QTemporaryDir folder;
    Payload::Pointer payload;
    std::shared_ptr<RecordingWriter> writer = std::make_shared<RecordingWriter>();
};

TEST_F(FileInstrumentsTest, ADataFileMustHaveTheKeysExtensionAndSignature) {
    const auto certificate = instrument<DataInstrumentController>("Certificate");
    EXPECT_EQ(certificate->chooseButtonTitle(), "Choose...");
    EXPECT_FALSE(certificate->sizeText());
    EXPECT_EQ(certificate->allowedFileExtensions(), (QStringList{"cer", "der"}));

    const QByteArray good("\x30\x82\x01\x02rest", 8);
    const auto wrongExtension = certificate->chooseFile(write("cert.pem", good));
    ASSERT_TRUE(wrongExtension);
    EXPECT_EQ(wrongExtension->title, "File incompatible");
    EXPECT_EQ(wrongExtension->informativeText,
              "The selected file is not the right type for this configuration section.");
    EXPECT_TRUE(certificate->chooseFile(write("cert.cer", "-----BEGIN")));
    EXPECT_TRUE(certificate->chooseFile(folder.filePath("missing.cer")));
    EXPECT_TRUE(payload->keyAtPath("Certificate")->value().isAbsent());

    EXPECT_FALSE(certificate->chooseFile(write("cert.DER", good)));
    EXPECT_EQ(written("Certificate"), plist::Value(good));
    EXPECT_EQ(certificate->chooseButtonTitle(), "Replace...");
    EXPECT_EQ(certificate->sizeText(), "Contains 8 bytes of data");
    // A refused file leaves the value as it was.
    EXPECT_TRUE(certificate->chooseFile(write("other.cer", "xx")));
    EXPECT_EQ(written("Certificate"), plist::Value(good));
    certificate->remove();
    EXPECT_TRUE(payload->keyAtPath("Certificate")->value().isAbsent());
    EXPECT_EQ(certificate->buttonVisibilityPriority(), 1000);
    EXPECT_EQ(instrument<DataInstrumentController>("Anything")->buttonVisibilityPriority(), 0);
}

TEST_F(FileInstrumentsTest, AnImageIsStoredAsTheFileHasIt) {
    const auto logo = instrument<ImageInstrumentController>("Logo");
    RecordingControl well;
    logo->attachControl(&well);
    const QByteArray png = pngBytes();
    ASSERT_FALSE(png.isEmpty());
    EXPECT_FALSE(logo->chooseFile(write("logo.png", png)));
    EXPECT_EQ(written("Logo"), plist::Value(png));
    EXPECT_FALSE(logo->suspendValueObservation());
    const auto refused = logo->dropImageData("not an image");
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->title, "File incompatible");
    EXPECT_EQ(written("Logo"), plist::Value(png));
    EXPECT_EQ(logo->chooseButtonTitle(), "Replace...");
    logo->remove();
    EXPECT_TRUE(well.shown.isNull());
}

TEST_F(FileInstrumentsTest, ThePlistLabelTellsWhatTheKeyHolds) {
    const auto custom = instrument<CustomPlistInstrumentController>("Custom");
    const auto list = instrument<CustomPlistInstrumentController>("List");
    EXPECT_EQ(custom->explanatoryText(),
              "This property accepts a custom key-value dictionary loaded from a plist file.");
    EXPECT_EQ(list->explanatoryText(), "This property accepts a custom array loaded from a plist file.");
    EXPECT_FALSE(custom->importFile(writePlist("custom.plist", plist::Dictionary{{"a", 1}})));
    EXPECT_FALSE(list->importFile(writePlist("list.plist", plist::Array{"x"})));
    EXPECT_EQ(custom->explanatoryText(), "This property is set to a custom key-value dictionary.");
    EXPECT_EQ(list->explanatoryText(), "This property is set to a custom array.");
    EXPECT_EQ(written("Custom"), plist::Value(plist::Dictionary{{"a", 1}}));
    EXPECT_EQ(CustomPlistInstrumentController::chooseButtonTitle(), "Choose Plist File...");
}

TEST_F(FileInstrumentsTest, AnImportIsRefusedInTheWordsOfItsFault) {
    const auto custom = instrument<CustomPlistInstrumentController>("Custom");
    const auto list = instrument<CustomPlistInstrumentController>("List");
    const auto shaped = instrument<CustomPlistInstrumentController>("Shaped");
    const auto text = instrument<CustomPlistInstrumentController>("Text");
    const QString arrayFile = writePlist("array.plist", plist::Array{1});
    const QString dictionaryFile =
        writePlist("dictionary.plist", plist::Dictionary{{"Port", "not a number"}});
    struct Case {
        CustomPlistInstrumentController* instrument;
        QString path;
        const char* text;
    };
    const Case cases[] = {
        {custom.get(), arrayFile, "The root element of the selected plist file is not a dictionary."},
        {list.get(), dictionaryFile, "The root element of the selected plist file is not an array."},
        {custom.get(), write("broken.plist", "<plist><dict><key>"),
         "The selected plist file could not be parsed correctly."},
        {custom.get(), folder.filePath("absent.plist"),
         "The selected file could not be loaded because of a system error."},
        {shaped.get(), dictionaryFile, "The loaded plist does not match the specification of this property"},
        {text.get(), dictionaryFile,
         "This preference key does not represent a container property like an array or a dictionary which "
         "can be "
         "loaded from plist."},
    };
    for (const Case& refusal : cases) {
        SCOPED_TRACE(refusal.text);
        const auto alert = refusal.instrument->importFile(refusal.path);
        ASSERT_TRUE(alert);
        EXPECT_EQ(alert->title, importTitle);
        EXPECT_EQ(alert->informativeText, refusal.text);
    }
    EXPECT_TRUE(payload->keyAtPath("Custom")->value().isAbsent());
    // A dictionary that fits the declared subkeys is taken into them.
    EXPECT_FALSE(shaped->importFile(writePlist("fits.plist", plist::Dictionary{{"Port", 8080}})));
    EXPECT_EQ(written("Shaped"), plist::Value(plist::Dictionary{{"Port", 8080}}));
    EXPECT_EQ(payload->keyAtPath("Shaped.Port")->parentKey(), payload->keyAtPath("Shaped"));
}

TEST_F(FileInstrumentsTest, ExportWritesThePlistOrSaysWhyNot) {
    const auto custom = instrument<CustomPlistInstrumentController>("Custom");
    const auto noValue = custom->exportToFile(folder.filePath("none.plist"));
    ASSERT_TRUE(noValue);
    EXPECT_EQ(noValue->title, "Could not save plist file");
    EXPECT_EQ(noValue->informativeText, "The custom dictionary could not be converted to a plist.");
    EXPECT_EQ(instrument<CustomPlistInstrumentController>("List")
                  ->exportToFile(folder.filePath("l.plist"))
                  ->informativeText,
              "The custom array could not be converted to a plist.");

    payload->keyAtPath("Custom")->setValue(plist::Value(plist::Dictionary{{"b", "c"}}));
    const QString path = folder.filePath("out.plist");
    EXPECT_FALSE(custom->exportToFile(path));
    EXPECT_EQ(plist::PlistReader::read(readFile(path))->root, plist::Value(plist::Dictionary{{"b", "c"}}));
    EXPECT_EQ(custom->exportToFile(folder.filePath("no/such/folder/out.plist"))->informativeText,
              "The plist file could not be written in the provided location.");
}

TEST_F(FileInstrumentsTest, AnAppIsChosenOrRemoved) {
    const auto app = instrument<AppSelectorInstrumentController>("App");
    EXPECT_FALSE(app->bundleId());
    app->choose(QString());
    EXPECT_TRUE(payload->keyAtPath("App")->value().isAbsent());
    app->choose("com.example.editor");
    EXPECT_EQ(app->bundleId(), "com.example.editor");
    EXPECT_FALSE(app->isDisabled());
    app->remove();
    EXPECT_FALSE(app->bundleId());
}

} // namespace
} // namespace quorlin
