#include "plist/Utilities.h"

#include "plist/PlistReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace quorlin {

Expected<plist::Dictionary, Utilities::GetDictionaryFromPlistBytesErrors>
Utilities::getDictionaryFromPlistBytes(const QByteArray& bytes) {
    const auto result = plist::PlistReader::read(bytes);
    if (!result)
        return fail(GetDictionaryFromPlistBytesErrors::failurePlistInvalid);
    const plist::Dictionary* dictionary = result->root.dictionary();
    if (!dictionary)
        return fail(GetDictionaryFromPlistBytesErrors::failurePlistRootIsNotDictionary);
    return *dictionary;
}

Expected<plist::Array, Utilities::GetArrayFromPlistBytesErrors>
Utilities::getArrayFromPlistBytes(const QByteArray& bytes) {
    const auto result = plist::PlistReader::read(bytes);
    if (!result)
        return fail(GetArrayFromPlistBytesErrors::failurePlistInvalid);
    const plist::Array* array = result->root.array();
    if (!array)
        return fail(GetArrayFromPlistBytesErrors::failurePlistRootIsNotArray);
    return *array;
}

namespace {

QList<qint64> versionNumbers(const QString& version) {
    QList<qint64> numbers;
    for (const QString& part : version.split(u'.')) {
        bool isNumber = false;
        const qint64 number = part.toLongLong(&isNumber, 10);
        if (isNumber)
            numbers << number;
    }
    return numbers;
}

} // namespace

int Utilities::compareVersions(const QString& a, const QString& b) {
    QList<qint64> left = versionNumbers(a);
    QList<qint64> right = versionNumbers(b);
    const qsizetype length = std::max(left.size(), right.size());
    left.resize(length, 0);
    right.resize(length, 0);
    for (qsizetype i = 0; i < length; ++i) {
        if (left[i] != right[i])
            return left[i] < right[i] ? -1 : 1;
    }
    return 0;
}

QString Utilities::joinedTermSeries(const QStringList& terms, bool useOr) {
    const QString connector = useOr ? QStringLiteral("or") : QStringLiteral("and");
    switch (terms.size()) {
    case 0:
        return {};
    case 1:
        return terms.first();
    case 2:
        return terms[0] + u' ' + connector + u' ' + terms[1];
    default:
        return terms.first(terms.size() - 1).join(QStringLiteral(", ")) + QStringLiteral(", ") + connector +
               u' ' + terms.last();
    }
}

QString Utilities::uniqueFilePath(const QString& folder, const QString& baseName, const QString& extension) {
    const QDir dir(folder);
    const QString suffix = extension.isEmpty() ? QString() : u'.' + extension;
    QString candidate = dir.filePath(baseName + suffix);
    for (int n = 1; QFileInfo::exists(candidate); ++n)
        candidate = dir.filePath(QStringLiteral("%1(%2)%3").arg(baseName).arg(n).arg(suffix));
    return candidate;
}

QString Utilities::relativePath(const QString& from, const QString& to) {
    const QStringList fromParts = QFileInfo(QDir::cleanPath(from)).path().split(u'/', Qt::SkipEmptyParts);
    const QStringList toParts = QDir::cleanPath(to).split(u'/', Qt::SkipEmptyParts);
    qsizetype common = 0;
    while (common < fromParts.size() && common < toParts.size() && fromParts[common] == toParts[common])
        ++common;
    QStringList result;
    for (qsizetype i = common; i < fromParts.size(); ++i)
        result << QStringLiteral("..");
    result << toParts.mid(common);
    return result.join(u'/');
}

std::optional<QByteArray> Utilities::readLeadingBytes(const QString& filePath, qint64 count) {
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.read(count);
}

} // namespace quorlin
