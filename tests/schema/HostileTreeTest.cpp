#include "schema/PFMDomain.h"
#include "support/TestSupport.h"

#include "SchemaTrees.h"
#include "support/DataTrees.h"

#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

using namespace quorlin;
using plist::Array;
using plist::Dictionary;
using plist::Value;
using quorlin::test::itemTree;
using quorlin::test::keyTree;
using quorlin::test::manifestTree;
using Represented = PFMKeyPrototype::RepresentableDictionary;

namespace {

constexpr int hostileDepth = 10000;

// The keys that mean something to a key or a domain, so that random trees hit the parser's paths.
const QStringList& manifestKeys() {
    static const QStringList keys = [] {
        QStringList read;
        const plist::Value vocabulary = test::dataTree(QStringLiteral("schema/manifest-vocabulary.plist"));
        for (const Value& key : vocabulary.array() ? *vocabulary.array() : Array{})
            read << key.toString().value_or(QString());
        return read;
    }();
    return keys;
}
const QStringList kinds{"boolean", "integer", "real", "string", "data", "date", "array", "dictionary"};
const QStringList words{"boolean", "integer", "real",   "string", "data",     "date", "array",   "dictionary",
                        "always",  "push",    "n/a",    "ios",    "macOS",    "",     "{{key}}", "{{value}}",
                        "Other",   "allowed", "system", "13.0",   "http://x", "Name", "Boolean"};

// Random plist trees drawn mostly from the manifest's own vocabulary.
class HostileTrees {
public:
    explicit HostileTrees(unsigned seed)
        : m_random(seed) {}

    Dictionary dictionary(int depth) {
        Dictionary result;
        const int count = pick(12);
        for (int i = 0; i < count; ++i)
            result.insert(pick(4) == 0 ? word() : manifestKeys()[pick(int(manifestKeys().size()))],
                          value(depth + 1));
        if (pick(3) > 0)
            result.insert("pfm_type", pick(4) > 0 ? kinds[pick(int(kinds.size()))] : word());
        if (pick(3) > 0)
            result.insert("pfm_name", word());
        return result;
    }

    Value value(int depth) {
        switch (pick(depth > 6 ? 8 : 11)) {
        case 0:
            return pick(2) == 1;
        case 1:
            return qint64(pick(2000)) - 1000;
        case 2:
            return double(pick(1000)) / 7.0 - 70.0;
        case 3:
        case 4:
            return word();
        case 5:
            return QByteArray(pick(4), 'x');
        case 6:
            return plist::Date{double(pick(100000))};
        case 7:
            return Value::fromUnsigned(quint64(-1) - quint64(pick(3)));
        case 8: {
            Array array;
            const int count = pick(5);
            for (int i = 0; i < count; ++i)
                array.append(value(depth + 1));
            return array;
        }
        default:
            return dictionary(depth);
        }
    }

    QString word() { return words[pick(int(words.size()))]; }

private:
    int pick(int bound) { return std::uniform_int_distribution<int>(0, std::max(0, bound - 1))(m_random); }

