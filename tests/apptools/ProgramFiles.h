#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace quorlin::test {

// Program files for the app tools tests: real ones, linked at test time by
// tests/data/apptools/make-programs.sh, and universal files and signatures
// assembled from them here.
class ProgramFiles {
public:
    struct Slice {
        quint32 cpuType = 0;
        QByteArray bytes;
    };

    static constexpr quint32 cpuArm64 = 0x0100000C;
    static constexpr quint32 cpuX86_64 = 0x01000007;
    static constexpr quint32 cpuI386 = 7;
    static constexpr quint32 cpuPpc = 18;

    // Linked once per run; an empty array when the tools are missing.
    static const QByteArray& arm64();
    static const QByteArray& x86_64();

    // A universal file with each slice aligned to 16 KB, in the order given.
    static QByteArray universal(const QList<Slice>& slices);
    // A thin header of a 32-bit big-endian program file, as PowerPC has it.
    static QByteArray ppcHeader();
    // A thin 64-bit little-endian file with its signature replaced.
    static QByteArray withSignature(const QByteArray& thin, const QByteArray& signature);

    static QByteArray bigEndianWord(quint32 word);
    static bool write(const QString& path, const QByteArray& bytes);
};

} // namespace quorlin::test
