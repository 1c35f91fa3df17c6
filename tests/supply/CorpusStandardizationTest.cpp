#include "StandardizationFixtures.h"

#include "schema/PFMDomain.h"
#include "supply/OriginalsFolderRepository.h"
#include "supply/PFMDomainManager.h"
#include "supply/StandardizationPipeline.h"
#include "supply/ThirdPartyManifest.h"

#include <QFileInfo>
#include <QMap>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <iostream>

using namespace quorlin;

namespace {

const QString kDomainKey = QStringLiteral("pfm_domain");

// Keys of the public project's dialect that conversion stores under a key
// of our own vocabulary.
const QMap<QString, QString> kRenamedKeys{
    {"pfm_unique", "pfm_quorlin_single_payload"},
    {"pfm_icon", "pfm_quorlin_icon"},
    {"pfm_platforms", "pfm_quorlin_platforms"},
    {"pfm_macos_min", "pfm_quorlin_macos_introduction"},
    {"pfm_macos_deprecated", "pfm_quorlin_macos_deprecation"},
    {"pfm_ios_min", "pfm_quorlin_ios_introduction"},
    {"pfm_ios_deprecated", "pfm_quorlin_ios_deprecation"},
    {"pfm_tvos_min", "pfm_quorlin_tvos_introduction"},
    {"pfm_tvos_deprecated", "pfm_quorlin_tvos_deprecation"},
    {"pfm_supervised", "pfm_quorlin_supervision_required"},
    {"pfm_last_modified", "pfm_quorlin_last_modification"},
    {"pfm_documentation_url", "pfm_quorlin_documentation_url"},
    {"pfm_note", "pfm_quorlin_note"},
};

// Manifest-level keys that the standard form reads under their own names.
bool isStandardManifestKey(const QString& key) {
    static const QSet<QString> plainKeys{"pfm_description", "pfm_title",          "pfm_format_version",
                                         "pfm_version",     "pfm_domain",         "pfm_subkeys",
                                         "pfm_targets",     "pfmx_supported_oses"};
    return plainKeys.contains(key) || key.startsWith(QStringLiteral("pfm_quorlin_"));
}

// Why a top-level key of a source manifest is not in its domain's
// standardized manifest under its own name; "lost" when no reason holds.
QString reasonForMissing(const QString& key, const plist::Dictionary& source,
                         const plist::Dictionary& result) {
    if (!ThirdPartyManifest::isThirdParty(source))
        return QStringLiteral("lost");
    if (kRenamedKeys.contains(key))
        return result.contains(kRenamedKeys[key])
                   ? QStringLiteral("converted to a pfm_quorlin_* key")
                   : QStringLiteral("dropped by conversion: value of the wrong class");
    if (!isStandardManifestKey(key))
        return QStringLiteral("dropped by conversion: not part of the standard form");
    if (key == QStringLiteral("pfm_subkeys") && !source.array(key))
        return QStringLiteral("dropped by conversion: not an array");
    return QStringLiteral("lost");
}

StandardizationSettings defaultSettings() {
    StandardizationSettings settings;
    settings.hidePayloadTopLevelKeys = true;
    settings.sortOrder = PFMDomainManager::defaultSortOrder();
    settings.scrubThirdPartyPlaceholders = true;
    settings.supportVersion = QStringLiteral("test");
    return settings;
}

class CorpusStandardizationTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        s_store = new QTemporaryDir;
        s_repository = OriginalsFolderRepository::make(s_store->path(), test::corpusPath("profile-manifests"),
                                                       defaultSettings())
                           .release();
        for (auto& [path, manifest] : ManifestRepository::readManifests(s_repository->manifestFiles()))
            s_sources.append({path, manifest});
    }
    static void TearDownTestSuite() {
        delete s_repository;
        delete s_store;
    }

    static std::optional<plist::Dictionary> standardizedFor(const QString& domain) {
        const auto read = ManifestRepository::readManifests(
            {QDir(s_repository->standardizedManifestsDirectory())
                 .filePath(StandardizationPipeline::standardizedFileName(domain))});
        return read.isEmpty() ? std::nullopt : std::optional(read.first().second);
    }

    static inline QTemporaryDir* s_store = nullptr;
    static inline OriginalsFolderRepository* s_repository = nullptr;
    static inline QList<std::pair<QString, plist::Dictionary>> s_sources;
};

} // namespace

