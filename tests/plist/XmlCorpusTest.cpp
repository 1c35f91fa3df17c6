#include "plist/PlistReader.h"
#include "plist/XmlReader.h"
#include "plist/XmlWriter.h"
#include "support/TestSupport.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <iostream>
#include <optional>

using namespace quorlin;
using namespace quorlin::plist;

namespace {

const QByteArray appleHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                               "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                               "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                               "<plist version=\"1.0\">\n";

QStringList manifestFiles() {
    return test::filesBelow(test::corpusPath(QStringLiteral("profile-manifests")),
                            {QStringLiteral(".plist")});
}

bool keysSortedEverywhere(const QList<QByteArray>& lines) {
    // Keys of one dictionary share their indentation; a deeper dictionary starts a new run.
    QMap<qsizetype, QString> lastKeyAtIndent;
    for (const QByteArray& line : lines) {
        const QByteArray body = line.trimmed();
        const qsizetype indent = line.size() - line.trimmed().size();
        if (body.startsWith("<dict>") || body.startsWith("<dict/>")) {
            lastKeyAtIndent.remove(indent + 1);
        } else if (body.startsWith("<key>")) {
            const QString key = QString::fromUtf8(body.mid(5, body.size() - 11));
            const auto it = lastKeyAtIndent.constFind(indent);
            if (it != lastKeyAtIndent.cend() && *it > key)
                return false;
            lastKeyAtIndent.insert(indent, key);
        }
    }
    return true;
}

// How a file departs from the layout of Apple's writer, judged from the file
// alone (never from our output, so a fault of ours can't pass for one), or
// nothing for a file that Apple's writer could have produced.
std::optional<QString> appleFormattingDeparture(const QByteArray& original) {
    if (!original.startsWith(appleHeader))
        return QStringLiteral("non-Apple header");
    if (original.contains("\r\n"))
        return QStringLiteral("CRLF line endings");
    if (!original.endsWith('\n'))
        return QStringLiteral("no trailing newline");
    if (!original.endsWith("</plist>\n"))
        return QStringLiteral("content after </plist>");
    // String contents may hold any text, blank lines and leading spaces included.
    static const QRegularExpression stringContent(QStringLiteral("<string>.*?</string>"),
                                                  QRegularExpression::DotMatchesEverythingOption);
    const QByteArray layout =
        QString::fromUtf8(original).replace(stringContent, QStringLiteral("<string>…</string>")).toUtf8();
    const QList<QByteArray> lines = layout.split('\n');
    const auto anyLine = [&](auto predicate) { return std::any_of(lines.begin(), lines.end(), predicate); };
    if (anyLine([](const QByteArray& l) { return l.startsWith(' '); }))
        return QStringLiteral("spaces instead of tabs");
    if (lines.size() > 3 && lines[3].startsWith('\t'))
        return QStringLiteral("root element indented");
    if (layout.contains("<!--"))
        return QStringLiteral("comments");
    if (anyLine([](const QByteArray& l) { return l.endsWith(' ') || l.endsWith('\t'); }))
        return QStringLiteral("trailing whitespace");
    if (lines.indexOf(QByteArray()) != lines.size() - 1)
        return QStringLiteral("blank lines");
    if (!keysSortedEverywhere(lines))
        return QStringLiteral("keys not sorted");
    if (layout.contains("<string/>"))
        return QStringLiteral("empty string written as <string/>");
    // Apple writes zero as "0.0", and any other integral real without a fraction.
    static const QRegularExpression integralReal(QStringLiteral("<real>-?(\\d*[1-9]\\d*)\\.0+</real>"));
    if (integralReal.match(QString::fromUtf8(layout)).hasMatch())
        return QStringLiteral("integral real written as 1.0");
    if (original.contains("&quot;") || original.contains("&apos;") || original.contains("&#") ||
        original.contains("<![CDATA["))
        return QStringLiteral("escapes that Apple does not write");
    return std::nullopt;
}

QString firstDifference(const QByteArray& original, const QByteArray& written) {
    const QList<QByteArray> a = original.split('\n');
    const QList<QByteArray> b = written.split('\n');
    for (qsizetype i = 0; i < std::min(a.size(), b.size()); ++i) {
        if (a[i] != b[i])
            return QStringLiteral("line %1: %2 | %3")
                .arg(i + 1)
                .arg(QString::fromUtf8(a[i].left(60)), QString::fromUtf8(b[i].left(60)));
    }
    return QStringLiteral("different length");
}

} // namespace

TEST(XmlCorpusTest, EveryManifestReadsAndRoundTrips) {
    const QStringList files = manifestFiles();
    ASSERT_GT(files.size(), 100);
    for (const QString& path : files) {
        SCOPED_TRACE(path.toStdString());
        const QByteArray bytes = test::readFile(path);
        const auto direct = XmlReader::read(bytes);
        ASSERT_TRUE(direct.hasValue()) << direct.error().toString().toStdString();
        const auto detected = PlistReader::read(bytes);
        ASSERT_TRUE(detected.hasValue()) << detected.error().toString().toStdString();
        EXPECT_EQ(detected->format, Format::Xml);
        EXPECT_EQ(detected->root, *direct);

        const auto written = XmlWriter::write(*direct);
        ASSERT_TRUE(written.hasValue()) << written.error().toStdString();
        const auto reread = XmlReader::read(*written);
        ASSERT_TRUE(reread.hasValue()) << reread.error().toString().toStdString();
        EXPECT_EQ(*reread, *direct);
    }
}

// Everything Apple's writer could have written must come back byte for byte.
// Files that depart from its layout (hand edits, other tools) are listed
// with the departure and left out of the share.
TEST(XmlCorpusTest, FilesInAppleFormattingComeBackByteIdentical) {
    const QStringList files = manifestFiles();
    ASSERT_GT(files.size(), 100);
    qsizetype identical = 0;
    qsizetype appleFormatted = 0;
    QStringList departures;
    QStringList faults;
    for (const QString& path : files) {
        const QByteArray original = test::readFile(path);
        const auto value = XmlReader::read(original);
        ASSERT_TRUE(value.hasValue()) << path.toStdString();
        const auto written = XmlWriter::write(*value);
        ASSERT_TRUE(written.hasValue()) << path.toStdString();
        const QString name = path.section(u'/', -2);
        const auto departure = appleFormattingDeparture(original);
        if (!departure)
            ++appleFormatted;
        if (*written == original)
            ++identical;
        else if (departure)
            departures << QStringLiteral("%1: %2").arg(name, *departure);
        else
            faults << QStringLiteral("%1: %2").arg(name, firstDifference(original, *written));
    }
    std::cout << identical << " of " << files.size() << " files ("
              << 100.0 * double(identical) / double(files.size()) << "%) come back byte-identical; "
              << appleFormatted << " are in Apple's formatting.\n";
    std::cout << "Not in Apple's formatting:\n";
    for (const QString& departure : departures)
        std::cout << "  " << departure.toStdString() << '\n';
    std::cout << "In Apple's formatting, yet written differently:\n";
    for (const QString& fault : faults)
        std::cout << "  " << fault.toStdString() << '\n';
    ASSERT_GT(appleFormatted, files.size() * 3 / 4) << "the classification excuses too much";
    EXPECT_GE(double(appleFormatted - faults.size()) / double(appleFormatted), 0.95);
}
