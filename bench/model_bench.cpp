// Makes a profile with one payload of every domain of a folder of
// manifests, saves it and reads it back, and reports the time of each step.
// The folder is the first of these that holds a domain besides the root:
// $QUORLIN_MODEL_BENCH_MANIFESTS, the bundled set, the manifest corpus, our
// own test manifests. A folder without a root domain borrows the bundled
// one, or ours.
#include "model/Profile.h"
#include "model/ProfileEnvironment.h"
#include "plist/PlistReader.h"
#include "plist/XmlWriter.h"
#include "schema/PFMDomain.h"

#include "ManifestFolder.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <algorithm>
#include <cstdio>

using namespace quorlin;

namespace {

const QString fixtureFolder = QStringLiteral(QUORLIN_MODEL_FIXTURES);
const QString bundledFolder = QStringLiteral(QUORLIN_BUNDLED_MANIFESTS);

using bench::readDomains;

bool hasRoot(const Profile::DomainList& domains) {
    return std::any_of(domains.begin(), domains.end(),
                       [](const auto& domain) { return domain->domainString().isEmpty(); });
}

struct Workload {
    QString folder;
    Profile::DomainList domains;
    std::shared_ptr<const ProfileEnvironment> environment = ProfileEnvironment::makeSystem();
};

Workload loadWorkload() {
    const QStringList folders{
        qEnvironmentVariable("QUORLIN_MODEL_BENCH_MANIFESTS"), bundledFolder,
        QDir::cleanPath(QStringLiteral(QUORLIN_CORPUS_DIR "/profile-manifests/Manifests")), fixtureFolder};
    Workload result;
    for (const QString& folder : folders) {
        if (folder.isEmpty() || !QDir(folder).exists())
            continue;
        result.folder = folder;
        result.domains = readDomains(folder);
        if (result.domains.size() > (hasRoot(result.domains) ? 1 : 0))
            break;
    }
    for (const QString& rootFolder : {bundledFolder, fixtureFolder}) {
        if (hasRoot(result.domains))
            break;
        const auto roots = readDomains(rootFolder);
        const auto root = std::find_if(roots.begin(), roots.end(),
                                       [](const auto& domain) { return domain->domainString().isEmpty(); });
        if (root != roots.end())
            result.domains.prepend(*root);
    }
    return result;
}

const Workload& workload() {
    static const Workload loaded = loadWorkload();
    return loaded;
}

Profile::Pointer makeFullProfile() {
    const auto& load = workload();
    auto profile = Profile::makeNewProfile(load.domains, load.environment);
    for (const auto& domain : load.domains) {
        if (!domain->domainString().isEmpty())
            profile->addPayload(domain);
    }
    return profile;
}

void makeProfile(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(makeFullProfile());
    state.counters["payloads"] = double(makeFullProfile()->configurationPayloads().size());
}
BENCHMARK(makeProfile)->Unit(benchmark::kMillisecond);

void serialiseProfile(benchmark::State& state) {
    const auto profile = makeFullProfile();
    qint64 bytes = 0;
    for (auto _ : state) {
        const auto data = profile->profileData();
        bytes = data ? data->size() : 0;
        benchmark::DoNotOptimize(data);
    }
    state.counters["bytes"] = double(bytes);
}
BENCHMARK(serialiseProfile)->Unit(benchmark::kMillisecond);

void parseProfile(benchmark::State& state) {
    const auto& load = workload();
    const QByteArray data = makeFullProfile()->profileData().value_or(QByteArray());
    for (auto _ : state) {
        auto parsed = Profile::parseProfile(data, load.domains, load.environment);
        if (!parsed)
            state.SkipWithError("the saved profile could not be read back");
        benchmark::DoNotOptimize(parsed);
    }
}
BENCHMARK(parseProfile)->Unit(benchmark::kMillisecond);

// A list of the given number of items, each of the right class (second
// argument 0) or held for its wrong class (1): held values must read as fast
// as bound ones, and twice as many take twice as long.
void parseHeldValues(benchmark::State& state) {
    const auto& load = workload();
    const auto count = int(state.range(0));
    const bool held = state.range(1) != 0;
    plist::Array items;
    for (int index = 0; index < count; ++index)
        items.append(held ? plist::Value(index) : plist::Value(QString::number(index)));
    const plist::Dictionary payload{{"PayloadType", "com.apple.loginwindow"},
                                    {"PayloadUUID", "00000000-0000-4000-8000-00000000BE0C"},
                                    {"PayloadIdentifier", "org.example.bench.held"},
                                    {"PayloadVersion", 1},
                                    {"HiddenUsersList", items}};
    const plist::Dictionary root{{"PayloadType", "Configuration"},
                                 {"PayloadUUID", "00000000-0000-4000-8000-00000000BE0D"},
                                 {"PayloadIdentifier", "org.example.bench"},
                                 {"PayloadVersion", 1},
                                 {"PayloadContent", plist::Array{payload}}};
    const auto written = plist::XmlWriter::write(plist::Value(root));
    const QByteArray data = written ? *written : QByteArray();
    for (auto _ : state) {
        auto parsed = Profile::parseProfile(data, load.domains, load.environment);
        if (!parsed || (*parsed)->configurationPayloads().isEmpty())
            state.SkipWithError("no domain com.apple.loginwindow among the manifests");
        benchmark::DoNotOptimize(parsed);
    }
}
BENCHMARK(parseHeldValues)->ArgsProduct({{2000, 8000}, {0, 1}})->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    const auto& load = workload();
    if (!hasRoot(load.domains)) {
        std::fprintf(stderr, "No domains under %s\n", qPrintable(load.folder));
        return 1;
    }
    std::printf("%lld domains from %s\n", static_cast<long long>(load.domains.size()),
                qPrintable(load.folder));
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
