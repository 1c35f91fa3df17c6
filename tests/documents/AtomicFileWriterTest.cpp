// Saves replace a file whole or not at all, and keep its permissions.

#include "documents/AtomicFileWriter.h"

#include "plist/XmlWriter.h"
#include "support/ScratchMount.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

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

TEST_F(AtomicFileWriterTest, ReplacedFileKeepsItsPermissionsOwnerAndGroup) {
    const QString file = existingFile("old", ownerAndGroupRead);
    // Only root can give a file away; others keep their own.
    const bool givesAway = ::geteuid() == 0;
    if (givesAway) {
        ASSERT_EQ(::chown(QFile::encodeName(file).constData(), 4321, 8765), 0);
    }
    ASSERT_TRUE(AtomicFileWriter().write(file, "new contents"));
    struct stat status {};
    ASSERT_EQ(::stat(QFile::encodeName(file).constData(), &status), 0);
    EXPECT_EQ(status.st_uid, givesAway ? 4321u : ::geteuid());
    EXPECT_EQ(status.st_gid, givesAway ? 8765u : ::getegid());
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

// A full disk and a read-only file system, met for real: the old file stays
// byte for byte, no temporary file is left, and the reason is the system's.
TEST_F(AtomicFileWriterTest, RefusedWritesLeaveTheOldFileAndSayWhy) {
    const ScratchMount full;
    const ScratchMount readOnly;
    if (!full.isMounted())
        GTEST_SKIP() << ScratchMount::kSkipReason;
    const QByteArray old(5000, 'o');
    full.fillAfter(QStringLiteral("p.mobileconfig"), old);
    ASSERT_TRUE(readOnly.readOnlyAfter(QStringLiteral("p.mobileconfig"), old));
    const struct {
        QString path;
        const char* reason;
    } cases[] = {
        {full.path(QStringLiteral("p.mobileconfig")), "no space left on the device"},
        {readOnly.path(QStringLiteral("p.mobileconfig")), "the file system is read-only"},
        {QStringLiteral("/dev/full"), "no space left on the device"},
    };
    for (const auto& each : cases) {
        const QStringList before =
            QDir(QFileInfo(each.path).path()).entryList(QDir::AllEntries | QDir::Hidden);
        const auto written = AtomicFileWriter().write(each.path, QByteArray(100000, 'n'));
        ASSERT_FALSE(written) << each.path.toStdString();
        EXPECT_EQ(written.error().words, QString::fromUtf8(each.reason));
        EXPECT_EQ(QDir(QFileInfo(each.path).path()).entryList(QDir::AllEntries | QDir::Hidden), before);
        if (!each.path.startsWith(QStringLiteral("/dev/"))) {
            EXPECT_EQ(readFile(each.path), old);
        }
    }
}

// A profile of some 10 MB, so that a save takes long enough to be cut.
QByteArray largeProfile(char fill) {
    plist::Array payloads;
    for (int i = 0; i < 2500; ++i)
        payloads.append(plist::Dictionary{{QStringLiteral("PayloadIdentifier"), QString::number(i)},
                                          {QStringLiteral("Data"), QByteArray(3000, fill)}});
    return plist::XmlWriter::write(plist::Dictionary{{QStringLiteral("PayloadContent"), payloads}}).value();
}

// Forks a child that saves `bytes` to `file`; kills it after `delay` unless
// it is negative. The time from fork to the child's end.
qint64 saveInChild(const QString& file, const QByteArray& bytes, qint64 delayMicroseconds) {
    QElapsedTimer timer;
    timer.start();
    const pid_t child = fork();
    if (child == 0)
        _exit(AtomicFileWriter().write(file, bytes) ? 0 : 1);
    if (delayMicroseconds >= 0) {
        usleep(useconds_t(delayMicroseconds));
        kill(child, SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return timer.nsecsElapsed() / 1000;
}

TEST_F(AtomicFileWriterTest, ASaveKilledAtAnyMomentLeavesTheOldOrTheNewFile) {
    const QByteArray versions[] = {largeProfile('a'), largeProfile('b')};
    const QString file = existingFile(versions[0], ownerAndGroupRead);
    const qint64 wholeSave = saveInChild(file, versions[1], -1);
    ASSERT_EQ(readFile(file), versions[1]);

    std::mt19937 random(25);
    std::uniform_int_distribution<qint64> moment(0, wholeSave * 5 / 4);
    int current = 1;
    for (int trial = 0; trial < 40; ++trial) {
        saveInChild(file, versions[1 - current], moment(random));
        const QByteArray found = readFile(file);
        ASSERT_TRUE(found == versions[0] || found == versions[1])
            << "trial " << trial << ": " << found.size() << " bytes";
        current = found == versions[0] ? 0 : 1;
    }
}

} // namespace
} // namespace quorlin::test
