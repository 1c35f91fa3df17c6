#include "SupplyFixtures.h"

#include "supply/FolderBookmark.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace quorlin;
using State = FolderBookmark::State;

TEST(FolderBookmark, HoldsTheCleanedAbsolutePathOfTheFolder) {
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QString path = folder.filePath("Manifests");
    QDir().mkpath(path);

    const QByteArray data = FolderBookmark::data(path + QStringLiteral("//./"));
    EXPECT_EQ(data, path.toUtf8());
    const auto opened = FolderBookmark::open(data);
    EXPECT_EQ(opened.state, State::available);
    EXPECT_EQ(opened.folder, path);

    // A relative folder is taken from the working folder, as the user chose it there.
    EXPECT_EQ(FolderBookmark::data(QStringLiteral("some/where")),
              QDir::cleanPath(QDir::currentPath() + QStringLiteral("/some/where")).toUtf8());
}

TEST(FolderBookmark, DataThatNamesNoFolderIsUnresolvable) {
    for (const QByteArray& data : {QByteArray(), QByteArray("relative/path"), QByteArray("/bad\xff\xfeutf8"),
                                   QByteArray("/tmp\0/elsewhere", 15)}) {
        const auto opened = FolderBookmark::open(data);
        EXPECT_EQ(opened.state, State::unresolvable) << data.toStdString();
        EXPECT_TRUE(opened.folder.isEmpty());
    }
}

TEST(FolderBookmark, AFolderThatIsGoneIsMissingNotAnError) {
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const auto gone = FolderBookmark::open(folder.filePath("gone").toUtf8());
    EXPECT_EQ(gone.state, State::missing);
    EXPECT_EQ(gone.folder, folder.filePath("gone"));

    // A file where the folder was is no folder either.
    ASSERT_TRUE(test::writeBytes(folder.filePath("file"), "x"));
    EXPECT_EQ(FolderBookmark::open(folder.filePath("file").toUtf8()).state, State::missing);
}

TEST(FolderBookmark, AFolderThatCannotBeReadIsInaccessible) {
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QString locked = folder.filePath("locked");
    QDir().mkpath(locked);
    ASSERT_TRUE(QFile::setPermissions(locked, QFileDevice::WriteOwner));
    const auto opened = FolderBookmark::open(locked.toUtf8());
    QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    if (geteuid() == 0)
        GTEST_SKIP() << "permissions don't bind the superuser";
    EXPECT_EQ(opened.state, State::inaccessible);
    EXPECT_EQ(opened.folder, locked);
}