    std::mt19937 m_random;
};

// What must hold of every key, whatever tree it came from.
void expectKeyInvariants(const PFMKeyPrototype& key, int depth, const PFMDomain& domain) {
    ASSERT_LE(depth, PFMKeyPrototype::maximumDepth);
    if (key.kind() != PFMKeyPrototype::Kind::dictionary) {
        EXPECT_EQ(key.representedDictionary(), Represented::notADictionary);
    } else if (key.subkeys().isEmpty()) {
        EXPECT_EQ(key.representedDictionary(), Represented::customDictionary);
    }
    if (key.kind() != PFMKeyPrototype::Kind::array) {
        for (const auto& subkey : key.subkeys())
            EXPECT_TRUE(subkey->name());
    }
    if (key.defaultValue()) {
        EXPECT_TRUE(PFMKeyPrototype::isOfPlistClass(*key.defaultValue(), key.kind()));
    }
    if (key.typeAdapter()) {
        EXPECT_TRUE(key.controlType());
    }
    if (key.supportedOSes()) {
        EXPECT_FALSE(key.supportedModels() || key.lifeCycleVersions());
    }
    for (const auto& rule : key.conditionalPrototypes())
        EXPECT_FALSE(rule.targetConditions().isEmpty());
    if (const auto index = key.displayGroupIndex()) {
        ASSERT_TRUE(domain.displayGroupsLabelMap());
        EXPECT_TRUE(domain.displayGroupsLabelMap()->contains(*index));
    }
    // Values of any shape may be offered to any key.
    key.matchesValue(Value(Dictionary{{"Name", 1}}));
    key.matchesValue(Value(Array{"x", Dictionary{}}));
    for (const auto& subkey : key.subkeys())
        expectKeyInvariants(*subkey, depth + 1, domain);
}

void expectDomainInvariants(const PFMDomain& domain) {
    EXPECT_EQ(domain.allKeyNames().size(), domain.allKeyTitles().size());
    EXPECT_EQ(domain.allKeyNames().size(), domain.allKeyDescriptions().size());
    EXPECT_TRUE(domain.supportedPlatforms());
    if (domain.domainString().isEmpty()) {
        EXPECT_EQ(domain.domainCategory(), PFMDomain::Category::root);
    }
    if (const auto& labels = domain.displayGroupsLabelMap()) {
        EXPECT_GE(labels->size(), 1);
        EXPECT_EQ(labels->lastKey(), labels->size() - 1);
    }
    if (const auto& prototype = domain.payloadFileDataSubkeyPrototype()) {
        EXPECT_EQ(prototype->name(), domain.payloadFileDataSubkeyName());
    }
    for (const auto& key : domain.keyPrototypes()) {
        ASSERT_TRUE(key->name());
        expectKeyInvariants(*key, 1, domain);
    }
}

// Keys nested `levels` deep, each the only subkey of the one above.
Dictionary nestedKeys(const QString& type, int levels, bool named) {
    Dictionary key = named ? keyTree("Leaf", "string") : itemTree("string");
    for (int level = 1; level < levels; ++level) {
        Dictionary parent = named ? keyTree(QStringLiteral("Level%1").arg(level), type) : itemTree(type);
        parent.insert("pfm_subkeys", Array{key});
        key = std::move(parent);
    }
    return key;
}

// The plist value frees its children recursively, so a tree this deep would
// exhaust the stack on destruction before the schema were ever involved:
// the tests hand their trees here to be taken apart one level at a time.
void freeLevelByLevel(Value root) {
    std::vector<Value> pending;
    pending.push_back(std::move(root));
    while (!pending.empty()) {
        Value value = std::move(pending.back());
        pending.pop_back();
        if (Array* array = value.mutableArray()) {
            for (Value& child : *array)
                pending.push_back(std::move(child));
            array->clear();
        } else if (Dictionary* dictionary = value.mutableDictionary()) {
            for (Value& child : dictionary->map())
                pending.push_back(std::move(child));
            dictionary->map().clear();
        }
    }
}

int chainLength(const PFMKeyPrototype& top) {
    int length = 1;
    for (const PFMKeyPrototype* key = &top; !key->subkeys().isEmpty(); key = key->subkeys().first().get())
        ++length;
    return length;
}

} // namespace

TEST(HostileTrees, DeepDictionaryNestingIsCutAtTheDepthLimit) {
    Dictionary manifest = manifestTree("com.example.deep", {nestedKeys("dictionary", hostileDepth, true)});
    const auto domain = PFMDomain::make(manifest);
    freeLevelByLevel(std::exchange(manifest, {}));
    ASSERT_TRUE(domain);
    ASSERT_EQ(domain->keyPrototypes().size(), 1);
    EXPECT_EQ(chainLength(*domain->keyPrototypes()[0]), PFMKeyPrototype::maximumDepth);
    EXPECT_EQ(domain->allKeyNames().size(), PFMKeyPrototype::maximumDepth);
    EXPECT_FALSE(domain->containsSupervisedOnlyKeys());
}

TEST(HostileTrees, DeepArrayNestingIsCutAtTheDepthLimit) {
    Dictionary top = keyTree("Top", "array");
    top.insert("pfm_subkeys", Array{nestedKeys("array", hostileDepth, false)});
    Dictionary manifest = manifestTree("com.example.deep", {std::exchange(top, {})});
    const auto domain = PFMDomain::make(manifest);
    freeLevelByLevel(std::exchange(manifest, {}));
    ASSERT_TRUE(domain);
    const auto& key = domain->keyPrototypes()[0];
    EXPECT_EQ(chainLength(*key), PFMKeyPrototype::maximumDepth);

    Value deepValue = Array{};
    for (int level = 0; level < hostileDepth; ++level)
        deepValue = Array{std::exchange(deepValue, {})};
    EXPECT_FALSE(key->matchesValue(deepValue));
    freeLevelByLevel(std::move(deepValue));
}

TEST(HostileTrees, KeysAtTheLimitSurviveAndOneLevelMoreIsDropped) {
    const auto atLimit =
        PFMKeyPrototype::make(nestedKeys("dictionary", PFMKeyPrototype::maximumDepth, true), false);
    EXPECT_EQ(chainLength(*atLimit), PFMKeyPrototype::maximumDepth);
    EXPECT_EQ(atLimit->representedDictionary(), Represented::conventionalDictionary);

    const auto beyond =
        PFMKeyPrototype::make(nestedKeys("dictionary", PFMKeyPrototype::maximumDepth + 1, true), false);
    EXPECT_EQ(chainLength(*beyond), PFMKeyPrototype::maximumDepth);
}

