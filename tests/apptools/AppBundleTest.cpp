#include "ProgramFiles.h"
#include "SignatureBlobBuilder.h"

#include "../documents/TestPki.h"
#include "apptools/App.h"
#include "apptools/AppBundle.h"
#include "apptools/AppBundleIOSOnMac.h"
#include "apptools/AppInfo.h"
#include "apptools/AppInformationViewModel.h"
#include "plist/BinaryWriter.h"
#include "plist/XmlWriter.h"
#include "support/TestSupport.h"
#include "validation/ByteCountFormatter.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin;
using namespace quorlin::apptools;
using quorlin::test::ProgramFiles;

namespace {

using Architecture = AppBundle::CPUArchitecture;

class AppBundleTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(ProgramFiles::arm64().isEmpty()) << "clang and ld64.lld are needed";
    }

    // A bundle at folder/name with the information list at infoLocation and
    // the executable under executablePrefix, named by the list.
    QString makeBundle(const QString& name, const QString& infoLocation, const QString& executablePrefix,
                       const plist::Dictionary& info, const QByteArray& executable, bool binaryList = false) {
        const QDir bundle(m_folder.filePath(name));
        const auto list = binaryList ? plist::BinaryWriter::write(info) : plist::XmlWriter::write(info);
        EXPECT_TRUE(ProgramFiles::write(bundle.filePath(infoLocation), *list));
        if (const auto executableName = info.string(QStringLiteral("CFBundleExecutable"))) {
            EXPECT_TRUE(ProgramFiles::write(bundle.filePath(executablePrefix + *executableName), executable));
        }
        return bundle.path();
    }

    QString makeMacApp(const QString& name, const plist::Dictionary& info, const QByteArray& executable,
                       bool binaryList = false) {
        return makeBundle(name, QStringLiteral("Contents/Info.plist"), QStringLiteral("Contents/MacOS/"),
                          info, executable, binaryList);
    }

    static QStringList labelled(const QList<AppInformationViewModel::Row>& rows) {
        QStringList lines;
        for (const auto& row : rows)
            lines << row.qualifier + QStringLiteral(": ") + row.information;
        return lines;
    }

    QTemporaryDir m_folder;
};

const plist::Dictionary kSampleInfo{
    {"CFBundleExecutable", "Sample"},
    {"CFBundleName", "Sample"},
    {"CFBundleIdentifier", "com.quorlin.sample"},
    {"CFBundleShortVersionString", "1.2"},
    {"CFBundleVersion", "345"},
    {"NSHumanReadableCopyright", "© 2026 Quorlin"},
    {"LSMinimumSystemVersion", "11.0"},
};

} // namespace

TEST_F(AppBundleTest, InspectsAUniversalMacApplication) {
    // Intel first in the file; the sentence puts Apple silicon first.
    const QByteArray universal = ProgramFiles::universal(
        {{ProgramFiles::cpuX86_64, ProgramFiles::x86_64()}, {ProgramFiles::cpuArm64, ProgramFiles::arm64()}});
    const auto bundle = AppBundle::create(makeMacApp(QStringLiteral("Sample.app"), kSampleInfo, universal));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->os(), AppBundle::OS::macOS);
    EXPECT_EQ(bundle->architectures(), (QList<Architecture>{Architecture::x86_64, Architecture::arm64}));

    const AppInformationViewModel model(*bundle);
    EXPECT_EQ(model.name, QStringLiteral("Sample"));
    EXPECT_EQ(model.versionAndBuildNumber(), QStringLiteral("1.2 (345)"));
    const qint64 size = universal.size() + plist::XmlWriter::write(kSampleInfo)->size();
    EXPECT_EQ(labelled(model.identityRows()),
              (QStringList{"Bundle ID: com.quorlin.sample", "Copyright: © 2026 Quorlin"}))
        << "no team for an ad hoc signature";
    const QStringList characteristics = labelled(model.characteristicsRows());
    ASSERT_EQ(characteristics.size(), 5);
    EXPECT_EQ(characteristics.mid(0, 4),
              (QStringList{"Architectures: Apple Silicon 64-bit and Intel 64-bit", "Platform: macOS",
                           "Minimum OS Verion: 11.0", "Size: " + ByteCountFormatter::fileStyle(size)}));
    EXPECT_TRUE(characteristics[4].startsWith(QLatin1String("Code Requirement: cdhash H\"")));
}

