#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace quorlin::apptools {

class BinaryStream;

// One architecture's part of a program file: the whole of a thin file, or
// one entry of a universal file's table.
struct MachOSlice {
    quint32 cpuType = 0;
    quint32 cpuSubtype = 0;
    qint64 offset = 0;
    qint64 size = 0;
    QString architecture;
};

// For which processors a program file was built, and where its embedded
// code signature lies. Only the headers, the load commands and the
// signature are ever read: a program file of gigabytes costs a few reads.
class MachOFile {
public:
    // Nothing for a file that can't be opened, isn't a program file, or
    // whose header promises more than the file holds.
    static std::optional<MachOFile> read(const QString& path);
    static std::optional<MachOFile> read(BinaryStream& stream);

    // "i386", "arm", "ppc", "x86_64", "arm64", or "<unknown>".
    static QString architectureName(quint32 cpuType);

    const QString& path() const { return m_path; }
    // In the order of the file.
    QStringList architectures() const;
    const std::vector<MachOSlice>& slices() const { return m_slices; }
    bool isUniversal() const { return m_isUniversal; }

    // The slice whose signature speaks for the file: the one an Apple
    // silicon Mac runs, else the Intel one, else the first.
    std::optional<MachOSlice> preferredSlice() const;
    // The signature blob of a slice; nothing when it has none or its load
    // commands don't hold together.
    std::optional<QByteArray> codeSignature(const MachOSlice& slice) const;
    static std::optional<QByteArray> codeSignature(BinaryStream& stream, const MachOSlice& slice);

private:
    QString m_path;
    bool m_isUniversal = false;
    std::vector<MachOSlice> m_slices;
};

} // namespace quorlin::apptools