TEST(HostileTrees, EmptyArraysEverywhereGiveAPlainDomain) {
    const Dictionary emptyKey =
        test::dataDictionary(QStringLiteral("schema/trees.plist"), "key with empty arrays everywhere");
    const auto domain = PFMDomain::make(manifestTree(
        "", {emptyKey},
        test::dataDictionary(QStringLiteral("schema/trees.plist"), "manifest with empty arrays everywhere")));
    ASSERT_TRUE(domain);
    EXPECT_EQ(domain->domainCategory(), PFMDomain::Category::root);
    EXPECT_EQ(domain->targets(), Array{});
    EXPECT_EQ(domain->supportedPlatforms()->platforms().size(), 4u);
    EXPECT_FALSE(domain->displayGroupsLabelMap());
    ASSERT_EQ(domain->keyPrototypes().size(), 1);
    const auto& key = domain->keyPrototypes()[0];
    EXPECT_EQ(key->rangeList(), Array{});
    EXPECT_EQ(key->suggestions(), Array{});
    EXPECT_TRUE(key->conditionalPrototypes().isEmpty());
    EXPECT_TRUE(key->subkeys().isEmpty());
    EXPECT_FALSE(key->allowedFileExtensions());
    EXPECT_FALSE(key->allowedDataSignatures());
    EXPECT_FALSE(key->defaultValue());
    ASSERT_TRUE(key->supportedOSes()); // an empty dictionary decodes to no platforms at all
    EXPECT_TRUE(key->supportedOSes()->storage().empty());
    EXPECT_FALSE(key->supportedModels());
}

TEST(HostileTrees, WrongTypesInEveryPositionAreDroppedOneByOne) {
    const std::vector<Value> foreign{Value(true),
                                     Value(7),
                                     Value(2.5),
                                     Value("text"),
                                     Value(QByteArray("b")),
                                     Value(plist::Date{1}),
                                     Value(Array{1, "x"}),
                                     Value(Dictionary{{"x", 1}}),
                                     Value()};
    ASSERT_GT(manifestKeys().size(), 60);
    for (const QString& manifestKey : manifestKeys()) {
        for (const Value& value : foreign) {
            Dictionary key = keyTree("Key", "dictionary", {{"pfm_subkeys", Array{keyTree("Sub", "string")}}});
            Dictionary manifest = manifestTree("com.example.hostile", {});
            const bool replacesIdentity = manifestKey == "pfm_type" || manifestKey == "pfm_name";
            const bool replacesRequired = manifestKey == "pfm_title" || manifestKey == "pfm_description" ||
                                          manifestKey == "pfm_domain" ||
                                          manifestKey == "pfm_format_version" || manifestKey == "pfm_subkeys";
            key.insert(manifestKey, value);
            manifest.insert("pfm_subkeys", Array{key});
            if (!replacesRequired)
                manifest.insert(manifestKey, value);
            const auto domain = PFMDomain::make(manifest);
            ASSERT_TRUE(domain) << manifestKey.toStdString();
            expectDomainInvariants(*domain);
            // Only a broken type or name, or an unreadable key list, can cost the key itself.
            if (!replacesIdentity && manifestKey != "pfm_subkeys") {
                EXPECT_EQ(domain->keyPrototypes().size(), 1) << manifestKey.toStdString();
            }
        }
    }
}

TEST(HostileTrees, RandomTreesBuildDomainsThatKeepTheirInvariants) {
    ASSERT_GT(manifestKeys().size(), 60);
    HostileTrees trees(20240611u);
    int domains = 0;
    int keys = 0;
    for (int round = 0; round < 1500; ++round) {
        Dictionary manifest = trees.dictionary(0);
        if (round % 2 == 0) {
            Array subkeys;
            for (int i = 0; i < 6; ++i)
                subkeys.append(trees.dictionary(1));
            const Dictionary required = manifestTree(trees.word(), subkeys);
            for (auto entry = required.begin(); entry != required.end(); ++entry)
                manifest.insert(entry.key(), entry.value());
        }
        const auto domain = PFMDomain::make(manifest);
        if (!domain)
            continue;
        ++domains;
        keys += int(domain->allKeyNames().size());
        expectDomainInvariants(*domain);
        if (HasFatalFailure())
            return;
    }
    // The generator must actually reach the parser's deeper paths.
    EXPECT_GE(domains, 700);
    EXPECT_GT(keys, domains);
}