TEST_F(CorpusStandardizationTest, EveryDomainGetsExactlyOneFileAndEveryFileGivesADomain) {
    ASSERT_TRUE(s_repository);
    ASSERT_TRUE(s_repository->isProfileManifestsRepository());
    QSet<QString> expectedNames;
    qsizetype withDomain = 0;
    for (const auto& [path, manifest] : s_sources) {
        if (const auto domain = manifest.string(kDomainKey)) {
            ++withDomain;
            expectedNames.insert(StandardizationPipeline::standardizedFileName(*domain));
        }
    }
    const QStringList files = ManifestRepository::plistFiles(s_repository->standardizedManifestsDirectory());
    QSet<QString> names;
    for (const QString& file : files)
        names.insert(QFileInfo(file).fileName());

    std::cout << s_repository->manifestFiles().size() << " manifest files, " << s_sources.size()
              << " readable, " << withDomain << " with a string domain, " << expectedNames.size()
              << " domains, " << files.size() << " standardized files\n";
    EXPECT_GT(expectedNames.size(), 100) << "the corpus was found";
    EXPECT_EQ(names, expectedNames);
    EXPECT_EQ(files.size(), expectedNames.size());

    qsizetype domains = 0;
    for (const auto& [path, manifest] : ManifestRepository::readManifests(files)) {
        EXPECT_TRUE(PFMDomain::make(manifest)) << path.toStdString();
        ++domains;
    }
    EXPECT_EQ(domains, files.size());
    EXPECT_EQ(s_repository->standardizedManifests().size(), files.size());
}

TEST_F(CorpusStandardizationTest, NoTopLevelKeyOfASourceIsLostUnlessDroppedOnPurpose) {
    ASSERT_TRUE(s_repository);
    QMap<QString, int> reasons;
    for (const auto& [path, source] : s_sources) {
        const auto domain = source.string(kDomainKey);
        if (!domain)
            continue;
        const auto result = standardizedFor(*domain);
        ASSERT_TRUE(result) << path.toStdString();
        for (const QString& key : source.keys()) {
            if (result->contains(key)) {
                ++reasons[QStringLiteral("kept")];
                continue;
            }
            const QString reason = reasonForMissing(key, source, *result);
            EXPECT_NE(reason, QStringLiteral("lost")) << key.toStdString() << " of " << path.toStdString();
            ++reasons[reason];
        }
    }
    for (auto it = reasons.cbegin(); it != reasons.cend(); ++it)
        std::cout << it.value() << " top-level keys " << it.key().toStdString() << "\n";
    EXPECT_GT(reasons.value(QStringLiteral("converted to a pfm_quorlin_* key")), 0);
}

TEST_F(CorpusStandardizationTest, CategoriesFollowTheFoldersOfTheProject) {
    ASSERT_TRUE(s_repository);
    const auto folderOf = [](const QString& path) { return QFileInfo(QFileInfo(path).path()).fileName(); };
    // A domain with originals in two folders takes the category of whichever changed first.
    QMap<QString, QSet<QString>> foldersOfDomain;
    for (const auto& [path, source] : s_sources)
        foldersOfDomain[source.string(kDomainKey).value_or(QString())].insert(folderOf(path));

    QMap<QString, QSet<QString>> categoriesByFolder;
    for (const auto& [path, source] : s_sources) {
        const auto domain = source.string(kDomainKey);
        const auto result = domain ? standardizedFor(*domain) : std::nullopt;
        if (!result || source.contains(QStringLiteral("pfm_quorlin_category")) ||
            foldersOfDomain[*domain].size() > 1)
            continue;
        const QString folder = folderOf(path);
        categoriesByFolder[folder].insert(result->string("pfm_quorlin_category").value_or("none"));
    }
    EXPECT_EQ(categoriesByFolder["ManifestsApple"], QSet<QString>{"system"});
    EXPECT_EQ(categoriesByFolder["ManagedPreferencesApple"], QSet<QString>{"application"});
    EXPECT_EQ(categoriesByFolder["ManagedPreferencesApplications"], QSet<QString>{"application"});
    EXPECT_EQ(categoriesByFolder["ManagedPreferencesDeveloper"], QSet<QString>{"none"});
}
