// Validates a profile with one payload of every domain of a folder of
// manifests, every key given a value of its kind, against targets on all four
// platforms, and reports the time per key. The folder is the first of these
// that holds a domain besides the root: $QUORLIN_VALIDATION_BENCH_MANIFESTS,
// the bundled set, the manifest corpus. A folder without a root domain
// borrows the bundled one.
#include "model/Profile.h"
#include "model/ProfileEnvironment.h"
#include "plist/PlistReader.h"
#include "plist/UserDefaults.h"
#include "schema/PFMDomain.h"
#include "validation/ProfileValidation.h"
#include "validation/ValidationSettings.h"

#include "ManifestFolder.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

using namespace quorlin;

namespace {

using Kind = PFMKeyPrototype::Kind;

const QString bundledFolder = QStringLiteral(QUORLIN_BUNDLED_MANIFESTS);

using bench::readDomains;

bool isRoot(const std::shared_ptr<const PFMDomain>& domain) {
    return domain->domainString().isEmpty();
}

Profile::DomainList loadDomains() {
    const QStringList folders{
        qEnvironmentVariable("QUORLIN_VALIDATION_BENCH_MANIFESTS"), bundledFolder,
        QDir::cleanPath(QStringLiteral(QUORLIN_CORPUS_DIR "/profile-manifests/Manifests"))};
    Profile::DomainList domains;
    for (const QString& folder : folders) {
        if (folder.isEmpty() || !QDir(folder).exists())
            continue;
        domains = readDomains(folder);
        if (std::count_if(domains.begin(), domains.end(), [](const auto& d) { return !isRoot(d); }) > 0)
            break;
    }
    if (std::none_of(domains.begin(), domains.end(), isRoot)) {
        for (const auto& domain : readDomains(bundledFolder)) {
            if (isRoot(domain))
                domains.prepend(domain);
        }
    }
    return domains;
}

// A value of the key's kind that the kind's own tests will read.
plist::Value sampleValue(const PFMKeyPrototype& prototype) {
    switch (prototype.kind()) {
    case Kind::boolean:
        return true;
    case Kind::integer:
        return qint64(prototype.rangeMin().value_or(1));
    case Kind::real:
        return 1.5;
    case Kind::string:
        return QStringLiteral("value");
    case Kind::data:
        return QByteArray(16, 'x');
    case Kind::date:
        return plist::Date{700000000};
    case Kind::array:
    case Kind::dictionary:
        break;
    }
    return {};
}

// Sets every key that holds a plain value, descending into dictionaries that
// already hold their subkeys; returns the number of keys set.
int setEveryKey(const PreferenceKey::Pointer& key) {
    int count = 1;
    if (const auto* subkeys = key->value().keyMap()) {
        for (const auto& subkey : *subkeys)
            count += setEveryKey(subkey);
        return count;
    }
    const plist::Value value = sampleValue(key->prototype());
    if (!value.isNull())
        key->setValue(value);
    else if (key->prototype().kind() == Kind::array || key->prototype().kind() == Kind::dictionary)
        key->setEmptyValue();
    return count;
}

struct Workload {
    Profile::Pointer profile;
    int keys = 0;
};

Workload makeWorkload() {
    const auto domains = loadDomains();
    Workload workload;
    workload.profile = Profile::makeNewProfile(domains, ProfileEnvironment::makeSystem());
    if (!workload.profile)
        return workload;
    for (const auto& domain : domains) {
        if (!isRoot(domain))
            workload.profile->addPayload(domain);
    }
    for (const auto& payload : workload.profile->configurationPayloads()) {
        for (const auto& key : payload->preferenceKeys())
            workload.keys += setEveryKey(key);
    }
    return workload;
}

void validateProfile(benchmark::State& state) {
    static const Workload workload = makeWorkload();
    QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(QStringLiteral("defaults.plist")));
    ValidationSettings settings(defaults);
    settings.setSuspendSavingToDefaults(true);
    for (const auto model : PFMSupportedPlatforms::allModels) {
        settings.setTargeting(model, true);
        settings.setMinimumVersion(model, QStringLiteral("10.0"));
        settings.setMaximumVersion(model, QStringLiteral("14.0"));
    }
    qsizetype errors = 0;
    for (auto _ : state) {
        const auto found = ProfileValidation::validate(*workload.profile, &settings);
        errors = found.size();
        benchmark::DoNotOptimize(found);
    }
    state.counters["keys"] = workload.keys;
    state.counters["errors"] = double(errors);
    state.counters["per key"] = benchmark::Counter(double(workload.keys) * double(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(validateProfile)->Unit(benchmark::kMillisecond);

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
