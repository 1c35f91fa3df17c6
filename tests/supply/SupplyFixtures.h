#pragma once

#include "plist/Value.h"
#include "plist/XmlWriter.h"
#include "support/TestSupport.h"

#include <QBuffer>
#include <QColor>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QStringList>

namespace quorlin::test {

// tests/data/supply/<relative>
inline QString supplyDataPath(const QString& relative) {
    return testDataPath(QStringLiteral("supply/") + relative);
}

// Copies a folder's whole tree, hidden entries included.
inline bool copyFolder(const QString& from, const QString& to) {
    if (!QDir().mkpath(to))
        return false;
    QDirIterator it(from, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString target = QDir(to).filePath(QDir(from).relativeFilePath(source));
        const bool copied = QFileInfo(source).isDir() ? QDir().mkpath(target) : QFile::copy(source, target);
        if (!copied)
            return false;
    }
    return true;
}

inline bool writeBytes(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

inline bool writeManifest(const QString& path, const plist::Dictionary& manifest) {
    const auto bytes = plist::XmlWriter::write(manifest);
    return bytes && writeBytes(path, *bytes);
}

// A small square image of one colour, as PNG bytes.
inline QByteArray pngBytes(const QColor& colour, int size = 4) {
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// The colour at the top left of an image, to tell apart which image a lookup gave.
inline QColor firstPixel(const QImage& image) {
    return image.isNull() ? QColor() : image.pixelColor(0, 0);
}

} // namespace quorlin::test
