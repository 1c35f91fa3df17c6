// The manifests write their string formats for ICU's regular expressions;
// the form checks them with QRegularExpression. Every pattern of the public
// manifest collection must compile here (the value faults' table judges
// sample strings of the constructs they share).

#include "ValidationTestSupport.h"

#include "plist/PlistReader.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <iostream>

namespace quorlin {
namespace {

using namespace quorlin::test;

void collectFormats(const plist::Value& value, QStringList& formats) {
    if (const auto* dictionary = value.dictionary()) {
        for (auto entry = dictionary->begin(); entry != dictionary->end(); ++entry) {
            if (entry.key() == QStringLiteral("pfm_format") && entry.value().isString())
                formats.append(*entry.value().toString());
            else
                collectFormats(entry.value(), formats);
        }
    } else if (const auto* array = value.array()) {
        for (const auto& item : *array)
            collectFormats(item, formats);
    }
}

QStringList corpusFormats() {
    QStringList formats;
    for (const QString& path : filesBelow(corpusPath("profile-manifests"), {".plist"})) {
        if (const auto read = plist::PlistReader::read(readFile(path)))
            collectFormats(read->root, formats);
    }
    formats.removeDuplicates();
    return formats;
}

TEST(ManifestFormatsTest, EveryCorpusPatternCompiles) {
    const QStringList formats = corpusFormats();
    ASSERT_FALSE(formats.isEmpty());
    QStringList failures;
    for (const QString& format : formats) {
        const QRegularExpression expression(format);
        if (!expression.isValid())
            failures.append(format + QStringLiteral("  -- ") + expression.errorString());
    }
    std::cout << formats.size() << " distinct patterns, " << failures.size() << " don't compile\n";
    for (const QString& failure : failures)
        std::cout << "  " << failure.toStdString() << '\n';
    EXPECT_TRUE(failures.isEmpty()) << failures.join('\n').toStdString();
}

} // namespace
} // namespace quorlin
