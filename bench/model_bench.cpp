// Makes a profile with one payload of every domain of a folder of
// manifests, saves it and reads it back, and reports the time of each step.
// The folder is $QUORLIN_MODEL_BENCH_MANIFESTS when set (point it at the
// bundled set), else the manifest corpus, else our own test manifests. A
// folder without a root domain borrows ours.
#include "model/Profile.h"
#include "model/ProfileEnvironment.h"
#include "plist/PlistReader.h"
#include "schema/PFMDomain.h"

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

std::shared_ptr<const PFMDomain> readDomain(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    const auto read = plist::PlistReader::read(file.readAll());
    if (!read || !read->root.dictionary())
        return nullptr;
    return PFMDomain::make(*read->root.dictionary());
}

Profile::DomainList readDomains(const QString& folder) {
    Profile::DomainList domains;
    QStringList paths;
    QDirIterator files(folder, {QStringLiteral("*.plist")}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.append(files.next());
    paths.sort();
    for (const QString& path : paths) {
        if (auto domain = readDomain(path))
            domains.append(std::move(domain));
    }
    return domains;
}

QString manifestFolder() {
    const QString chosen = qEnvironmentVariable("QUORLIN_MODEL_BENCH_MANIFESTS");
    if (!chosen.isEmpty())
        return chosen;
    const QString corpus = QDir::cleanPath(QStringLiteral(QUORLIN_CORPUS_DIR "/profile-manifests/Manifests"));
    return QDir(corpus).exists() ? corpus : fixtureFolder;
}

struct Workload {
    QString folder;
    Profile::DomainList domains;
    std::shared_ptr<const ProfileEnvironment> environment = ProfileEnvironment::makeSystem();
};

const Workload& workload() {
    static const Workload loaded = [] {
        Workload result;
        result.folder = manifestFolder();
        result.domains = readDomains(result.folder);
        const auto hasRoot = std::any_of(result.domains.begin(), result.domains.end(),
                                         [](const auto& domain) { return domain->domainString().isEmpty(); });
        if (!hasRoot)
            result.domains.prepend(readDomain(fixtureFolder + QStringLiteral("/root.plist")));
        return result;
    }();
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

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    const auto& load = workload();
    if (load.domains.isEmpty() || !load.domains.first()) {
        std::fprintf(stderr, "No domains under %s\n", qPrintable(load.folder));
        return 1;
    }
    std::printf("%lld domains from %s\n", static_cast<long long>(load.domains.size()),
                qPrintable(load.folder));
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