TEST_F(AppBundleTest, ReadsASignedApplicationWithABinaryListAndNoName) {
    const test::TestCertificate root =
        test::TestPki::issue(QStringLiteral("Quorlin Test Root"), nullptr, true);
    const test::TestCertificate leaf = test::TestPki::issue(
        QStringLiteral("Developer ID Application: Quorlin Tests (QRLN123456)"), &root, false);
    test::SignatureParts parts;
    parts.identifier = QStringLiteral("com.quorlin.sample");
    parts.teamIdentifier = QStringLiteral("QRLN123456");
    parts.designatedRequirement = test::requirement::both(test::requirement::identifier("com.quorlin.sample"),
                                                          test::requirement::appleGenericAnchor());
    parts.entitlementsXml =
        plist::XmlWriter::write(plist::Dictionary{{"com.apple.security.app-sandbox", true}}).value();
    parts.signer = leaf.certificate.get();
    parts.signerKey = leaf.key.get();
    parts.storedCertificates = {leaf.certificate.get(), root.certificate.get()};
    plist::Dictionary info = kSampleInfo;
    info.remove(QStringLiteral("CFBundleName"));
    info.remove(QStringLiteral("CFBundleVersion"));
    const QByteArray signedProgram =
        ProgramFiles::withSignature(ProgramFiles::arm64(), test::embeddedSignature(parts));

    const auto bundle =
        AppBundle::create(makeMacApp(QStringLiteral("Folder Name.app"), info, signedProgram, true));
    ASSERT_TRUE(bundle);
    const AppInformationViewModel model(*bundle);
    EXPECT_EQ(model.name, QStringLiteral("Folder Name"));
    EXPECT_EQ(model.versionAndBuildNumber(), QStringLiteral("1.2")) << "a version with no build";
    EXPECT_EQ(model.teamID, QStringLiteral("QRLN123456"));
    EXPECT_EQ(model.developerName, QStringLiteral("Developer ID Application: Quorlin Tests (QRLN123456)"));
    EXPECT_EQ(model.codeRequirement,
              QStringLiteral(R"(identifier "com.quorlin.sample" and anchor apple generic)"));
    EXPECT_EQ(model.entitlements, QStringList{"com.apple.security.app-sandbox"});
    EXPECT_EQ(model.architectures, QStringLiteral("Apple Silicon 64-bit"));
    EXPECT_EQ(model.architecturesQualifer, QStringLiteral("Architecture"));
    EXPECT_EQ(labelled(model.identityRows()).at(1), QStringLiteral("Team ID: QRLN123456"));
}

TEST_F(AppBundleTest, UnsignedApplicationHasNoSigningRows) {
    const auto bundle =
        AppBundle::create(makeMacApp(QStringLiteral("Intel.app"), kSampleInfo, ProgramFiles::x86_64()));
    ASSERT_TRUE(bundle);
    const AppInformationViewModel model(*bundle);
    EXPECT_EQ(model.teamID, std::nullopt);
    EXPECT_EQ(model.developerName, std::nullopt);
    EXPECT_EQ(model.codeRequirement, std::nullopt);
    EXPECT_EQ(model.entitlements, std::nullopt);
    EXPECT_EQ(model.isSigned, std::nullopt);
    for (const auto& row : model.characteristicsRows())
        EXPECT_NE(row.field, QStringLiteral("codeRequirement"));
}

TEST_F(AppBundleTest, WrappedIOSApplicationMapsItsMinimumVersionToMacOS) {
    plist::Dictionary info = kSampleInfo;
    info.insert(QStringLiteral("CFBundleExecutable"), QStringLiteral("Phone"));
    const struct {
        const char* iOS;
        std::optional<QString> macOS;
    } cases[] = {{"14.2", QStringLiteral("11.0")},
                 {"13.0", QStringLiteral("10.15")},
                 {"15.1", QStringLiteral("13.0")},
                 {"17.5", QStringLiteral("13.0")},
                 {"12.0", std::nullopt}};
    int index = 0;
    for (const auto& c : cases) {
        info.insert(QStringLiteral("MinimumOSVersion"), QString::fromLatin1(c.iOS));
        const QString name = QStringLiteral("Phone%1.app").arg(index++);
        const auto bundle =
            AppBundle::create(makeBundle(name, QStringLiteral("WrappedBundle/Info.plist"),
                                         QStringLiteral("WrappedBundle/"), info, ProgramFiles::arm64()));
        ASSERT_TRUE(bundle) << c.iOS;
        EXPECT_EQ(bundle->minimumOSVersion(), c.macOS) << c.iOS;
        const AppInformationViewModel model(*bundle);
        EXPECT_EQ(model.platform, QStringLiteral("macOS (Designed for iOS)"));
    }
}

TEST_F(AppBundleTest, RefusesWhatIsNotAnApplication) {
    plist::Dictionary noExecutable = kSampleInfo;
    noExecutable.remove(QStringLiteral("CFBundleExecutable"));
    const QString missingExecutable =
        makeBundle(QStringLiteral("Missing.app"), QStringLiteral("Contents/Info.plist"),
                   QStringLiteral("Contents/MacOS/"), kSampleInfo, {});
    QFile::remove(missingExecutable + QStringLiteral("/Contents/MacOS/Sample"));
    const QString textFile = m_folder.filePath(QStringLiteral("notes.txt"));
    ProgramFiles::write(textFile, "not a program");
    const QString arrayList = m_folder.filePath(QStringLiteral("Array.app"));
    ProgramFiles::write(arrayList + QStringLiteral("/Contents/Info.plist"),
                        *plist::XmlWriter::write(plist::Array{1}));

    const QStringList paths{
        makeMacApp(QStringLiteral("Plugin.bundle"), kSampleInfo, ProgramFiles::arm64()),
        makeMacApp(QStringLiteral("NoExecutable.app"), noExecutable, ProgramFiles::arm64()),
        missingExecutable,
        arrayList,
        textFile,
        m_folder.filePath(QStringLiteral("Nowhere.app")),
    };
    for (const QString& path : paths)
        EXPECT_FALSE(AppBundle::create(path)) << path.toStdString();
}

