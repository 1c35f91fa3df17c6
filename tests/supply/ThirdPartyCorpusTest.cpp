#include "StandardizationFixtures.h"

#include "schema/PFMDomain.h"
#include "supply/DomainMerger.h"
#include "supply/GenericSupport.h"
#include "supply/SupportMerger.h"
#include "supply/ThirdPartyManifest.h"

#include <gtest/gtest.h>

using namespace quorlin;

namespace {

const QString subkeysKey = QStringLiteral("pfm_subkeys");

struct CorpusManifest {
    QString path;
    plist::Dictionary manifest;
};

QList<CorpusManifest> corpusManifests() {
    QList<CorpusManifest> manifests;
    const QString folder = test::corpusPath(QStringLiteral("profile-manifests/Manifests"));
    for (const QString& path : test::filesBelow(folder, {QStringLiteral(".plist")})) {
        auto parsed = Utilities::getDictionaryFromPlistBytes(test::readFile(path));
        if (parsed)
            manifests.append({path, *parsed});
    }
    return manifests;
}

qsizetype dictionaryCount(const plist::Array* keys, bool withoutSegments) {
    qsizetype count = 0;
    for (const plist::Value& key : keys ? *keys : plist::Array{})
        if (key.isDictionary() &&
            !(withoutSegments && key.dictionary()->contains(QStringLiteral("pfm_segments"))))
            ++count;
    return count;
}

// Every manifest of the public project is in its dialect; each must convert
// into something the schema reads as a domain, keeping every top-level key
// but the switches of segmented controls.
TEST(ThirdPartyCorpusTest, EveryManifestConvertsIntoADomain) {
    const QList<CorpusManifest> manifests = corpusManifests();
    ASSERT_GE(manifests.size(), 200);
    int withDomain = 0;
    int withGroups = 0;
    for (const CorpusManifest& source : manifests) {
        SCOPED_TRACE(source.path.toStdString());
        ASSERT_TRUE(ThirdPartyManifest::isThirdParty(source.manifest));
        const plist::Dictionary converted = ThirdPartyManifest::convert(source.manifest);
        if (!converted.string(QStringLiteral("pfm_domain")))
            continue;
        ++withDomain;
        withGroups += converted.contains(QStringLiteral("pfm_quorlin_groups"));
        EXPECT_EQ(dictionaryCount(converted.array(subkeysKey), false),
                  dictionaryCount(source.manifest.array(subkeysKey), true));
        EXPECT_TRUE(PFMDomain::make(converted));
    }
    EXPECT_EQ(withDomain, manifests.size());
    EXPECT_GT(withGroups, 0);
}

// The same road the pipeline takes, with each manifest standing in for all
// the originals and the support file of its domain; nothing may crash and
// the outcome must still be a domain.
TEST(ThirdPartyCorpusTest, EveryManifestSurvivesMergingSupportAndFinishing) {
    const GenericSupport finishing(std::nullopt, true, true,
                                   QStringList{"com.apple.mail.managed, ", "com.apple.wifi.managed"});
    for (const CorpusManifest& source : corpusManifests()) {
        SCOPED_TRACE(source.path.toStdString());
        plist::Dictionary manifest = DomainMerger::merge({source.manifest, source.manifest});
        manifest = ThirdPartyManifest::convert(manifest);
        manifest = SupportMerger::mergeSupport(manifest, manifest);
        finishing.apply(manifest);
        EXPECT_TRUE(PFMDomain::make(manifest));
    }
}

} // namespace
