#include "supply/ManifestLinter.h"
#include "plist/PlistReader.h"
#include "support/DataTrees.h"

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
    const auto findings = ManifestLinter::lint(manifest(testDataPath("supply/lint/faults.plist")));
    const auto expected = test::dataCases(QStringLiteral("supply/lint/faults-findings.plist"));
    for (const plist::Dictionary& finding : expected) {
        const QString path = *finding.string("key path");
        const QString reason = *finding.string("reason begins");
        const bool found = std::any_of(findings.begin(), findings.end(), [&](const ManifestFinding& f) {
            return f.keyPath == path && f.reason.startsWith(reason);
        });
        EXPECT_TRUE(found) << path.toStdString() << ": " << reason.toStdString() << "\nfound:\n"
                           << listed(findings).toStdString();
    }
    EXPECT_EQ(findings.size(), expected.size()) << listed(findings).toStdString();
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
