#include "schema/PFMKeyPrototype.h"
#include "support/TestSupport.h"

#include "SchemaTrees.h"
#include "support/DataTrees.h"

#include <gtest/gtest.h>

using namespace quorlin;
using plist::Array;
using plist::Dictionary;
using plist::Value;
using quorlin::test::itemTree;
using quorlin::test::keyTree;
using quorlin::test::withSubkeys;
using Kind = PFMKeyPrototype::Kind;
using Represented = PFMKeyPrototype::RepresentableDictionary;

namespace {

std::shared_ptr<const PFMKeyPrototype> parseKey(const Dictionary& dictionary,
                                                bool allowsMissingName = false) {
    return PFMKeyPrototype::make(dictionary, allowsMissingName);
}

std::shared_ptr<const PFMKeyPrototype> parseFixture(const QString& name) {
    return parseKey(test::dataDictionary(QStringLiteral("schema/trees.plist"), name));
}

} // namespace

TEST(KeyPrototypeKinds, AreTheEightLowerCaseWordsAndNothingElse) {
    const std::vector<std::pair<const char*, Kind>> words{
        {"boolean", Kind::boolean}, {"integer", Kind::integer},
        {"real", Kind::real},       {"string", Kind::string},
        {"data", Kind::data},       {"date", Kind::date},
        {"array", Kind::array},     {"dictionary", Kind::dictionary}};
    for (const auto& [word, kind] : words) {
        const auto key = parseKey(keyTree("Key", word));
        ASSERT_TRUE(key) << word;
        EXPECT_EQ(key->kind(), kind) << word;
        EXPECT_EQ(PFMKeyPrototype::rawValue(kind), QString::fromUtf8(word));
    }
    for (const char* word : {"Boolean", "STRING", "float", "bool", "dict", ""})
        EXPECT_FALSE(parseKey(keyTree("Key", word))) << word;
    EXPECT_FALSE(parseKey(Dictionary{{"pfm_name", "Key"}, {"pfm_type", 1}}));
    EXPECT_FALSE(parseKey(Dictionary{{"pfm_name", "Key"}}));
}

TEST(KeyPrototypeNames, AreMandatoryUnlessTheCallerAllowsItems) {
    const Dictionary nameless = itemTree("string");
    EXPECT_FALSE(parseKey(nameless, false));
    const auto item = parseKey(nameless, true);
    ASSERT_TRUE(item);
    EXPECT_FALSE(item->name());
    EXPECT_EQ(item->title(), QString());

    const Dictionary numericName{{"pfm_name", 7}, {"pfm_type", "string"}};
    EXPECT_FALSE(parseKey(numericName, false));
    ASSERT_TRUE(parseKey(numericName, true));
    EXPECT_FALSE(parseKey(numericName, true)->name());

    const auto titled = parseKey(itemTree("string", {{"pfm_title", "Server"}}), true);
    EXPECT_EQ(titled->title(), QStringLiteral("Server"));
}

TEST(KeyPrototypeFields, AreReadFromValuesOfTheirType) {
    const QByteArray signature("\x89PNG", 4);
    const auto key = parseFixture(QStringLiteral("key with every field"));
    ASSERT_TRUE(key);
    EXPECT_EQ(key->title(), QStringLiteral("Certificate File"));
    EXPECT_EQ(key->descriptionLine(), QStringLiteral("The certificate to install"));
    EXPECT_EQ(key->format(), QStringLiteral("^[A-Z]+$"));
    EXPECT_EQ(key->rangeMin(), 1);
    EXPECT_EQ(key->rangeMax(), 4096);
    EXPECT_EQ(key->rangeList(), (Array{QByteArray("a"), QByteArray("b")}));
    EXPECT_EQ(key->suggestions(), (Array{"one", "two"}));
    EXPECT_TRUE(key->required());
    EXPECT_EQ(key->defaultValue(), Value(QByteArray("abc")));
    EXPECT_FALSE(key->userVisible());
    EXPECT_FALSE(key->userEditable());
    EXPECT_EQ(key->sortingIndex(), 12);
    EXPECT_EQ(key->defaultGenerate(), QStringLiteral("uuid"));
    EXPECT_TRUE(key->ghost());
    EXPECT_EQ(key->prettyRangeList(), (Dictionary{{"a", "Letter A"}}));
    EXPECT_EQ(key->valuePlaceholder(), QStringLiteral("Choose a file"));
    EXPECT_EQ(key->indentationLevel(), 2);
    EXPECT_EQ(key->controlType(), QStringLiteral("file"));
    EXPECT_EQ(key->typeAdapter(), QStringLiteral("data-to-hex-string"));
    EXPECT_TRUE(key->requiresSupervision());
    EXPECT_EQ(key->documentationURL(), QUrl(QStringLiteral("https://example.org/certificates#install")));
    EXPECT_EQ(key->repetitionMin(), 1);
    EXPECT_EQ(key->repetitionMax(), 3);
    EXPECT_EQ(key->allowedFileExtensions(), (QStringList{"cer", "pem"}));
    EXPECT_EQ(key->allowedDataSignatures(), QList<QByteArray>{signature});
    EXPECT_EQ(key->note(), QStringLiteral("Shown in the information panel"));
}

