#include "ProgramFiles.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>

namespace quorlin::test {

namespace {

constexpr qint64 sliceAlignment = 16 * 1024;
constexpr quint32 loadCommandCodeSignature = 0x1D;

struct Made {
    QByteArray arm64;
    QByteArray x86_64;
};

const Made& made() {
    static const Made programs = [] {
        QTemporaryDir folder;
        QProcess script;
        script.start(QStringLiteral("/bin/sh"),
                     {testDataPath(QStringLiteral("apptools/make-programs.sh")), folder.path()});
        if (!script.waitForFinished(120'000) || script.exitCode() != 0)
            return Made{};
        return Made{readFile(folder.filePath(QStringLiteral("sample-arm64"))),
                    readFile(folder.filePath(QStringLiteral("sample-x86_64")))};
    }();
    return programs;
}

} // namespace

const QByteArray& ProgramFiles::arm64() {
    return made().arm64;
}

const QByteArray& ProgramFiles::x86_64() {
    return made().x86_64;
}

QByteArray ProgramFiles::bigEndianWord(quint32 word) {
    QByteArray bytes(4, '\0');
    qToBigEndian(word, bytes.data());
    return bytes;
}

QByteArray ProgramFiles::universal(const QList<Slice>& slices) {
    QByteArray header = bigEndianWord(0xCAFEBABE) + bigEndianWord(quint32(slices.size()));
    QByteArray body;
    qint64 offset = sliceAlignment;
    for (const Slice& slice : slices) {
        header += bigEndianWord(slice.cpuType) + bigEndianWord(0) + bigEndianWord(quint32(offset)) +
                  bigEndianWord(quint32(slice.bytes.size())) + bigEndianWord(14);
        body += slice.bytes;
        const qint64 padded = (slice.bytes.size() + sliceAlignment - 1) / sliceAlignment * sliceAlignment;
        body += QByteArray(padded - slice.bytes.size(), '\0');
        offset += padded;
    }
    return header + QByteArray(sliceAlignment - header.size(), '\0') + body;
}

QByteArray ProgramFiles::ppcHeader() {
    // magic, cputype, cpusubtype, filetype (executable), no load commands, flags
    return bigEndianWord(0xFEEDFACE) + bigEndianWord(cpuPpc) + bigEndianWord(0) + bigEndianWord(2) +
           bigEndianWord(0) + bigEndianWord(0) + bigEndianWord(0);
}

QByteArray ProgramFiles::withSignature(const QByteArray& thin, const QByteArray& signature) {
    QByteArray bytes = thin;
    const quint32 commandCount = qFromLittleEndian<quint32>(bytes.constData() + 16);
    qsizetype at = 32;
    for (quint32 index = 0; index < commandCount; ++index) {
        const quint32 command = qFromLittleEndian<quint32>(bytes.constData() + at);
        if (command == loadCommandCodeSignature) {
            const quint32 dataOffset = qFromLittleEndian<quint32>(bytes.constData() + at + 8);
            qToLittleEndian(quint32(signature.size()), bytes.data() + at + 12);
            return bytes.left(dataOffset) + signature;
        }
        at += qFromLittleEndian<quint32>(bytes.constData() + at + 4);
    }
    return {};
}

bool ProgramFiles::write(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace quorlin::test
