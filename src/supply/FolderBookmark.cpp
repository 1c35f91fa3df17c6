#include "supply/FolderBookmark.h"

#include <QDir>
#include <QFileInfo>
#include <QStringDecoder>

#include <optional>

namespace quorlin {

namespace {

std::optional<QString> decodedPath(const QByteArray& data) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString path = decoder.decode(data);
    // A NUL would cut the path short at the system's door and name another folder.
    if (decoder.hasError() || path.contains(QChar(0)) || !QDir::isAbsolutePath(path))
        return std::nullopt;
    return QDir::cleanPath(path);
}

} // namespace

QByteArray FolderBookmark::data(const QString& folder) {
    return QDir::cleanPath(QDir(folder).absolutePath()).toUtf8();
}

FolderBookmark::Resolution FolderBookmark::open(const QByteArray& data) {
    const auto path = decodedPath(data);
    if (!path)
        return {State::unresolvable, QString()};
    const QFileInfo folder(*path);
    if (!folder.isDir())
        return {State::missing, *path};
    // Listing needs read permission and entering needs search permission.
    if (!folder.isReadable() || !folder.isExecutable())
        return {State::inaccessible, *path};
    return {State::available, *path};
}

} // namespace quorlin
