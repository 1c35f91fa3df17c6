// Builds PFMDomain objects from several hundred standard-form manifests that
// are made in memory by scaling up three fixture shapes of our own: a wide
// flat payload, a deeply nested one, and one full of rules, groups and
// availability. Reports the time per manifest.
#include "plist/Value.h"
#include "schema/PFMDomain.h"

#include <benchmark/benchmark.h>

#include <QString>

#include <vector>

using namespace quorlin;
using plist::Array;
using plist::Dictionary;

namespace {

constexpr int manifestCount = 600;

Dictionary key(const QString& name, const QString& type, Dictionary extra = {}) {
    extra.insert(QStringLiteral("pfm_name"), name);
    extra.insert(QStringLiteral("pfm_type"), type);
    extra.insert(QStringLiteral("pfm_description"),
                 QStringLiteral("Explains what %1 changes.\\nA second line for the panel.").arg(name));
    return extra;
}

Dictionary manifest(int index, const QString& title, const Array& subkeys, Dictionary extra = {}) {
    extra.insert(QStringLiteral("pfm_title"), title);
    extra.insert(QStringLiteral("pfm_description"),
                 QStringLiteral("Generated payload number %1.").arg(index));
    extra.insert(QStringLiteral("pfm_domain"), QStringLiteral("org.quorlin.bench.payload%1").arg(index));
    extra.insert(QStringLiteral("pfm_format_version"), 1);
    extra.insert(QStringLiteral("pfm_version"), index % 7 + 1);
    extra.insert(QStringLiteral("pfm_subkeys"), subkeys);
    return extra;
}

Array rangeList(int size) {
    Array values;
    for (int i = 0; i < size; ++i)
        values.append(QStringLiteral("choice%1").arg(i));
    return values;
}

// Many flat keys of every kind, with limits, range lists and defaults.
Dictionary wideManifest(int index) {
    const int keyCount = 30 + index % 50;
    Array subkeys;
    for (int i = 0; i < keyCount; ++i) {
        switch (i % 5) {
        case 0:
            subkeys.append(key(QStringLiteral("allowFeature%1").arg(i), "boolean", {{"pfm_default", true}}));
            break;
        case 1:
            subkeys.append(key(QStringLiteral("MaximumRetryCount%1").arg(i), "integer",
                               {{"pfm_range_min", 0}, {"pfm_range_max", 100}, {"pfm_default", 5}}));
            break;
        case 2:
            subkeys.append(key(QStringLiteral("ServerURL%1").arg(i), "string",
                               {{"pfm_format", "^https://"}, {"pfm_quorlin_value_placeholder", "https://"}}));
            break;
        case 3:
            subkeys.append(
                key(QStringLiteral("Mode%1").arg(i), "string", {{"pfm_range_list", rangeList(12)}}));
            break;
        default:
            subkeys.append(key(QStringLiteral("Certificate%1").arg(i), "data",
                               {{"pfm_quorlin_allowed_file_extensions", Array{"pem", "cer"}}}));
        }
    }
    return manifest(index, QStringLiteral("Wide %1").arg(index), subkeys);
}

Dictionary nestedDictionary(const QString& name, int depth, int breadth) {
    Array children;
    for (int i = 0; i < breadth; ++i) {
        if (depth > 1 && i == 0)
            children.append(nestedDictionary(QStringLiteral("%1Inner").arg(name), depth - 1, breadth));
        else
            children.append(key(QStringLiteral("%1Value%2").arg(name).arg(i), i % 2 ? "string" : "integer"));
    }
    return key(name, "dictionary", {{"pfm_subkeys", children}});
}

// Dictionaries within dictionaries and arrays of dictionary items.
Dictionary nestedManifest(int index) {
    const int depth = 3 + index % 5;
    Array subkeys;
    for (int i = 0; i < 6; ++i)
        subkeys.append(nestedDictionary(QStringLiteral("Section%1").arg(i), depth, 4));
    const Dictionary item{{"pfm_type", "dictionary"},
                          {"pfm_subkeys", Array{key("Host", "string"), key("Port", "integer")}}};
    subkeys.append(key("Endpoints", "array", {{"pfm_subkeys", Array{item}}}));
    return manifest(index, QStringLiteral("Nested %1").arg(index), subkeys);
}

// Requirement and exclusion rules, display groups and both kinds of availability.
Dictionary ruledManifest(int index) {
    Array subkeys;
    Array firstGroup;
    Array secondGroup;
    for (int i = 0; i < 40; ++i) {
        const QString name = QStringLiteral("RuledKey%1").arg(i);
        const Dictionary condition{{"pfm_target", QStringLiteral("RuledKey%1").arg((i + 1) % 40)},
                                   {"pfm_range_list", Array{true}}};
        Dictionary extra{{"pfm_conditionals", Array{Dictionary{{"pfm_target_conditions", Array{condition}}}}},
                         {"pfm_exclude", Array{Dictionary{{"pfm_target_conditions", Array{condition}},
                                                          {"pfm_quorlin_exclusion_disables", true}}}}};
        if (i % 3 == 0)
            extra.insert(
                "pfmx_supported_oses",
                Dictionary{{"iOS", Dictionary{{"pfmx_introduced", "15.0"}, {"pfmx_supervised", true}}},
                           {"macOS", Dictionary{{"pfmx_introduced", "n/a"}}}});
        else
            extra.insert("pfm_quorlin_platforms", Array{"ios", "macos"});
        subkeys.append(key(name, "boolean", extra));
        (i % 2 ? firstGroup : secondGroup).append(name);
    }
    return manifest(
        index, QStringLiteral("Ruled %1").arg(index), subkeys,
        {{"pfm_quorlin_groups", Dictionary{{"General", firstGroup}, {"Advanced", secondGroup}}},
         {"pfmx_supported_oses", Dictionary{{"iOS", Dictionary{{"pfmx_introduced", "14.0"}}},
                                            {"macOS", Dictionary{{"pfmx_introduced", "11.0"}}}}}});
}

const std::vector<Dictionary>& manifests() {
    static const std::vector<Dictionary> all = [] {
        std::vector<Dictionary> made;
        made.reserve(manifestCount);
        for (int index = 0; index < manifestCount; ++index) {
            switch (index % 3) {
            case 0:
                made.push_back(wideManifest(index));
                break;
            case 1:
                made.push_back(nestedManifest(index));
                break;
            default:
                made.push_back(ruledManifest(index));
            }
        }
        return made;
    }();
    return all;
}

void reportPerManifest(benchmark::State& state, qsizetype keys) {
    state.counters["manifests"] = double(manifests().size());
    state.counters["keys"] = double(keys);
    // Seconds per manifest: the inverse of the rate of manifests per second.
    state.counters["time_per_manifest"] =
        benchmark::Counter(double(manifests().size()),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_BuildDomains(benchmark::State& state) {
    qsizetype keys = 0;
    for (auto _ : state) {
        keys = 0;
        for (const Dictionary& manifest : manifests()) {
            const auto domain = PFMDomain::make(manifest);
            benchmark::DoNotOptimize(domain.get());
            keys += domain->allKeyNames().size();
        }
    }
    reportPerManifest(state, keys);
}
BENCHMARK(BM_BuildDomains)->Unit(benchmark::kMillisecond);

// Building plus what a section list and its forms read first from each domain.
void BM_BuildAndReadDomains(benchmark::State& state) {
    qsizetype keys = 0;
    for (auto _ : state) {
        keys = 0;
        for (const Dictionary& manifest : manifests()) {
            const auto domain = PFMDomain::make(manifest);
            for (const auto& key : domain->keyPrototypes()) {
                benchmark::DoNotOptimize(key->representedDictionary());
                benchmark::DoNotOptimize(key->matchesValue(plist::Value(Dictionary{})));
                const auto strings = key->collectSearchStrings();
                keys += strings ? strings->names.size() : 0;
            }
        }
    }
    reportPerManifest(state, keys);
}
BENCHMARK(BM_BuildAndReadDomains)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
