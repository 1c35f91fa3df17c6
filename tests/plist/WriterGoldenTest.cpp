// Pins the writers' output byte for byte: every bundled manifest, every
// property list and profile under tests/data and the manifest corpus are read
// and written in both forms, and the SHA-256 of each output must match the
// digests recorded from the writers as they were when this test was added.
// Faster writers (and readers, whose trees feed them) must change no byte.
// A record names its input by path and content, so a file edited since is
// no longer pinned rather than failing, like one added since.
// QUORLIN_RECORD_WRITER_DIGESTS=1 rewrites the record after a deliberate change.
#include "plist/BinaryWriter.h"
#include "plist/PlistReader.h"
#include "plist/XmlWriter.h"
#include "support/TestSupport.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QMap>

#include <gtest/gtest.h>

using namespace quorlin;
using namespace quorlin::plist;

namespace {

const QString recordPath = test::testDataPath(QStringLiteral("plist-writer/digests.txt"));

// "<root>:<path>@<input digest>\t<xml digest> <binary digest>", or "unreadable" for a file the
// reader refuses.
QByteArray digestLine(const QString& root, const QString& folder, const QString& path) {
    const QByteArray input = test::readFile(path);
    const QString name =
        root + u':' + QDir(folder).relativeFilePath(path) + u'@' +
        QString::fromLatin1(QCryptographicHash::hash(input, QCryptographicHash::Sha256).toHex().left(16));
    const auto read = PlistReader::read(input);
    if (!read)
        return name.toUtf8() + "\tunreadable";
    const auto digest = [](const auto& written) {
        return written ? QCryptographicHash::hash(*written, QCryptographicHash::Sha256).toHex()
                       : QByteArray("refused");
    };
    return name.toUtf8() + '\t' + digest(XmlWriter::write(read->root)) + ' ' +
           digest(BinaryWriter::write(read->root));
}

QList<QByteArray> currentDigests() {
    const QStringList suffixes{QStringLiteral(".plist"), QStringLiteral(".mobileconfig")};
    const QList<std::pair<QString, QString>> roots{
        {QStringLiteral("resources"), QDir::cleanPath(test::testDataPath(QStringLiteral("../../resources")))},
        {QStringLiteral("tests"), test::testDataPath()},
        {QStringLiteral("corpus"), test::corpusPath(QStringLiteral("profile-manifests"))}};
    QList<QByteArray> lines;
    for (const auto& [root, folder] : roots) {
        for (const QString& path : test::filesBelow(folder, suffixes))
            lines << digestLine(root, folder, path);
    }
    return lines;
}

TEST(WriterGoldenTest, OutputOfEveryKnownFileIsUnchanged) {
    const QList<QByteArray> current = currentDigests();
    ASSERT_GT(current.size(), 300) << "the bundled manifests, test data or corpus are missing";
    if (qEnvironmentVariableIsSet("QUORLIN_RECORD_WRITER_DIGESTS")) {
        QFile record(recordPath);
        ASSERT_TRUE(record.open(QIODevice::WriteOnly | QIODevice::Truncate));
        record.write(current.join('\n') + '\n');
        GTEST_SKIP() << "recorded " << current.size() << " digests";
    }
    // Files added or edited since the record was made are not pinned; every recorded one still
    // present as it was is.
    QMap<QByteArray, QByteArray> recorded;
    for (const QByteArray& line : test::readFile(recordPath).trimmed().split('\n'))
        recorded.insert(line.left(line.indexOf('\t')), line);
    qsizetype compared = 0;
    for (const QByteArray& line : current) {
        const auto it = recorded.constFind(line.left(line.indexOf('\t')));
        if (it == recorded.cend())
            continue;
        ++compared;
        EXPECT_EQ(*it, line);
    }
    EXPECT_GT(compared, 300);
}

} // namespace
