// The bundled set is read when its manifests are first asked for, not when
// the repository is made: a run with another repository in force never reads it.
#include "SupplyFixtures.h"

#include "schema/SchemaTrees.h"
#include "supply/BundledManifestRepository.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quorlin;

TEST(BundledReadOnFirstUseTest, EachWayInReadsWhatTheFolderHoldsThenAndOnlyOnce) {
    enum class Use { list, lookup, icon, partialReload };
    for (const Use use : {Use::list, Use::lookup, Use::icon, Use::partialReload}) {
        QTemporaryDir folder;
        ASSERT_TRUE(folder.isValid());
        BundledManifestRepository repository(folder.path());
        // Written after the repository was made, so only a deferred read finds them.
        ASSERT_TRUE(test::writeManifest(folder.filePath("a.plist"), test::manifestTree("com.example.a", {})));
        ASSERT_TRUE(test::writeManifest(folder.filePath("b.plist"), test::manifestTree("com.example.b", {})));
        switch (use) {
        case Use::list:
            EXPECT_EQ(repository.standardizedManifests().size(), 2);
            break;
        case Use::lookup:
            EXPECT_TRUE(repository.manifest(QStringLiteral("com.example.b")));
            break;
        case Use::icon:
            EXPECT_FALSE(repository.icon(QStringLiteral("com.example.a")));
            break;
        case Use::partialReload:
            repository.reloadManifests(QStringList{folder.filePath("a.plist")});
            break;
        }
        // Read once: a file added later waits for a reload.
        ASSERT_TRUE(test::writeManifest(folder.filePath("c.plist"), test::manifestTree("com.example.c", {})));
        EXPECT_EQ(repository.standardizedManifests().size(), 2) << int(use);
        EXPECT_FALSE(repository.manifest(QStringLiteral("com.example.c"))) << int(use);
    }
}