TEST(KeyPrototypeFields, OfTheWrongTypeCountAsAbsentAndKeepTheKey) {
    const auto key = parseFixture(QStringLiteral("key with every field of the wrong type"));
    ASSERT_TRUE(key);
    EXPECT_EQ(key->title(), QStringLiteral("Server"));
    EXPECT_EQ(key->descriptionLine(), QString());
    EXPECT_FALSE(key->format());
    EXPECT_FALSE(key->rangeMin());
    EXPECT_FALSE(key->rangeMax());
    EXPECT_FALSE(key->rangeList());
    EXPECT_FALSE(key->suggestions());
    EXPECT_TRUE(key->conditionalPrototypes().isEmpty());
    EXPECT_FALSE(key->required());
    EXPECT_FALSE(key->defaultValue());
    EXPECT_TRUE(key->userVisible());
    EXPECT_TRUE(key->userEditable());
    EXPECT_FALSE(key->sortingIndex());
    EXPECT_FALSE(key->defaultGenerate());
    EXPECT_FALSE(key->ghost());
    EXPECT_FALSE(key->prettyRangeList());
    EXPECT_FALSE(key->valuePlaceholder());
    EXPECT_EQ(key->indentationLevel(), 0);
    EXPECT_FALSE(key->controlType());
    EXPECT_FALSE(key->supportedOSes());
    EXPECT_FALSE(key->supportedModels());
    EXPECT_FALSE(key->lifeCycleVersions());
    EXPECT_FALSE(key->requiresSupervision());
    EXPECT_FALSE(key->documentationURL());
    EXPECT_FALSE(key->repetitionMin());
    EXPECT_FALSE(key->repetitionMax());
    EXPECT_TRUE(key->subkeys().isEmpty());
    EXPECT_FALSE(key->note());
}

TEST(KeyPrototypeFields, NumberLimitsAreIntegerValuesOfAnyNumber) {
    const auto key = parseKey(
        keyTree("Ratio", "real",
                {{"pfm_range_min", -2.7}, {"pfm_range_max", 1.5}, {"pfm_quorlin_sorting_index", 3.9}}));
    EXPECT_EQ(key->rangeMin(), -2);
    EXPECT_EQ(key->rangeMax(), 1);
    EXPECT_EQ(key->sortingIndex(), 3);
    const auto flagged = parseKey(keyTree("Count", "integer", {{"pfm_range_max", true}}));
    EXPECT_EQ(flagged->rangeMax(), 1);
}

TEST(KeyPrototypeFields, DescriptionTurnsEveryBackslashNIntoALineBreak) {
    const auto key =
        parseKey(keyTree("Key", "string", {{"pfm_description", "First line\\nSecond line\\nThird \\\\n"}}));
    EXPECT_EQ(key->descriptionLine(), QStringLiteral("First line\nSecond line\nThird \\\n"));
}

// A number serves a boolean and an integer alike; nothing else crosses classes.
TEST(KeyPrototypeFields, DefaultMustBeOfThePlistClassOfTheKind) {
    for (Dictionary c : test::dataCases(QStringLiteral("schema/key-defaults.plist"))) {
        const Value value = c.value("pfm_default");
        const bool kept = c.boolean("kept").value_or(false);
        SCOPED_TRACE(c.string("pfm_type")->toStdString() + " " + value.debugDescription().toStdString());
        c.insert("pfm_name", "Key");
        const auto key = parseKey(c);
        ASSERT_TRUE(key);
        EXPECT_EQ(key->defaultValue().has_value(), kept);
        if (kept) {
            EXPECT_EQ(*key->defaultValue(), value);
        }
    }
}

