#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class QIODevice;

namespace quorlin::apptools {

// A Mac icon set (".icns"): a list of chunks, each an image of one size in
// one encoding. Only its PNG images are taken, the largest first; JPEG 2000
// and the old run-length and mask chunks are passed over. Every length in
// the file is checked against the file's size, and only the chosen image is
// read whole.
class IcnsFile {
public:
    // No image larger than this is read, whatever the file claims.
    static constexpr qint64 maximumImageSize = 16 * 1024 * 1024;

    static bool isIconSet(const QByteArray& firstBytes);
    // The widest PNG image of the set, as the file holds it; nothing when
    // the device holds no icon set or the set no PNG image.
    static std::optional<QByteArray> bestImage(QIODevice& device);
    static std::optional<QByteArray> bestImage(const QByteArray& bytes);

    // The encoded image of an app's icon file: the best image of an icon
    // set, the bytes of any other file; nothing when unreadable or too big.
    static std::optional<QByteArray> iconImage(const QString& path);

private:
    struct Candidate {
        qint64 offset = 0;
        qint64 size = 0;
        quint32 width = 0;
    };
    static std::optional<Candidate> pngCandidate(QIODevice& device, qint64 offset, qint64 size);
};

} // namespace quorlin::apptools
