// Builds the form of one payload (section form, payload form, one row per
// visible key with its validator) for the largest domain of three sources:
// the bundled manifests, the manifest corpus, and a large domain made here
// with groups and rules. The corpus is read as it is, without the
// standardization pipeline: its core keys are those of the standard form,
// and what it lacks of our extensions only leaves those features unused.
#include "model/Profile.h"
#include "model/ProfileEnvironment.h"
#include "schema/PFMDomain.h"
#include "workspace/PFMSection.h"
#include "workspace/PFMSectionViewController.h"

#include "ManifestFolder.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <cstdio>
#include <functional>

using namespace quorlin;

namespace {

using DomainPointer = std::shared_ptr<const PFMDomain>;

int countKeys(const PFMKeyPrototypeList& keys) {
    int count = 0;
    for (const auto& key : keys)
        count += 1 + countKeys(key->subkeys());
    return count;
}

DomainPointer largestDomain(const Profile::DomainList& domains) {
    DomainPointer largest;
    for (const auto& domain : domains) {
        if (domain->domainString().isEmpty())
            continue;
        if (!largest || countKeys(domain->keyPrototypes()) > countKeys(largest->keyPrototypes()))
            largest = domain;
    }
    return largest;
}

DomainPointer rootDomain() {
    for (const auto& domain : bench::readDomains(QStringLiteral(QUORLIN_BUNDLED_MANIFESTS))) {
        if (domain->domainString().isEmpty())
            return domain;
    }
    return nullptr;
}

// 600 keys of every scalar kind in six groups; every tenth row is excluded
// until the switch of its group is on.
DomainPointer madeDomain() {
    plist::Array keys;
    plist::Dictionary groups;
    const QStringList kinds{QStringLiteral("string"), QStringLiteral("integer"), QStringLiteral("boolean"),
                            QStringLiteral("real")};
    for (int group = 0; group < 6; ++group) {
        plist::Array names;
        const QString toggle = QStringLiteral("Enable%1").arg(group);
        keys.append(
            plist::Dictionary{{QStringLiteral("pfm_name"), toggle}, {QStringLiteral("pfm_type"), "boolean"}});
        names.append(toggle);
        for (int index = 0; index < 100; ++index) {
            const QString name = QStringLiteral("Key%1_%2").arg(group).arg(index);
            plist::Dictionary key{
                {QStringLiteral("pfm_name"), name},
                {QStringLiteral("pfm_type"), kinds[index % kinds.size()]},
                {QStringLiteral("pfm_description"), QStringLiteral("Setting %1").arg(name)}};
            if (index % 10 == 0)
                key.insert(QStringLiteral("pfm_exclude"),
                           plist::Array{plist::Dictionary{
                               {QStringLiteral("pfm_target_conditions"),
                                plist::Array{plist::Dictionary{
                                    {QStringLiteral("pfm_target"), toggle},
                                    {QStringLiteral("pfm_n_range_list"), plist::Array{true}}}}}}});
            keys.append(key);
            names.append(name);
        }
        groups.insert(QStringLiteral("Group %1").arg(group), names);
    }
    return PFMDomain::make({{QStringLiteral("pfm_title"), QStringLiteral("Large Made Domain")},
                            {QStringLiteral("pfm_description"), QStringLiteral("Made for the benchmark")},
                            {QStringLiteral("pfm_domain"), QStringLiteral("com.example.large")},
                            {QStringLiteral("pfm_format_version"), 1},
                            {QStringLiteral("pfm_subkeys"), keys},
                            {QStringLiteral("pfm_quorlin_groups"), groups}});
}

void buildForm(benchmark::State& state, const DomainPointer& domain) {
    const auto root = rootDomain();
    if (!domain || !root) {
        state.SkipWithError("no domain to build");
        return;
    }
    const Profile::DomainList domains{root, domain};
    int rows = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const auto profile = Profile::makeNewProfile(domains, ProfileEnvironment::makeSystem());
        PFMSection section(domain);
        state.ResumeTiming();
        section.addPayload(profile, std::nullopt);
        rows =
            int(section.sectionViewController()->payloadControllers().front()->fieldViewControllers().size());
        benchmark::DoNotOptimize(rows);
    }
    state.counters["keys"] = countKeys(domain->keyPrototypes());
    state.counters["rows"] = rows;
    state.SetLabel(domain->domainString().toStdString());
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const auto bundled = largestDomain(bench::readDomains(QStringLiteral(QUORLIN_BUNDLED_MANIFESTS)));
    const auto corpus = largestDomain(bench::readDomains(
        QDir::cleanPath(QStringLiteral(QUORLIN_CORPUS_DIR "/profile-manifests/Manifests"))));
    const auto made = madeDomain();
    if (!bundled)
        std::printf("The bundled manifests hold no domain besides the general one.\n");
    benchmark::RegisterBenchmark("FormOfLargestBundledDomain", buildForm, bundled ? bundled : rootDomain())
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("FormOfLargestCorpusDomain", buildForm, corpus)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("FormOfLargeMadeDomain", buildForm, made)->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