TEST(KeyPrototypeFields, RequiredOnlyForExactlyAlways) {
    EXPECT_TRUE(parseKey(keyTree("Key", "string", {{"pfm_require", "always"}}))->required());
    for (const char* word : {"push", "Always", "ALWAYS", "never", ""})
        EXPECT_FALSE(parseKey(keyTree("Key", "string", {{"pfm_require", word}}))->required()) << word;
}

TEST(KeyPrototypeFields, TypeAdapterIsReadOnlyWithAControlType) {
    const auto withoutControl =
        parseKey(keyTree("Key", "data", {{"pfm_quorlin_type_adapter", "data-to-hex"}}));
    EXPECT_FALSE(withoutControl->typeAdapter());
    const auto withControl = parseKey(keyTree(
        "Key", "data", {{"pfm_quorlin_control_type", "text"}, {"pfm_quorlin_type_adapter", "data-to-hex"}}));
    EXPECT_EQ(withControl->typeAdapter(), QStringLiteral("data-to-hex"));
}

TEST(KeyPrototypeFields, FileRestrictionsBelongToDataKeysAndSkipForeignElements) {
    const QByteArray pdf("%PDF");
    const Dictionary restrictions{{"pfm_quorlin_allowed_file_extensions", Array{"pem", 3, "cer"}},
                                  {"pfm_quorlin_allowed_data_signatures", Array{pdf, "%PDF"}}};
    const auto dataKey = parseKey(keyTree("File", "data", restrictions));
    EXPECT_EQ(dataKey->allowedFileExtensions(), (QStringList{"pem", "cer"}));
    EXPECT_EQ(dataKey->allowedDataSignatures(), QList<QByteArray>{pdf});

    const auto stringKey = parseKey(keyTree("File", "string", restrictions));
    EXPECT_FALSE(stringKey->allowedFileExtensions());
    EXPECT_FALSE(stringKey->allowedDataSignatures());

    const auto emptyLists = parseKey(keyTree("File", "data",
                                             {{"pfm_quorlin_allowed_file_extensions", Array{}},
                                              {"pfm_quorlin_allowed_data_signatures", Array{}}}));
    EXPECT_FALSE(emptyLists->allowedFileExtensions());
    EXPECT_FALSE(emptyLists->allowedDataSignatures());

    // The manifest's list wasn't empty, so a list is stored, with nothing readable in it.
    const auto foreignOnly = parseKey(keyTree("File", "data",
                                              {{"pfm_quorlin_allowed_file_extensions", Array{1}},
                                               {"pfm_quorlin_allowed_data_signatures", Array{"x"}}}));
    ASSERT_TRUE(foreignOnly->allowedFileExtensions());
    EXPECT_TRUE(foreignOnly->allowedFileExtensions()->isEmpty());
    ASSERT_TRUE(foreignOnly->allowedDataSignatures());
    EXPECT_TRUE(foreignOnly->allowedDataSignatures()->isEmpty());
}

TEST(KeyPrototypeFields, DocumentationURLMustReadAsAURL) {
    EXPECT_EQ(
        parseKey(keyTree("Key", "string", {{"pfm_quorlin_documentation_url", "https://example.org/a?b=c"}}))
            ->documentationURL(),
        QUrl(QStringLiteral("https://example.org/a?b=c")));
    for (const char* text : {"", "http://exa mple.org/", "http://[::1"})
        EXPECT_FALSE(
            parseKey(keyTree("Key", "string", {{"pfm_quorlin_documentation_url", text}}))->documentationURL())
            << text;
}

TEST(KeyPrototypeConditionals, RequirementRulesComeFirstAndBadRulesAreSkippedAlone) {
    const Dictionary condition{{"pfm_target", "Enabled"}, {"pfm_present", true}};
    const auto key = parseKey(
        keyTree("Server", "string",
                {{"pfm_exclude", Array{Dictionary{{"pfm_target_conditions", Array{condition}},
                                                  {"pfm_quorlin_exclusion_disables", true}}}},
                 {"pfm_conditionals",
                  Array{Dictionary{{"pfm_target_conditions", Array{condition}}}, "not a rule",
                        Dictionary{{"pfm_target_conditions", Array{}}},
                        Dictionary{{"pfm_target_conditions", Array{condition}}, {"pfm_require", "push"}}}}}));
    const auto& rules = key->conditionalPrototypes();
    ASSERT_EQ(rules.size(), 3);
    EXPECT_EQ(rules[0].kind(), PFMConditionalPrototype::Kind::requirement);
    EXPECT_EQ(rules[0].requireStatus(), PFMConditionalPrototype::RequireStatus::always);
    EXPECT_EQ(rules[1].kind(), PFMConditionalPrototype::Kind::requirement);
    EXPECT_EQ(rules[1].requireStatus(), PFMConditionalPrototype::RequireStatus::push);
    EXPECT_EQ(rules[2].kind(), PFMConditionalPrototype::Kind::exclusion);
    EXPECT_TRUE(rules[2].exclusionDisables());
}

