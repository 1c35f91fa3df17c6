// Reading and writing speed of our property-list codec against libplist 2.2
// and Python's plistlib, on the manifest corpus held in memory, with a bare
// pugixml parse of the same bytes as the near-limit reference of XML
// reading. Each benchmark iteration reads (or writes) the whole corpus once,
// value tree included.
#include "plist/BinaryReader.h"
#include "plist/BinaryWriter.h"
#include "plist/XmlReader.h"
#include "plist/XmlWriter.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QStringList>

#include <benchmark/benchmark.h>
#include <plist/plist.h>
#include <pugixml.hpp>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>

using namespace quorlin::plist;

namespace {

struct Corpus {
    QStringList paths;
    QList<QByteArray> xml;
    QList<QByteArray> binary;      // written by our BinaryWriter, when it can
    QList<QByteArray> libplistBin; // written by libplist, for its own binary reader
    QList<Value> trees;            // our reading of each file, for our writers
    QList<plist_t> libplistTrees;  // libplist's, for its writers
    QString binaryUnavailable;     // why our binary measurement is skipped
    qint64 xmlBytes = 0;
};

QStringList corpusFiles() {
    const QString root = QDir::cleanPath(QStringLiteral(QUORLIN_CORPUS_DIR "/profile-manifests"));
    QStringList files;
    QDirIterator it(root, {QStringLiteral("*.plist")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    files.sort();
    return files;
}

QByteArray libplistBinary(const QByteArray& xml) {
    plist_t root = nullptr;
    plist_from_xml(xml.constData(), uint32_t(xml.size()), &root);
    if (!root)
        return {};
    char* bytes = nullptr;
    uint32_t length = 0;
    plist_to_bin(root, &bytes, &length);
    QByteArray result(bytes, qsizetype(length));
    free(bytes);
    plist_free(root);
    return result;
}

Corpus loadCorpus() {
    Corpus corpus;
    corpus.paths = corpusFiles();
    for (const QString& path : corpus.paths) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.readAll();
        corpus.xml << bytes;
        corpus.xmlBytes += bytes.size();
        corpus.libplistBin << libplistBinary(bytes);
        plist_t libplistTree = nullptr;
        plist_from_xml(bytes.constData(), uint32_t(bytes.size()), &libplistTree);
        if (libplistTree)
            corpus.libplistTrees << libplistTree;
        const auto value = XmlReader::read(bytes);
        if (value)
            corpus.trees << *value;
        if (!value) {
            corpus.binaryUnavailable =
                QStringLiteral("%1 does not read: %2").arg(path, value.error().toString());
            continue;
        }
        const auto binary = BinaryWriter::write(*value);
        if (!binary)
            corpus.binaryUnavailable = QStringLiteral("BinaryWriter failed: %1").arg(binary.error());
        else
            corpus.binary << *binary;
    }
    if (!corpus.binaryUnavailable.isEmpty())
        corpus.binary.clear();
    return corpus;
}

const Corpus& corpus() {
    static const Corpus loaded = loadCorpus();
    return loaded;
}

void ourXmlReader(benchmark::State& state) {
    const Corpus& c = corpus();
    for (auto _ : state) {
        for (const QByteArray& bytes : c.xml) {
            auto value = XmlReader::read(bytes);
            if (!value)
                state.SkipWithError("a corpus file does not read");
            benchmark::DoNotOptimize(value);
        }
    }
    state.SetBytesProcessed(state.iterations() * c.xmlBytes);
}

// What any reader on pugixml pays at least: the same options as our reader,
// the document copied and tokenised into a tree, no values made.
void barePugixml(benchmark::State& state) {
    const Corpus& c = corpus();
    constexpr unsigned options =
        pugi::parse_cdata | pugi::parse_ws_pcdata_single | pugi::parse_doctype | pugi::parse_fragment;
    for (auto _ : state) {
        for (const QByteArray& bytes : c.xml) {
            pugi::xml_document document;
            const auto parsed =
                document.load_buffer(bytes.constData(), size_t(bytes.size()), options, pugi::encoding_utf8);
            if (!parsed)
                state.SkipWithError("pugixml does not parse a corpus file");
            benchmark::DoNotOptimize(document);
        }
    }
    state.SetBytesProcessed(state.iterations() * c.xmlBytes);
}

void libplistXml(benchmark::State& state) {
    const Corpus& c = corpus();
    for (auto _ : state) {
        for (const QByteArray& bytes : c.xml) {
            plist_t root = nullptr;
            plist_from_xml(bytes.constData(), uint32_t(bytes.size()), &root);
            benchmark::DoNotOptimize(root);
            plist_free(root);
        }
    }
    state.SetBytesProcessed(state.iterations() * c.xmlBytes);
}

void ourBinaryReader(benchmark::State& state) {
    const Corpus& c = corpus();
    if (c.binary.isEmpty()) {
        state.SkipWithError(qPrintable(c.binaryUnavailable));
        for (auto _ : state) {
        }
        return;
    }
    for (auto _ : state) {
        for (const QByteArray& bytes : c.binary) {
            auto value = BinaryReader::read(bytes);
            if (!value)
                state.SkipWithError("a converted corpus file does not read");
            benchmark::DoNotOptimize(value);
        }
    }
}

void libplistBinaryReader(benchmark::State& state) {
    const Corpus& c = corpus();
    // The same binary bytes as ours when our writer made them, else libplist's own.
    const QList<QByteArray>& files = c.binary.isEmpty() ? c.libplistBin : c.binary;
    for (auto _ : state) {
        for (const QByteArray& bytes : files) {
            plist_t root = nullptr;
            plist_from_bin(bytes.constData(), uint32_t(bytes.size()), &root);
            benchmark::DoNotOptimize(root);
            plist_free(root);
        }
    }
}

void ourXmlWriter(benchmark::State& state) {
    for (auto _ : state) {
        for (const Value& tree : corpus().trees)
            benchmark::DoNotOptimize(XmlWriter::write(tree));
    }
}

void ourBinaryWriter(benchmark::State& state) {
    for (auto _ : state) {
        for (const Value& tree : corpus().trees)
            benchmark::DoNotOptimize(BinaryWriter::write(tree));
    }
}

template <void (*write)(plist_t, char**, uint32_t*)>
void libplistWriter(benchmark::State& state) {
    for (auto _ : state) {
        for (const plist_t tree : corpus().libplistTrees) {
            char* bytes = nullptr;
            uint32_t length = 0;
            write(tree, &bytes, &length);
            benchmark::DoNotOptimize(bytes);
            free(bytes);
        }
    }
}

// libplist 2.2 returns nothing from its writers; these adapt them to one signature.
void libplistToXml(plist_t tree, char** bytes, uint32_t* length) {
    plist_to_xml(tree, bytes, length);
}
void libplistToBinary(plist_t tree, char** bytes, uint32_t* length) {
    plist_to_bin(tree, bytes, length);
}
void libplistXmlWriter(benchmark::State& state) {
    libplistWriter<libplistToXml>(state);
}
void libplistBinaryWriter(benchmark::State& state) {
    libplistWriter<libplistToBinary>(state);
}

BENCHMARK(ourXmlReader)->Unit(benchmark::kMillisecond);
BENCHMARK(barePugixml)->Unit(benchmark::kMillisecond);
BENCHMARK(libplistXml)->Unit(benchmark::kMillisecond);
BENCHMARK(ourBinaryReader)->Unit(benchmark::kMillisecond);
BENCHMARK(libplistBinaryReader)->Unit(benchmark::kMillisecond);
BENCHMARK(ourXmlWriter)->Unit(benchmark::kMillisecond);
BENCHMARK(libplistXmlWriter)->Unit(benchmark::kMillisecond);
BENCHMARK(ourBinaryWriter)->Unit(benchmark::kMillisecond);
BENCHMARK(libplistBinaryWriter)->Unit(benchmark::kMillisecond);

// Real time, and CPU time, which is the steadier of the two on a machine
// shared with other work.
struct PassTime {
    double real = 0;
    double cpu = 0;
};

// Seconds per pass over the corpus with plistlib (time.perf_counter, and
// time.process_time for CPU), the best of several passes; the files are read
// into memory before timing.
std::optional<PassTime> plistlibTime(const QStringList& paths) {
    const QString script =
        QStringLiteral("import plistlib, sys, time\n"
                       "blobs = [open(p, 'rb').read() for p in sys.stdin.read().splitlines()]\n"
                       "best = None\n"
                       "for _ in range(5):\n"
                       "    start, cpu = time.perf_counter(), time.process_time()\n"
                       "    for b in blobs:\n"
                       "        plistlib.loads(b)\n"
                       "    elapsed = (time.perf_counter() - start, time.process_time() - cpu)\n"
                       "    best = elapsed if best is None else min(best, elapsed)\n"
                       "print(best[0], best[1])\n");
    QProcess python;
    python.start(QStringLiteral("python3"), {QStringLiteral("-c"), script});
    if (!python.waitForStarted())
        return std::nullopt;
    python.write(paths.join(u'\n').toUtf8());
    python.closeWriteChannel();
    if (!python.waitForFinished(600000) || python.exitCode() != 0)
        return std::nullopt;
    const QList<QByteArray> fields = python.readAllStandardOutput().simplified().split(' ');
    bool realOk = false;
    bool cpuOk = false;
    const PassTime time{fields.value(0).toDouble(&realOk), fields.value(1).toDouble(&cpuOk)};
    return realOk && cpuOk ? std::optional<PassTime>(time) : std::nullopt;
}

// Keeps the time per iteration (one pass over the corpus) of every benchmark
// for the summary table.
class CapturingReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred)
                continue;
            const std::string name = run.run_name.function_name;
            if (run.run_type == Run::RT_Iteration) {
                Totals& total = m_totals[name];
                total.real += run.real_accumulated_time;
                total.cpu += run.cpu_accumulated_time;
                total.iterations += double(run.iterations);
                times[name] = {total.real / total.iterations, total.cpu / total.iterations};
            } else if (run.aggregate_name == "mean" && !m_totals.count(name)) {
                // Only aggregates are reported: their times are per iteration already.
                times[name] = {run.GetAdjustedRealTime() / 1e3, run.GetAdjustedCPUTime() / 1e3};
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
    std::map<std::string, PassTime> times;

private:
    struct Totals {
        double real = 0;
        double cpu = 0;
        double iterations = 0;
    };
    std::map<std::string, Totals> m_totals;
};

void printSummary(const std::map<std::string, PassTime>& times, const std::optional<PassTime>& python) {
    const auto time = [&](const std::string& name) -> const PassTime* {
        const auto it = times.find(name);
        return it == times.end() ? nullptr : &it->second;
    };
    const auto line = [](const char* label, const PassTime* value) {
        if (value)
            std::printf("  %-30s %10.2f ms %10.2f ms\n", label, value->real * 1000, value->cpu * 1000);
        else
            std::printf("  %-30s %13s\n", label, "skipped");
    };
    const auto ratio = [](const char* label, const PassTime* other, const PassTime* ours) {
        if (other && ours && ours->cpu > 0 && ours->real > 0)
            std::printf("  %-30s %11.2fx %11.2fx\n", label, other->real / ours->real, other->cpu / ours->cpu);
        else
            std::printf("  %-30s %12s\n", label, "n/a");
    };
    const auto ourXml = time("ourXmlReader");
    const auto ourBinary = time("ourBinaryReader");
    const PassTime* pythonTime = python ? &*python : nullptr;
    std::printf("\nWhole corpus (%lld files, %.1f MB of XML), one pass:\n",
                static_cast<long long>(corpus().xml.size()), double(corpus().xmlBytes) / 1e6);
    std::printf("  %-30s %13s %13s\n", "", "real", "CPU");
    line("ours, XML", ourXml);
    line("bare pugixml, XML", time("barePugixml"));
    line("libplist 2.2, XML", time("libplistXml"));
    line("Python plistlib, XML", pythonTime);
    line("ours, binary", ourBinary);
    line("libplist 2.2, binary", time("libplistBinaryReader"));
    line("ours, writing XML", time("ourXmlWriter"));
    line("libplist 2.2, writing XML", time("libplistXmlWriter"));
    line("ours, writing binary", time("ourBinaryWriter"));
    line("libplist 2.2, writing binary", time("libplistBinaryWriter"));
    std::printf("Ratios, other / ours (above 1: ours is faster):\n");
    ratio("libplist XML / ours XML", time("libplistXml"), ourXml);
    ratio("plistlib XML / ours XML", pythonTime, ourXml);
    ratio("libplist binary / ours binary", time("libplistBinaryReader"), ourBinary);
    ratio("pugixml / ours XML (limit 1)", time("barePugixml"), ourXml);
    ratio("libplist / ours, writing XML", time("libplistXmlWriter"), time("ourXmlWriter"));
    ratio("libplist / ours, writing binary", time("libplistBinaryWriter"), time("ourBinaryWriter"));
    if (!corpus().binaryUnavailable.isEmpty())
        std::printf("Our binary reader skipped: %s\n", qPrintable(corpus().binaryUnavailable));
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    if (corpus().xml.isEmpty()) {
        std::fprintf(stderr, "No corpus found under %s\n", QUORLIN_CORPUS_DIR);
        return 1;
    }
    CapturingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    printSummary(reporter.times, plistlibTime(corpus().paths));
    benchmark::Shutdown();
    return 0;
}
