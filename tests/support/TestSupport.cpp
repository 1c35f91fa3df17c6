#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QStandardPaths>

#include <algorithm>
#include <ostream>

namespace quorlin::test {

void prepareTestEnvironment() {
    // Tests must never read or write the user's real settings or stores.
    QStandardPaths::setTestModeEnabled(true);
    // Nor the public network: an online repository made by a test, or by a
    // program a test starts, reads from a closed port unless the test serves.
    if (qEnvironmentVariableIsEmpty("QUORLIN_RAW_CONTENT_URL"))
        qputenv("QUORLIN_RAW_CONTENT_URL", "http://127.0.0.1:9/");
    if (qEnvironmentVariableIsEmpty("QUORLIN_ITUNES_SEARCH_URL"))
        qputenv("QUORLIN_ITUNES_SEARCH_URL", "http://127.0.0.1:9/");
    QCoreApplication::setApplicationName(QStringLiteral("quorlin-profile-editor-tests"));
}

QString testDataPath(const QString& relative) {
    return QDir(QStringLiteral(QUORLIN_TEST_DATA_DIR)).filePath(relative);
}

QString corpusPath(const QString& relative) {
    return QDir::cleanPath(QDir(QStringLiteral(QUORLIN_CORPUS_DIR)).filePath(relative));
}

QStringList filesBelow(const QString& folder, const QStringList& suffixes) {
    QStringList files;
    QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (std::any_of(suffixes.begin(), suffixes.end(), [&](const QString& s) { return path.endsWith(s); }))
            files << path;
    }
    files.sort();
    return files;
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace quorlin::test

namespace quorlin::plist {

void PrintTo(const Value& value, std::ostream* out) {
    *out << value.debugDescription().left(2000).toStdString();
}

void PrintTo(const Dictionary& dictionary, std::ostream* out) {
    PrintTo(Value(dictionary), out);
}

} // namespace quorlin::plist

QT_BEGIN_NAMESPACE
void PrintTo(const QString& string, std::ostream* out) {
    *out << '"' << string.toStdString() << '"';
}
void PrintTo(const QByteArray& bytes, std::ostream* out) {
    *out << bytes.left(400).toStdString();
}
QT_END_NAMESPACE
