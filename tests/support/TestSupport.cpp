#include "support/TestSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <algorithm>
#include <ostream>

namespace quorlin::test {

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