TEST(KeyPrototypeAvailability, ExtendedFormatWinsAndOlderKeysAreTheFallback) {
    using Model = PFMSupportedPlatforms::Model;
    using Stage = PFMSupportedPlatforms::LifeCycleStage;
    const Dictionary older{{"pfm_quorlin_platforms", Array{"macOS"}},
                           {"pfm_quorlin_macos_introduction", "10.15"}};

    Dictionary both = keyTree("Key", "string", older);
    both.insert("pfmx_supported_oses", Dictionary{{"iOS", Dictionary{{"pfmx_introduced", "14.0"}}}});
    const auto extended = parseKey(both);
    ASSERT_TRUE(extended->supportedOSes());
    EXPECT_EQ(extended->supportedOSes()->supportedOS(Model::iOS)->introduced, QStringLiteral("14.0"));
    EXPECT_FALSE(extended->supportedModels());
    EXPECT_FALSE(extended->lifeCycleVersions());

    Dictionary undecodable = keyTree("Key", "string", older);
    undecodable.insert("pfmx_supported_oses", Dictionary{{"iOS", Dictionary{{"pfmx_introduced", 14}}}});
    const auto fallback = parseKey(undecodable);
    EXPECT_FALSE(fallback->supportedOSes());
    EXPECT_EQ(fallback->supportedModels(), PFMSupportedPlatforms::Models{Model::macOS});
    ASSERT_TRUE(fallback->lifeCycleVersions());
    EXPECT_EQ(fallback->lifeCycleVersions()->at(Model::macOS).at(Stage::introduction),
              QStringLiteral("10.15"));
}

TEST(KeyPrototypeSubkeys, NamelessItemsSurviveOnlyInArrays) {
    const Array subkeys{itemTree("string"), keyTree("Named", "string")};
    const auto array = parseKey(withSubkeys(keyTree("List", "array"), subkeys));
    ASSERT_EQ(array->subkeys().size(), 2);
    EXPECT_FALSE(array->subkeys()[0]->name());

    const auto dictionary = parseKey(withSubkeys(keyTree("Settings", "dictionary"), subkeys));
    ASSERT_EQ(dictionary->subkeys().size(), 1);
    EXPECT_EQ(dictionary->subkeys()[0]->name(), QStringLiteral("Named"));

    // The list parser on its own follows the caller's word.
    EXPECT_EQ(PFMKeyPrototype::parseSubkeyList(subkeys, false).size(), 1);
    EXPECT_EQ(PFMKeyPrototype::parseSubkeyList(subkeys, true).size(), 2);
}

TEST(KeyPrototypeSubkeys, UnreadableEntriesAreSkippedAndAnEmptyResultIsNotStored) {
    const auto key =
        parseKey(withSubkeys(keyTree("Settings", "dictionary"),
                             Array{42, "text", keyTree("Bad", "float"), keyTree("Good", "integer"),
                                   Array{keyTree("Nested", "string")}}));
    ASSERT_EQ(key->subkeys().size(), 1);
    EXPECT_EQ(key->subkeys()[0]->name(), QStringLiteral("Good"));

    const auto onlyBad =
        parseKey(withSubkeys(keyTree("Settings", "dictionary"), Array{keyTree("Bad", "Boolean")}));
    EXPECT_TRUE(onlyBad->subkeys().isEmpty());
    EXPECT_EQ(onlyBad->representedDictionary(), Represented::customDictionary);
}

