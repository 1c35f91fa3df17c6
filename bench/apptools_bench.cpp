// Inspects an application whose executable is a 100 MB universal program
// file (x86_64 and arm64, each slice signed at its end as a linker leaves
// it), the way the inspector window and "app inspect" do: bundle, view
// model, code requirement. Only headers, load commands and signatures may be
// read, so the time and the memory must not grow with the file.
#include "apptools/AppBundle.h"
#include "apptools/AppInformationViewModel.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cstdio>

using namespace quorlin::apptools;

namespace {

constexpr qint64 sliceSize = 50 * 1024 * 1024;
constexpr quint32 loadCommandCodeSignature = 0x1D;

QByteArray bigEndian(quint32 word) {
    QByteArray bytes(4, '\0');
    qToBigEndian(word, bytes.data());
    return bytes;
}

// Zeros written a megabyte at a time, so that making the file doesn't raise
// the peak memory the benchmark reports.
void writeZeros(QFile& file, qint64 count) {
    const QByteArray megabyte(1024 * 1024, '\0');
    for (; count > megabyte.size(); count -= megabyte.size())
        file.write(megabyte);
    file.write(megabyte.left(count));
}

// The program as a slice of sliceSize, its signature moved to the slice's end.
bool writeSlice(QFile& file, QByteArray program) {
    const quint32 commandCount = qFromLittleEndian<quint32>(program.constData() + 16);
    qsizetype at = 32;
    for (quint32 index = 0; index < commandCount; ++index) {
        if (qFromLittleEndian<quint32>(program.constData() + at) == loadCommandCodeSignature) {
            const quint32 offset = qFromLittleEndian<quint32>(program.constData() + at + 8);
            const quint32 size = qFromLittleEndian<quint32>(program.constData() + at + 12);
            const QByteArray signature = program.mid(offset, size);
            const qint64 moved = sliceSize - size;
            qToLittleEndian(quint32(moved), program.data() + at + 8);
            file.write(program.left(offset));
            writeZeros(file, moved - offset);
            file.write(signature);
            return true;
        }
        at += qFromLittleEndian<quint32>(program.constData() + at + 4);
    }
    return false;
}

struct Workload {
    QTemporaryDir folder;
    QString bundle;
    qint64 executableSize = 0;
};

const Workload& workload() {
    static Workload made = [] {
        Workload w;
        QProcess script;
        script.start(QStringLiteral("/bin/sh"), {QStringLiteral(QUORLIN_MAKE_PROGRAMS), w.folder.path()});
        script.waitForFinished(120'000);
        const auto read = [&w](const char* name) {
            QFile file(w.folder.filePath(QLatin1String(name)));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        const QByteArray arm = read("sample-arm64");
        const QByteArray intel = read("sample-x86_64");
        if (arm.isEmpty() || intel.isEmpty())
            return w;
        w.bundle = w.folder.filePath(QStringLiteral("Big.app"));
        QDir().mkpath(w.bundle + QStringLiteral("/Contents/MacOS"));
        QFile info(w.bundle + QStringLiteral("/Contents/Info.plist"));
        info.open(QIODevice::WriteOnly);
        info.write(R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>CFBundleExecutable</key><string>Big</string>
<key>CFBundleIdentifier</key><string>com.quorlin.big</string></dict></plist>)");
        QFile executable(w.bundle + QStringLiteral("/Contents/MacOS/Big"));
        executable.open(QIODevice::WriteOnly);
        const QByteArray header =
            bigEndian(0xCAFEBABE) + bigEndian(2) + bigEndian(0x01000007) + bigEndian(3) + bigEndian(16384) +
            bigEndian(quint32(sliceSize)) + bigEndian(14) + bigEndian(0x0100000C) + bigEndian(0) +
            bigEndian(quint32(16384 + sliceSize)) + bigEndian(quint32(sliceSize)) + bigEndian(14);
        executable.write(header + QByteArray(16384 - header.size(), '\0'));
        executable.write(intel);
        writeZeros(executable, sliceSize - intel.size());
        if (!writeSlice(executable, arm))
            w.bundle.clear();
        w.executableSize = executable.size();
        return w;
    }();
    return made;
}

long maximumResidentKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void InspectUniversalApp(benchmark::State& state) {
    const Workload& w = workload();
    if (w.bundle.isEmpty()) {
        state.SkipWithError("clang and ld64.lld are needed to make the program file");
        return;
    }
    const long residentBefore = maximumResidentKilobytes();
    for (auto _ : state) {
        const auto bundle = AppBundle::create(w.bundle);
        const AppInformationViewModel model(*bundle);
        if (!model.codeRequirement || !model.architectures) {
            state.SkipWithError("the program file could not be inspected");
            return;
        }
        benchmark::DoNotOptimize(model);
    }
    state.counters["file MB"] = double(w.executableSize) / 1e6;
    state.counters["peak RSS growth MB"] = double(maximumResidentKilobytes() - residentBefore) / 1e3;
}

} // namespace

BENCHMARK(InspectUniversalApp)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
