#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "plist/XmlWriter.h"
#include "schema/SchemaTrees.h"
#include "shell/FactoryDefaults.h"
#include "shell/FactoryReset.h"
#include "shell/ManifestRepositorySettings.h"
#include "shell/ProcessRestarter.h"
#include "shell/RepositoryFolderCheck.h"
#include "supply/FolderBookmark.h"
#include "supply/RepositoryStorePaths.h"

#include "ShellFixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin;
using Result = RepositoryFolderCheck::Result;

namespace {

void writeManifest(const QString& path, const plist::Dictionary& manifest) {
    test::createFile(path, *plist::XmlWriter::write(manifest));
}

// `count` small plist files that are no general manifest, spread over subfolders.
void writeOtherPlists(const QString& folder, int count) {
    const QByteArray bytes = *plist::XmlWriter::write(test::manifestTree("com.example.other", {}));
    for (int index = 0; index < count; ++index)
        test::createFile(QStringLiteral("%1/sub%2/other%3.plist").arg(folder).arg(index % 7).arg(index),
                         bytes);
}

} // namespace

TEST(RepositoryFolderCheckTest, AFolderMustHoldTheGeneralManifestWithinTheLimit) {
    QTemporaryDir root;
    const QString general = root.filePath("general");
    writeManifest(general + "/nested/General.plist", test::manifestTree("", {}));
    writeOtherPlists(general, RepositoryFolderCheck::plistFileLimit - 1);
    EXPECT_EQ(RepositoryFolderCheck::isManifestRepositoryFolder(general), Result::valid)
        << "exactly the limit is not over it";
    writeOtherPlists(general + "/more", 1);
    EXPECT_EQ(RepositoryFolderCheck::isManifestRepositoryFolder(general), Result::tooManyPlistFiles);

    const QString withoutGeneral = root.filePath("without");
    writeOtherPlists(withoutGeneral, 3);
    writeManifest(withoutGeneral + "/Configuration.plist", test::manifestTree("Configuration", {}));
    test::createFile(withoutGeneral + "/garbage.plist", "<plist><dict><key>pfm_domain</key>");
    EXPECT_EQ(RepositoryFolderCheck::isManifestRepositoryFolder(withoutGeneral), Result::invalid)
        << "\"Configuration\" names the general payload only in the public dialect";

    const QString thirdParty = root.filePath("third-party");
    writeManifest(thirdParty + "/Configuration.plist",
                  test::manifestTree("Configuration", {}, {{"pfm_platforms", plist::Array{"macOS"}}}));
    EXPECT_EQ(RepositoryFolderCheck::isManifestRepositoryFolder(thirdParty), Result::valid);

    EXPECT_EQ(RepositoryFolderCheck::isManifestRepositoryFolder(root.filePath("absent")), Result::invalid);
    QDir().mkpath(root.filePath("empty"));
    EXPECT_EQ(RepositoryFolderCheck::isManifestRepositoryFolder(root.filePath("empty")), Result::invalid);
}

TEST(ManifestRepositorySettingsTest, StoredSettingsReadBackAndOnlyTheDefaultsAreStandard) {
    QTemporaryDir folder;
    UserDefaults defaults(folder.filePath("defaults.plist"));
    defaults.registerDefaults(FactoryDefaults::registeredDefaults());
    ManifestRepositorySettings settings = ManifestRepositorySettings::read(defaults);
    EXPECT_FALSE(settings.selectedRepositoryIsNonStandard()) << "the factory settings";

    settings.type = "local";
    settings.maximizeNonStandardManifestCompatibility = false;
    settings.localRepositoryPath = folder.path();
    settings.userManifestFolder = folder.path();
    settings.store(defaults);
    UserDefaults reread(folder.filePath("defaults.plist"));
    EXPECT_EQ(ManifestRepositorySettings::read(reread), settings);
    settings.localRepositoryPath.clear();
    settings.store(defaults);
    EXPECT_FALSE(defaults.hasPersistentValue(DefaultsKey::localRepositoryPathBookmark));

    struct Case {
        QString type, address, branch;
        bool nonStandard;
    };
    const QString address = FactoryDefaults::defaultOnlineRepositoryAddress();
    const QString branch = FactoryDefaults::defaultOnlineRepositoryBranch();
    for (const Case& c :
         {Case{"quorlin_standard", "", "", false}, Case{"online", address + "/", branch, false},
          Case{"online", address, "other", true}, Case{"online", address, "", true},
          Case{"online", "https://github.com/someone/else", branch, true},
          Case{"local", address, branch, true}}) {
        const ManifestRepositorySettings entered{c.type, c.address, c.branch, true, {}, {}};
        EXPECT_EQ(entered.selectedRepositoryIsNonStandard(), c.nonStandard)
            << c.type.toStdString() << " " << c.address.toStdString();
    }
}

namespace {

class RecordingRestarter : public ProcessRestarter {
public:
    void restart() override { ++restarts; }
    int restarts = 0;
};

} // namespace

TEST(FactoryResetRunTest, RestartsOnlyOnceEveryDocumentClosedAndTheDataIsGone) {
    test::IsolatedHome home;
    UserDefaults defaults(UserDefaults::standardFilePath());
    defaults.set(DefaultsKey::identifierPrefix, "com.example");
    defaults.set(DefaultsKey::lastLaunchedBundleShortVersionString, "2.0.0");
    const QString store = RepositoryStorePaths::storeRoot() + "/github/owner/repo/master";
    ASSERT_TRUE(QDir().mkpath(store));
    RecordingRestarter restarter;
    FactoryReset reset(defaults, restarter);
    EXPECT_TRUE(FactoryReset::confirmation().informativeText.endsWith(
        "reset Quorlin Profile Editor to its factory state now?"));

    // A document the user keeps open stops it all.
    reset.run([](const std::function<void(bool)>& done) { done(false); });
    EXPECT_EQ(restarter.restarts, 0);
    EXPECT_TRUE(QFileInfo::exists(UserDefaults::standardFilePath()));
    EXPECT_TRUE(QFileInfo::exists(store));

    // Documents may close later; the reset follows then.
    std::function<void(bool)> pending;
    reset.run([&](std::function<void(bool)> done) { pending = std::move(done); });
    EXPECT_EQ(restarter.restarts, 0);
    pending(true);
    EXPECT_EQ(restarter.restarts, 1);
    EXPECT_FALSE(QFileInfo::exists(UserDefaults::standardFilePath()));
    EXPECT_FALSE(QFileInfo::exists(RepositoryStorePaths::storeRoot()));
    EXPECT_FALSE(UserDefaults(UserDefaults::standardFilePath())
                     .string(DefaultsKey::lastLaunchedBundleShortVersionString))
        << "the next start is a first start";
}