TEST_F(AppBundleTest, BareProgramFileIsKnownByItsSigningIdentifier) {
    const QString path = m_folder.filePath(QStringLiteral("sample-arm64"));
    ASSERT_TRUE(ProgramFiles::write(path, ProgramFiles::arm64()));
    const auto bundle = AppBundle::create(path);
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->name(), QStringLiteral("sample-arm64"));
    EXPECT_EQ(bundle->bundleIdentifier(), QStringLiteral("sample-arm64"));
    EXPECT_EQ(bundle->size(), ProgramFiles::arm64().size());
    EXPECT_EQ(bundle->os(), std::nullopt);
}

TEST(AppInformationViewModelTest, ArchitectureSentenceHasAFixedOrder) {
    const struct {
        QList<Architecture> architectures;
        std::optional<QString> sentence;
    } cases[] = {
        {{}, std::nullopt},
        {{Architecture::arm64}, QStringLiteral("Apple Silicon 64-bit")},
        {{Architecture::x86_64, Architecture::arm64},
         QStringLiteral("Apple Silicon 64-bit and Intel 64-bit")},
        {{Architecture::ppc, Architecture::x86_64, Architecture::i386},
         QStringLiteral("Intel 32-bit, Intel 64-bit and PowerPC 32-bit")},
        {{Architecture::ppc, Architecture::i386, Architecture::x86_64, Architecture::arm,
          Architecture::arm64},
         QStringLiteral(
             "Apple Silicon 32-bit, Apple Silicon 64-bit, Intel 32-bit, Intel 64-bit and PowerPC 32-bit")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(AppInformationViewModel::architectureSentence(c.architectures), c.sentence);
}

TEST(AppTest, ArchitectureLabelFollowsTheTables) {
    using Label = App::ArchitectureLabel;
    const struct {
        QStringList architectures;
        bool isIOS;
        Label label;
    } cases[] = {
        {{"arm64"}, false, {"Apple", true}},
        {{"arm64"}, true, {"Apple (iOS)", true}},
        {{"x86_64"}, false, {"Intel 64", false}},
        {{"i386"}, false, {"Intel 32", false}},
        {{"ppc"}, false, {"PowerPC", false}},
        {{"<unknown>"}, false, {"Unknown", false}},
        {{"x86_64", "arm64"}, false, {"Universal", true}},
        {{"x86_64", "arm64"}, true, {"Universal (iOS)", true}},
        {{"ppc", "i386", "x86_64"}, false, {"PowerPC/Intel 32/64", false}},
        {{"x86_64", "ppc"}, false, {"PowerPC/Intel 64", false}},
        {{"i386", "ppc"}, false, {"PowerPC/Intel 32", false}},
        {{"i386", "x86_64"}, false, {"Intel 32/64", false}},
        {{}, false, {"Unknown", false}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(App::labelFor(c.architectures, c.isIOS), c.label)
            << c.architectures.join(',').toStdString();
}

TEST_F(AppBundleTest, LightReadNamesTheWrappedExecutableByTheFolderWhenThePlaceholderStands) {
    plist::Dictionary info = kSampleInfo;
    info.insert(QStringLiteral("CFBundleExecutable"), QStringLiteral("WRAPPEDPRODUCTNAME"));
    const QString path = makeBundle(QStringLiteral("Game.app"), QStringLiteral("WrappedBundle/Info.plist"),
                                    QStringLiteral("WrappedBundle/"), plist::Dictionary{}, {});
    ProgramFiles::write(path + QStringLiteral("/WrappedBundle/Info.plist"), *plist::XmlWriter::write(info));
    ProgramFiles::write(path + QStringLiteral("/WrappedBundle/Game"), ProgramFiles::arm64());
    const auto app = App::read(path);
    ASSERT_TRUE(app);
    EXPECT_EQ(AppInfo::read(path)->kind, AppInfo::Kind::iOS);
    EXPECT_EQ(app->architectures, QStringList{"arm64"});
    EXPECT_EQ(app->architecture, QStringLiteral("Apple (iOS)"));
    EXPECT_EQ(app->bundleID, QStringLiteral("com.quorlin.sample"));
    EXPECT_FALSE(App::read(m_folder.filePath(QStringLiteral("Missing.app"))));
}