TEST(KeyPrototypeRepresentedDictionary, DependsOnKindAndSubkeyNames) {
    const auto dictionaryWith = [](const Array& subkeys) {
        return parseKey(withSubkeys(keyTree("D", "dictionary"), subkeys))->representedDictionary();
    };
    EXPECT_EQ(parseKey(keyTree("D", "dictionary"))->representedDictionary(), Represented::customDictionary);
    EXPECT_EQ(dictionaryWith({keyTree("{{key}}", "string"), keyTree("{{value}}", "string")}),
              Represented::customDictionary);
    EXPECT_EQ(dictionaryWith({keyTree("{{value}}", "integer"), keyTree("{{key}}", "string")}),
              Represented::customDictionary);
    EXPECT_EQ(dictionaryWith({keyTree("{{key}}", "string"), keyTree("Value", "string")}),
              Represented::conventionalDictionary);
    EXPECT_EQ(dictionaryWith({keyTree("{{key}}", "string")}), Represented::conventionalDictionary);
    EXPECT_EQ(dictionaryWith(
                  {keyTree("{{key}}", "string"), keyTree("{{value}}", "string"), keyTree("X", "string")}),
              Represented::conventionalDictionary);
    EXPECT_EQ(dictionaryWith({keyTree("Name", "string")}), Represented::conventionalDictionary);

    const auto array = parseKey(withSubkeys(keyTree("A", "array"), {itemTree("dictionary")}));
    EXPECT_EQ(array->representedDictionary(), Represented::notADictionary);
    EXPECT_EQ(parseKey(keyTree("S", "string"))->representedDictionary(), Represented::notADictionary);
}

TEST(KeyPrototypeSearchStrings, WalkNamedKeysDepthFirstButNotIntoCustomDictionaries) {
    const auto key = parseKey(withSubkeys(
        keyTree("VPN", "dictionary", {{"pfm_title", "VPN Settings"}, {"pfm_description", "Tunnel\\nsetup"}}),
        {withSubkeys(keyTree("Server", "dictionary"),
                     {keyTree("Host", "string"), keyTree("Port", "integer")}),
         withSubkeys(keyTree("Extra", "dictionary"),
                     {keyTree("{{key}}", "string"), keyTree("{{value}}", "string")}),
         withSubkeys(keyTree("Rules", "array"),
                     {withSubkeys(itemTree("dictionary"), {keyTree("RuleName", "string")})}),
         keyTree("on_demand", "boolean", {{"pfm_description", "Connect when needed"}})}));
    const auto strings = key->collectSearchStrings();
    ASSERT_TRUE(strings);
    EXPECT_EQ(strings->names, (QStringList{"VPN", "Server", "Host", "Port", "Extra", "Rules", "on_demand"}));
    EXPECT_EQ(strings->titles,
              (QStringList{"VPN Settings", "Server", "Host", "Port", "Extra", "Rules", "On demand"}));
    EXPECT_EQ(strings->descriptions,
              (QStringList{"Tunnel\nsetup", "", "", "", "", "", "Connect when needed"}));

    EXPECT_FALSE(parseKey(itemTree("string", {{"pfm_title", "Item"}}), true)->collectSearchStrings());
}

TEST(KeyPrototypeSupervision, DeepFlagFindsASupervisedKeyAtAnyDepth) {
    const Dictionary supervisedLeaf =
        keyTree("Leaf", "boolean", {{"pfm_quorlin_supervision_required", true}});
    const auto deep = parseKey(withSubkeys(
        keyTree("Top", "dictionary"),
        {keyTree("Plain", "string"), withSubkeys(keyTree("Middle", "dictionary"), {supervisedLeaf})}));
    EXPECT_FALSE(deep->requiresSupervision());
    EXPECT_TRUE(deep->requiresSupervisionDeep());
    EXPECT_FALSE(deep->subkeys()[0]->requiresSupervisionDeep());

    const auto none = parseKey(withSubkeys(keyTree("Top", "dictionary"), {keyTree("Plain", "string")}));
    EXPECT_FALSE(none->requiresSupervisionDeep());
}

// Conventional dictionaries check every entry by type, custom ones take any
// dictionary, arrays need a fit for each item.
TEST(KeyPrototypeMatchesValue, ValuesFitTheKeyTree) {
    for (const Dictionary& c : test::dataCases(QStringLiteral("schema/matching-values.plist"))) {
        SCOPED_TRACE(c.string("case")->toStdString());
        const auto key = parseKey(*c.dictionary("key"));
        ASSERT_TRUE(key);
        for (const Value& value : *c.array("matching"))
            EXPECT_TRUE(key->matchesValue(value)) << value.debugDescription().toStdString();
        for (const Value& value : *c.array("not matching"))
            EXPECT_FALSE(key->matchesValue(value)) << value.debugDescription().toStdString();
    }
}

TEST(TitleFromKeyName, BreaksWordsAtCaseChangesAndUnderscoresButKeepsSpacedNames) {
    for (const Dictionary& c : test::dataCases(QStringLiteral("schema/titles-from-key-names.plist")))
        EXPECT_EQ(PFMKeyPrototype::titleFromKeyName(*c.string("name")), c.string("title"))
            << c.string("name")->toStdString();
}
