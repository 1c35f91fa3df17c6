// Compares two versions of a profile of 50 payloads, each of substance (a
// list of 40 apps, nested settings, a list of domains): the second has new
// UUIDs, its payloads in reverse order, and in each payload one app moved,
// one setting changed deep down and one domain added. Also renders the text
// form that "show" prints.
#include "model/ProfileComparison.h"
#include "model/ProfileDifferenceText.h"
#include "model/ProfileTextForm.h"

#include "ManifestFolder.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <algorithm>

using namespace quorlin;

namespace {

constexpr int kPayloads = 50;
constexpr int kApps = 40;

const Profile::DomainList& domains() {
    static const Profile::DomainList loaded = bench::readDomains(QStringLiteral(QUORLIN_DIFF_MANIFESTS));
    return loaded;
}

plist::Dictionary appsPayload(int number, const QString& uuid, bool changed) {
    plist::Array apps;
    for (int app = 0; app < kApps; ++app)
        apps << plist::Value(
            plist::Dictionary{{"Name", QStringLiteral("App %1").arg(app)},
                              {"BundleIdentifier", QStringLiteral("com.example.app%1").arg(app)},
                              {"Notifications", app % 2 == 0}});
    plist::Array names;
    for (int name = 0; name < 20; ++name)
        names << plist::Value(QStringLiteral("host%1.example.com").arg(name));
    if (changed) {
        apps.move(kApps - 1, 0);
        names << plist::Value(QStringLiteral("extra.example.com"));
    }
    const plist::Dictionary proxy{{"Host", "proxy.example.com"}, {"Port", changed ? 3128 : 8080}};
    return plist::Dictionary{
        {"PayloadType", "com.quorlin.test.apps"},
        {"PayloadUUID", uuid},
        {"PayloadIdentifier", QStringLiteral("com.example.apps.%1.%2").arg(number).arg(uuid)},
        {"PayloadDisplayName", QStringLiteral("Apps %1").arg(number)},
        {"Apps", apps},
        {"Options", plist::Dictionary{{"Network", plist::Dictionary{{"Proxy", proxy}}}}},
        {"Domains", names}};
}

plist::Dictionary profile(bool changed) {
    plist::Array content;
    for (int number = 0; number < kPayloads; ++number) {
        const QString uuid = QStringLiteral("%1-%2").arg(changed ? "new" : "old").arg(number);
        content << plist::Value(appsPayload(number, uuid, changed));
    }
    if (changed)
        std::reverse(content.begin(), content.end());
    return plist::Dictionary{{"PayloadType", "Configuration"},
                             {"PayloadIdentifier", "com.example.bench"},
                             {"PayloadContent", content}};
}

void compareProfiles(benchmark::State& state) {
    const plist::Dictionary oldProfile = profile(false);
    const plist::Dictionary newProfile = profile(true);
    qsizetype found = 0;
    for (auto _ : state) {
        const auto differences = ProfileComparison(domains()).compare(oldProfile, newProfile);
        found = differences.size();
        benchmark::DoNotOptimize(ProfileDifferenceText::report(differences));
    }
    // A heading, a move, a change and an addition for each payload.
    if (found != kPayloads * 4)
        state.SkipWithError("the comparison found other differences than those made");
    state.counters["differences"] = double(found);
}
BENCHMARK(compareProfiles)->Unit(benchmark::kMillisecond);

void renderTextForm(benchmark::State& state) {
    const plist::Dictionary shown = profile(false);
    for (auto _ : state)
        benchmark::DoNotOptimize(ProfileTextForm(domains()).render(shown));
}
BENCHMARK(renderTextForm)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
