// Saves replace a file whole or not at all, and keep its permissions.

#include "documents/AtomicFileWriter.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin::test {
namespace {

class AtomicFileWriterTest : public ::testing::Test {
protected:
    QString existingFile(const QByteArray& contents, QFileDevice::Permissions permissions) {
        QFile file(folder.filePath(QStringLiteral("profile.mobileconfig")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        file.close();
        EXPECT_TRUE(file.setPermissions(permissions));
        return file.fileName();
    }
    QStringList folderEntries() const {
        return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    QTemporaryDir folder;
    const QFileDevice::Permissions ownerAndGroupRead =
        QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup;
};

TEST_F(AtomicFileWriterTest, ReplacedFileKeepsItsPermissions) {
    const QString file = existingFile("old", ownerAndGroupRead);
    ASSERT_TRUE(AtomicFileWriter().write(file, "new contents"));
    EXPECT_EQ(readFile(file), "new contents");
    EXPECT_EQ(QFile::permissions(file) & ~(QFileDevice::ReadUser | QFileDevice::WriteUser),
              ownerAndGroupRead);
    EXPECT_EQ(folderEntries(), QStringList{QStringLiteral("profile.mobileconfig")});
}

TEST_F(AtomicFileWriterTest, FailureBetweenWriteAndCommitLeavesTheOldFileWhole) {
    const QByteArray old = QByteArray(64 * 1024, 'o');
    const QString file = existingFile(old, ownerAndGroupRead);
    QStringList seenBeforeCommit;
    const AtomicFileWriter interrupted([&](const QString& target) {
        // The new bytes are written by now, but not where the file is.
        EXPECT_EQ(target, file);
        EXPECT_EQ(readFile(file), old);
        seenBeforeCommit = folderEntries();
        return false;
    });
    const auto written = interrupted.write(file, "new");
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().domain, DocumentError::fileErrorDomain);
    EXPECT_EQ(written.error().code, int(QFileDevice::AbortError));
    // Not even a temporary file is left to be mistaken for the profile.
    EXPECT_EQ(seenBeforeCommit, QStringList{QStringLiteral("profile.mobileconfig")});
    EXPECT_EQ(readFile(file), old);
    EXPECT_EQ(folderEntries(), QStringList{QStringLiteral("profile.mobileconfig")});
}

TEST_F(AtomicFileWriterTest, UnwritablePlaceFailsWithTheSystemsReason) {
    const auto written =
        AtomicFileWriter().write(folder.filePath(QStringLiteral("missing/x.mobileconfig")), "x");
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().domain, DocumentError::fileErrorDomain);
    EXPECT_FALSE(written.error().words.isEmpty());
}

} // namespace
} // namespace quorlin::test
