#include "supply/ManifestLinter.h"
#include "plist/PlistReader.h"
#include "support/TestSupport.h"

#include <QDir>

#include <gtest/gtest.h>

#include <iostream>

namespace quorlin {
namespace {

using test::testDataPath;

plist::Dictionary manifest(const QString& path) {
    const auto read = plist::PlistReader::read(test::readFile(path));
    return read && read->root.dictionary() ? *read->root.dictionary() : plist::Dictionary();
}

QString listed(const QList<ManifestFinding>& findings) {
    QString text;
    for (const ManifestFinding& finding : findings)
        text += QStringLiteral("  %1: %2\n").arg(finding.keyPath, finding.reason);
    return text;
}

TEST(ManifestLinter, FindsEachKindOfFaultAtItsKeyPath) {
    const struct {
        const char* path;
        const char* reason;
    } expected[] = {
        {"", "unknown key \"pfm_titel\"; did you mean \"pfm_title\"?"},
        {"Flag", "has a default of another type than boolean: 1"},
        {"Mode", "allows a value of another type than string: 2"},
        {"Mode", "has a default that its allowed list lacks: \"slow\""},
        {"Size", "has a range minimum 10 above its maximum 5"},
        {"Size", "has a default 20 outside its range"},
        {"Code", "has a \"pfm_format\" that doesn't compile"},
        {"Pin", "has a default that doesn't match its \"pfm_format\": 12a4"},
        {"Dependent", "has a rule on \"Missing\", which isn't a key of this manifest"},
        {"Dependent", "has a rule on \"Size\" whose \"pfm_range_list\" holds \"ten\", which never equals a "
                      "value of type integer"},
        {"Dependent",
         "has a rule on \"Flag\" whose \"pfm_contains_any\" can never match a value of type boolean"},
        {"Flag", "repeats a key name of this level"},
        {"Scalar", "has subkeys, which a key of type string can't hold"},
        {"List", "is an array without an item prototype"},
        {"Limits", "unknown key \"pfm_rnage_max\"; did you mean \"pfm_range_max\"?"},
        {"Settings.Phone", "names the platform ios, which its parent doesn't"},
        {"Settings.Early", "is introduced on macos in 10.9, before its parent (10.13)"},
        {"Ratio", "has the unknown type \"float\""},
    };
    const auto findings = ManifestLinter::lint(manifest(testDataPath("supply/lint/faults.plist")));
    for (const auto& [path, reason] : expected) {
        const bool found = std::any_of(findings.begin(), findings.end(), [&](const ManifestFinding& f) {
            return f.keyPath == QLatin1String(path) && f.reason.startsWith(QString::fromUtf8(reason));
        });
        EXPECT_TRUE(found) << path << ": " << reason << "\nfound:\n" << listed(findings).toStdString();
    }
    EXPECT_EQ(findings.size(), std::size(expected)) << listed(findings).toStdString();
}

TEST(ManifestLinter, AcceptsAManifestWithoutContradictions) {
    const auto findings = ManifestLinter::lint(manifest(testDataPath("supply/lint/clean.plist")));
    EXPECT_TRUE(findings.isEmpty()) << listed(findings).toStdString();
}

TEST(ManifestLinter, BundledManifestsHaveNoFindingsRawOrStandardized) {
    const QStringList folders{testDataPath("../../resources/ManifestSources"),
                              QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor/Manifests")};
    for (const QString& folder : folders) {
        const QStringList files = test::filesBelow(folder, {".plist"});
        EXPECT_GE(files.size(), 100) << folder.toStdString();
        for (const QString& file : files) {
            const auto findings = ManifestLinter::lint(manifest(file));
            EXPECT_TRUE(findings.isEmpty()) << file.toStdString() << '\n' << listed(findings).toStdString();
        }
    }
}

// Third-party manifests are not ours to correct: the linter must get through
// each, and what it finds is shown for whoever reads the log.
TEST(ManifestLinter, CompletesOnEveryManifestOfThePublicCorpus) {
    const QStringList files = test::filesBelow(test::corpusPath("profile-manifests"), {".plist"});
    ASSERT_GT(files.size(), 200);
    qsizetype total = 0;
    for (const QString& file : files) {
        const plist::Dictionary read = manifest(file);
        ASSERT_FALSE(read.isEmpty()) << file.toStdString();
        const auto findings = ManifestLinter::lint(read);
        total += findings.size();
        for (const ManifestFinding& finding : findings)
            std::cout << "  " << QDir(test::corpusPath()).relativeFilePath(file).toStdString() << ": "
                      << finding.keyPath.toStdString() << ": " << finding.reason.toStdString() << '\n';
    }
    std::cout << "  " << total << " findings in " << files.size() << " manifests\n";
}

} // namespace
} // namespace quorlin
