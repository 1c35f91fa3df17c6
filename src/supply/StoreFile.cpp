#include "supply/StoreFile.h"

#include "plist/PlistReader.h"
#include "plist/XmlWriter.h"

#include <QFile>
#include <QSaveFile>

namespace quorlin {

bool StoreFile::write(const QString& path, const plist::Value& root) {
    const auto bytes = plist::XmlWriter::write(root);
    if (!bytes)
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(*bytes) != bytes->size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

std::optional<plist::Value> StoreFile::read(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    auto read = plist::PlistReader::read(file.readAll());
    if (!read)
        return std::nullopt;
    return std::move(read->root);
}

} // namespace quorlin
