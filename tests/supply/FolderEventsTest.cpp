#include "supply/FolderEvents.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <sys/xattr.h>

using namespace quorlin;

namespace {

// Collects what a watch delivers and waits on the event loop for more.
class EventLog {
public:
    explicit EventLog(const QString& folder) {
        const auto started = FolderEvents::startWatching(
            {folder}, this, [this](const FolderEventsEvent& event) { m_events.append(event); });
        m_started = started.hasValue();
    }
    ~EventLog() { FolderEvents::stopWatching(this); }

    bool started() const { return m_started; }

    // The events that a refresh would act on, after waiting up to a second for one.
    QStringList contentChangesWithin(int milliseconds = 1000) {
        QElapsedTimer timer;
        timer.start();
        while (contentChanges().isEmpty() && timer.elapsed() < milliseconds)
            QTest::qWait(10);
        // Let the rest of a burst arrive.
        QTest::qWait(30);
        return contentChanges();
    }

    QStringList contentChanges() const {
        QStringList paths;
        for (const auto& event : m_events) {
            if (FolderEvents::isContentChange(event))
                paths.append(event.path);
        }
        return paths;
    }

    void clear() { m_events.clear(); }
    qsizetype count() const { return m_events.size(); }

private:
    QList<FolderEventsEvent> m_events;
    bool m_started = false;
};

bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

TEST(FolderEvents, SeeCreationChangeRenameAndRemovalAtAnyDepth) {
    QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath("Manifests/Apple"));
    EventLog log(folder.path());
    ASSERT_TRUE(log.started());

    const QString deep = folder.filePath("Manifests/Apple/com.example.plist");
    ASSERT_TRUE(writeFile(deep, "<plist/>"));
    EXPECT_TRUE(log.contentChangesWithin().contains(deep));

    log.clear();
    ASSERT_TRUE(writeFile(deep, "<plist version=\"1.0\"/>"));
    EXPECT_TRUE(log.contentChangesWithin().contains(deep));

    log.clear();
    const QString renamed = folder.filePath("Manifests/Apple/com.example.renamed.plist");
    ASSERT_TRUE(QFile::rename(deep, renamed));
    const QStringList renames = log.contentChangesWithin();
    EXPECT_TRUE(renames.contains(deep));
    EXPECT_TRUE(renames.contains(renamed));

    log.clear();
    ASSERT_TRUE(QFile::remove(renamed));
    EXPECT_TRUE(log.contentChangesWithin().contains(renamed));
}

TEST(FolderEvents, FollowFoldersMadeAfterTheWatchBegan) {
    QTemporaryDir folder;
    EventLog log(folder.path());
    ASSERT_TRUE(log.started());
    ASSERT_TRUE(QDir(folder.path()).mkpath("New/Inner"));
    log.contentChangesWithin();
    log.clear();

    const QString file = folder.filePath("New/Inner/late.plist");
    ASSERT_TRUE(writeFile(file, "x"));
    EXPECT_TRUE(log.contentChangesWithin().contains(file));
}

TEST(FolderEvents, IgnoreMetadataAloneAndStopWhenAsked) {
    QTemporaryDir folder;
    const QString file = folder.filePath("quiet.plist");
    ASSERT_TRUE(writeFile(file, "x"));
    {
        EventLog log(folder.path());
        ASSERT_TRUE(log.started());
        ASSERT_TRUE(QFile::setPermissions(file, QFile::ReadOwner));
        setxattr(QFile::encodeName(file).constData(), "user.note", "1", 1, 0);
        EXPECT_TRUE(log.contentChangesWithin(300).isEmpty());
        EXPECT_GT(log.count(), 0) << "the metadata change itself is seen";
    }
    // The log has stopped its watch; a later change reaches nobody.
    EventLog after(folder.path());
    FolderEvents::stopWatching(&after);
    ASSERT_TRUE(QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner));
    ASSERT_TRUE(writeFile(file, "y"));
    EXPECT_TRUE(after.contentChangesWithin(300).isEmpty());
}

TEST(FolderEvents, RefuseAFolderThatIsNotThere) {
    int dummy = 0;
    const auto started =
        FolderEvents::startWatching({"/nonexistent/quorlin-folder"}, &dummy, [](const auto&) {});
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().code, FolderEventsError::Code::cannotStartStream);
}

TEST(FolderEvents, TheFilterTakesOnlyContentChanges) {
    const auto event = [](std::optional<FolderEventsEventFlags> flag) {
        return FolderEventsEvent{"p", flag, 1};
    };
    EXPECT_FALSE(FolderEvents::isContentChange(event(std::nullopt)));
    EXPECT_FALSE(FolderEvents::isContentChange(event(itemXattrMod | itemInodeMetaMod | itemIsFile)));
    for (const auto flag : {itemCreated, itemRemoved, itemRenamed, itemModified})
        EXPECT_TRUE(FolderEvents::isContentChange(event(flag | itemIsFile))) << flag;
}
