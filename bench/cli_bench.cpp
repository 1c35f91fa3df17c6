// Runs `check` in-process, through the command's own code after its
// start-up, over a folder of 200 profiles made at start, and reports the time
// of one check of the whole folder. The domains are those of the bundled
// manifests, joined by the manifest corpus when the bundled set offers no
// payload domain; they are read once before timing, as the tool reads them at
// start-up, so the figure is what checking itself costs.
#include "cli/CheckCommand.h"
#include "cli/CheckTargets.h"
#include "cli/CommandStreams.h"
#include "model/Profile.h"
#include "model/ProfileEnvironment.h"
#include "plist/ApplicationIdentity.h"

#include "ManifestFolder.h"

#include <benchmark/benchmark.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>

using namespace quorlin;

namespace {

constexpr int profileCount = 200;
constexpr int payloadsPerProfile = 5;

// Profiles of our own: a new profile with payloads of domains spread over the
// whole list, as the editor saves it.
int writeProfiles(const QString& folder, const cli::DomainSource::DomainList& domains) {
    cli::DomainSource::DomainList offered;
    for (const auto& domain : domains) {
        if (!domain->domainString().isEmpty())
            offered.append(domain);
    }
    if (offered.isEmpty())
        return 0;
    const auto environment = ProfileEnvironment::makeSystem();
    int written = 0;
    for (int index = 0; index < profileCount; ++index) {
        const Profile::Pointer profile = Profile::makeNewProfile(domains, environment);
        if (!profile)
            return 0;
        for (int payload = 0; payload < payloadsPerProfile; ++payload)
            profile->addPayload(offered[(index * payloadsPerProfile + payload) * 7 % offered.size()]);
        const auto bytes = profile->profileData(QString());
        QFile file(
            QDir(folder).filePath(QStringLiteral("profile-%1.mobileconfig").arg(index, 3, 10, QChar(u'0'))));
        if (!bytes || !file.open(QIODevice::WriteOnly) || file.write(*bytes) != bytes->size())
            return 0;
        ++written;
    }
    return written;
}

cli::DomainSource::DomainList loadDomains() {
    auto domains = bench::readDomains(QStringLiteral(QUORLIN_BUNDLED_MANIFESTS));
    if (domains.size() < 2)
        domains.append(bench::readDomains(
            QDir::cleanPath(QStringLiteral(QUORLIN_CORPUS_DIR "/profile-manifests/Manifests"))));
    return domains;
}

struct Workload {
    QTemporaryDir folder;
    int profiles = 0;
    std::unique_ptr<cli::ProfileContext> context;
    std::unique_ptr<cli::CheckTargets> targets;
};

Workload& workload() {
    static Workload made = [] {
        Workload w;
        const auto domains = loadDomains();
        w.context.reset(
            new cli::ProfileContext{domains, ProfileEnvironment::makeSystem(), SigningServices()});
        // Targets on every platform, so that availability is judged too.
        if (auto targets = cli::CheckTargets::make({cli::CheckTargets::platformNames().remove(u' ')}, {}, {}))
            w.targets = std::move(targets).value();
        if (w.folder.isValid() && w.targets)
            w.profiles = writeProfiles(w.folder.path(), domains);
        return w;
    }();
    return made;
}

// One check of the folder as the command runs it; its exit status.
int runCheck(const Workload& w) {
    QBuffer output;
    QBuffer error;
    output.open(QIODevice::WriteOnly);
    error.open(QIODevice::WriteOnly);
    cli::CommandStreams streams(output, error);
    return cli::CheckCommand::check({*w.context, w.targets->settings(), {w.folder.path()}}, streams);
}

void checkFolder(benchmark::State& state) {
    Workload& w = workload();
    if (w.profiles != profileCount) {
        state.SkipWithError("the profiles could not be made: no general domain among the manifests");
        return;
    }
    int status = 0;
    for (auto _ : state)
        status = runCheck(w);
    state.counters["profiles"] = w.profiles;
    state.counters["exit status"] = status;
    state.counters["per profile"] =
        benchmark::Counter(double(w.profiles) * double(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(checkFolder)->Unit(benchmark::kMillisecond);

// The figure the acceptance asks for, in words, after the table.
void printFigure() {
    Workload& w = workload();
    if (w.profiles != profileCount)
        return;
    QElapsedTimer timer;
    timer.start();
    runCheck(w);
    std::printf("check of a folder of %d profiles after start-up: %.1f ms\n", w.profiles,
                double(timer.nsecsElapsed()) / 1e6);
}

} // namespace

int main(int argc, char** argv) {
    ApplicationIdentity::apply();
    QCoreApplication app(argc, argv);
    // Signing services look for identities in the data folder; a benchmark
    // must not read the user's.
    QStandardPaths::setTestModeEnabled(true);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    printFigure();
    return 0;
}
