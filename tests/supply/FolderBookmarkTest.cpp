#include "StandardizationFixtures.h"

#include "supply/FolderBookmark.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

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
