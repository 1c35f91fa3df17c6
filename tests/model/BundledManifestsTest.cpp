#include "ModelTestSupport.h"

#include "model/Profile.h"
#include "schema/PFMDomain.h"

#include <QDir>
#include <QDirIterator>
#include <QSet>

#include <gtest/gtest.h>

#include <iostream>

namespace quorlin {
namespace {

using test::makeTestEnvironment;
using test::readDictionary;

// The standard-form manifests that the build made from the bundled raw ones.
const QString bundledFolder = QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor/Manifests");
const QString rawFolder = QStringLiteral(QUORLIN_TEST_DATA_DIR "/../../resources/ManifestSources/Manifests");

QStringList bundledFiles() {
    QStringList files;
    for (const QString& name : QDir(bundledFolder).entryList({"*.plist"}, QDir::Files))
        files.append(QDir(bundledFolder).filePath(name));
    return files;
}

// Domains of the raw manifests, each once, whatever file they are in.
QSet<QString> rawDomains() {
    QSet<QString> domains;
    QDirIterator it(rawFolder, {"*.plist"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const auto domain = readDictionary(it.next()).string("pfm_domain");
        if (domain)
            domains.insert(*domain == "Configuration" ? QString() : *domain);
    }
    return domains;
}

TEST(BundledManifests, EveryRawDomainBecomesADomainWithAllItsKeys) {
    const QStringList files = bundledFiles();
    const QSet<QString> expected = rawDomains();
    ASSERT_GE(expected.size(), 35);
    QSet<QString> loaded;
    for (const QString& file : files) {
        const plist::Dictionary manifest = readDictionary(file);
        const auto domain = PFMDomain::make(manifest);
        ASSERT_TRUE(domain) << file.toStdString();
        const plist::Array* subkeys = manifest.array("pfm_subkeys");
        ASSERT_TRUE(subkeys);
        EXPECT_EQ(domain->keyPrototypes().size(), subkeys->size())
            << file.toStdString() << ": a key didn't load";
        loaded.insert(domain->domainString());
        std::cout << "  "
                  << (domain->domainString().isEmpty() ? "\"\"" : domain->domainString().toStdString())
                  << ": " << domain->keyPrototypes().size() << " keys\n";
    }
    EXPECT_EQ(loaded, expected);
    EXPECT_EQ(files.size(), expected.size());
}

TEST(BundledManifests, AProfileWithAPayloadOfEachDomainSavesAndReadsBackEqual) {
    Profile::DomainList domains;
    std::shared_ptr<const PFMDomain> general;
    for (const QString& file : bundledFiles()) {
        auto domain = PFMDomain::make(readDictionary(file));
        ASSERT_TRUE(domain);
        if (domain->domainString().isEmpty())
            general = domain;
        domains.append(std::move(domain));
    }
    ASSERT_TRUE(general);
    EXPECT_TRUE(general->required()) << "its support file puts back what conversion drops";
    const auto environment = makeTestEnvironment();
    const auto profile = Profile::makeNewProfile(domains, environment);
    ASSERT_TRUE(profile);
    for (const auto& domain : domains) {
        if (!domain->domainString().isEmpty())
            profile->addPayload(domain);
    }
    ASSERT_EQ(profile->configurationPayloads().size(), domains.size() - 1);
    const auto data = profile->profileData();
    ASSERT_TRUE(data);

    const auto reread = Profile::parseProfile(*data, domains, makeTestEnvironment());
    ASSERT_TRUE(reread);
    EXPECT_EQ((*reread)->configurationPayloads().size(), domains.size() - 1);
    EXPECT_FALSE((*reread)->rootPayload()->unfamiliarPreferenceKeys());
    for (const auto& payload : (*reread)->configurationPayloads())
        EXPECT_FALSE(payload->unfamiliarPreferenceKeys())
            << payload->domainPrototype().domainString().toStdString();
    EXPECT_EQ((*reread)->profileData(), data);
}

} // namespace
} // namespace quorlin
