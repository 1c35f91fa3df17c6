// Finding the sibling product's profile library from its preference file,
// and following the file when the product changes it.

#include "shell/QuorlinPreferencesHelper.h"
#include "plist/XmlWriter.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>

#include <functional>

#include <gtest/gtest.h>

using namespace quorlin;

namespace {

bool writePreferences(const QString& path, const plist::Dictionary& preferences) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    // Replaced as a whole, as the product writes it.
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) &&
           file.write(*plist::XmlWriter::write(plist::Value(preferences))) > 0 && file.commit();
}

// The watch reports through the event loop.
bool waitFor(const std::function<bool()>& condition) {
    const QDeadlineTimer deadline(5000);
    while (!condition() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return condition();
}

} // namespace

TEST(QuorlinPreferencesHelper, TheLibraryIsTheProfilesFolderOfTheLibraryPathAndFollowsTheFile) {
    QTemporaryDir folder;
    const QString preferences = folder.filePath("config/quorlin/Prefs/Prefs.plist");
    const QString first = folder.filePath("first");
    const QString second = folder.filePath("second");
    EXPECT_FALSE(QuorlinPreferencesHelper::libraryURL(preferences)) << "no sibling product";

    ASSERT_TRUE(writePreferences(preferences, {{"LibraryPath", first}}));
    EXPECT_FALSE(QuorlinPreferencesHelper::libraryURL(preferences)) << "no Profiles folder yet";
    ASSERT_TRUE(QDir().mkpath(first + "/Profiles") && QDir().mkpath(second + "/Profiles"));
    ASSERT_TRUE(writePreferences(preferences, {{"LibraryPath", 7}}));
    EXPECT_FALSE(QuorlinPreferencesHelper::libraryURL(preferences));

    ASSERT_TRUE(writePreferences(preferences, {{"LibraryPath", first}}));
    QuorlinPreferencesHelper helper(preferences);
    EXPECT_EQ(helper.quorlinLibraryURL(), first + "/Profiles");

    int changes = 0;
    QObject::connect(&helper, &QuorlinPreferencesHelper::quorlinLibraryURLChanged, [&] { ++changes; });
    ASSERT_TRUE(writePreferences(preferences, {{"LibraryPath", second}}));
    ASSERT_TRUE(waitFor([&] { return changes == 1; }));
    EXPECT_EQ(helper.quorlinLibraryURL(), second + "/Profiles");
    ASSERT_TRUE(QFile::remove(preferences));
    ASSERT_TRUE(waitFor([&] { return !helper.quorlinLibraryURL(); }));
    EXPECT_EQ(changes, 2);
}
