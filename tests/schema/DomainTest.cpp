#include "schema/PFMDomain.h"
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
using quorlin::test::manifestTree;
using quorlin::test::withSubkeys;
using Category = PFMDomain::Category;
using Model = PFMSupportedPlatforms::Model;
using Stage = PFMSupportedPlatforms::LifeCycleStage;
using StageVersions = PFMSupportedPlatforms::StageVersions;

namespace {

const Array threeKeys{keyTree("Host", "string"), keyTree("Port", "integer"), keyTree("Password", "string")};

std::shared_ptr<const PFMDomain> domainWith(const Dictionary& extra, const Array& keys = threeKeys) {
    return PFMDomain::make(manifestTree("com.example.test", keys, extra));
}

// Display group index of each top-level key, by name; -1 for none.
std::map<QString, int> groupIndexes(const PFMDomain& domain) {
    std::map<QString, int> indexes;
    for (const auto& key : domain.keyPrototypes())
        indexes[*key->name()] = key->displayGroupIndex().value_or(-1);
    return indexes;
}

} // namespace

TEST(DomainRequiredFields, WithoutAnyOfTheFiveThereIsNoDomain) {
    const Dictionary complete = manifestTree("com.example.test", threeKeys);
    ASSERT_TRUE(PFMDomain::make(complete));
    for (const char* key :
         {"pfm_title", "pfm_description", "pfm_domain", "pfm_format_version", "pfm_subkeys"}) {
        Dictionary missing = complete;
        missing.remove(key);
        EXPECT_FALSE(PFMDomain::make(missing)) << key << " missing";
        Dictionary wrongType = complete;
        wrongType.insert(key, Value(plist::Date{0}));
        EXPECT_FALSE(PFMDomain::make(wrongType)) << key << " of the wrong type";
    }
    Dictionary realVersion = complete;
    realVersion.insert("pfm_format_version", 2.9);
    EXPECT_EQ(PFMDomain::make(realVersion)->formatVersion(), 2);
}

TEST(DomainRequiredFields, KeyListMayComeOutEmpty) {
    const auto empty = PFMDomain::make(manifestTree("com.example.empty", {}));
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->keyPrototypes().isEmpty());

    const auto allUnreadable =
        PFMDomain::make(manifestTree("com.example.bad", {itemTree("string"), keyTree("Flag", "Boolean"), 5}));
    ASSERT_TRUE(allUnreadable);
    EXPECT_TRUE(allUnreadable->keyPrototypes().isEmpty());
    EXPECT_TRUE(allUnreadable->allKeyNames().isEmpty());
}

TEST(DomainFields, AreReadFromValuesOfTheirType) {
    const auto domain =
        domainWith(test::dataDictionary(QStringLiteral("schema/trees.plist"), "domain fields"));
    ASSERT_TRUE(domain);
    EXPECT_EQ(domain->descriptionline(), QStringLiteral("Line one\\nstill line one"));
    EXPECT_EQ(domain->version(), 7);
    EXPECT_EQ(domain->targets(), (Array{"system", "user"}));
    EXPECT_EQ(domain->sortPriority(), 12u);
    EXPECT_TRUE(domain->singlePayload());
    EXPECT_TRUE(domain->required());
    EXPECT_EQ(domain->icon(), QByteArray("\x89PNG\r\n", 6));
    EXPECT_TRUE(domain->iconIsTemplate());
    EXPECT_TRUE(domain->requiresSupervision());
    EXPECT_EQ(domain->documentationURL(), QUrl(QStringLiteral("https://example.org/payload")));
    EXPECT_EQ(domain->note(), QStringLiteral("Needs a restart"));
}

TEST(DomainFields, OfTheWrongTypeCountAsAbsent) {
    const auto domain = domainWith(
        test::dataDictionary(QStringLiteral("schema/trees.plist"), "domain fields of the wrong type"));
    ASSERT_TRUE(domain);
    EXPECT_FALSE(domain->version());
    EXPECT_FALSE(domain->targets());
    EXPECT_EQ(domain->sortPriority(), 999u);
    EXPECT_FALSE(domain->singlePayload());
    EXPECT_FALSE(domain->required());
    EXPECT_FALSE(domain->icon());
    EXPECT_FALSE(domain->iconIsTemplate()); // read only with an icon
    EXPECT_EQ(domain->domainCategory(), Category::user);
    EXPECT_FALSE(domain->requiresSupervision());
    EXPECT_FALSE(domain->documentationURL());
    EXPECT_FALSE(domain->note());
    EXPECT_FALSE(domain->displayGroupsLabelMap());
}

TEST(DomainFields, SinglePayloadAndRequirementFollowTheirOwnReadings) {
    EXPECT_FALSE(domainWith({{"pfm_quorlin_single_payload", 0}})->singlePayload());
    EXPECT_TRUE(domainWith({{"pfm_quorlin_single_payload", 2}})->singlePayload());
    EXPECT_FALSE(domainWith({{"pfm_require", "push"}})->required());
    EXPECT_FALSE(domainWith({{"pfm_require", "Always"}})->required());
}

TEST(DomainKeys, TopLevelKeysNeedNames) {
    const auto domain =
        domainWith({}, {itemTree("string", {{"pfm_title", "Nameless"}}), keyTree("Named", "string")});
    ASSERT_EQ(domain->keyPrototypes().size(), 1);
    EXPECT_EQ(domain->keyPrototypes()[0]->name(), QStringLiteral("Named"));
}

TEST(DomainCategory, EmptyDomainIsRootAndUnknownWordsAreUser) {
    const auto categoryOf = [](const QString& domainString, const Value& word) {
        Dictionary extra;
        if (!word.isNull())
            extra.insert("pfm_quorlin_category", word);
        return PFMDomain::make(manifestTree(domainString, {}, extra))->domainCategory();
    };
    EXPECT_EQ(categoryOf("", "application"), Category::root);
    EXPECT_EQ(categoryOf("", {}), Category::root);
    EXPECT_EQ(categoryOf("com.example", "root"), Category::root);
    EXPECT_EQ(categoryOf("com.example", "system"), Category::system);
    EXPECT_EQ(categoryOf("com.example", "application"), Category::application);
    EXPECT_EQ(categoryOf("com.example", "user"), Category::user);
    EXPECT_EQ(categoryOf("com.example", "unknown"), Category::unknown);
    EXPECT_EQ(categoryOf("com.example", "Application"), Category::user);
    EXPECT_EQ(categoryOf("com.example", "vendor"), Category::user);
    EXPECT_EQ(categoryOf("com.example", {}), Category::user);

    for (const Category category :
         {Category::root, Category::system, Category::application, Category::user, Category::unknown})
        EXPECT_EQ(PFMDomain::categoryFromRawValue(PFMDomain::rawValue(category)), category);
}

TEST(DomainFileBasedPayload, SubkeyNamesNeedTheFileBasedKeyAsANumber) {
    const Dictionary names{{"pfm_quorlin_payload_file_name_subkey", "FileName"},
                           {"pfm_quorlin_payload_file_data_subkey", "Content"}};
    Dictionary off = names;
    off.insert("pfm_quorlin_file_based_payload", 0);
    const auto readEvenWhenOff = domainWith(off);
    EXPECT_FALSE(readEvenWhenOff->fileBasedPayload());
    EXPECT_EQ(readEvenWhenOff->payloadFileNameSubkeyName(), QStringLiteral("FileName"));
    EXPECT_EQ(readEvenWhenOff->payloadFileDataSubkeyName(), QStringLiteral("Content"));

    Dictionary notANumber = names;
    notANumber.insert("pfm_quorlin_file_based_payload", "true");
    const auto ignored = domainWith(notANumber);
    EXPECT_FALSE(ignored->fileBasedPayload());
    EXPECT_FALSE(ignored->payloadFileNameSubkeyName());
    EXPECT_FALSE(ignored->payloadFileDataSubkeyName());
    EXPECT_FALSE(domainWith(names)->payloadFileDataSubkeyName());
}

TEST(DomainFileBasedPayload, DataPrototypeIsTheFirstOfItsNameInTheKeyTree) {
    Dictionary extra{{"pfm_quorlin_file_based_payload", true},
                     {"pfm_quorlin_payload_file_data_subkey", "Content"}};
    const auto domain =
        domainWith(extra, {withSubkeys(keyTree("Wrapper", "dictionary"),
                                       {withSubkeys(keyTree("Inner", "dictionary"),
                                                    {keyTree("Content", "data", {{"pfm_title", "Deep"}})}),
                                        keyTree("Content", "string", {{"pfm_title", "Shallow"}})}),
                           keyTree("Content", "data", {{"pfm_title", "Top"}})});
    ASSERT_TRUE(domain->fileBasedPayload());
    ASSERT_TRUE(domain->payloadFileDataSubkeyPrototype());
    EXPECT_EQ(domain->payloadFileDataSubkeyPrototype()->title(), QStringLiteral("Deep"));
    EXPECT_EQ(domain->payloadFileDataSubkeyPrototype(),
              domain->keyPrototypes()[0]->subkeys()[0]->subkeys()[0]);

    extra.insert("pfm_quorlin_payload_file_data_subkey", "Missing");
    EXPECT_FALSE(domainWith(extra)->payloadFileDataSubkeyPrototype());
}

TEST(DomainSearch, ConcatenatesTheSearchStringsOfAllKeys) {
    const auto domain = domainWith(
        {}, {withSubkeys(keyTree("Proxy", "dictionary", {{"pfm_description", "How to reach\\nthe web"}}),
                         {keyTree("proxyHost", "string"), keyTree("proxyPort", "integer")}),
             keyTree("Bypass", "array", {{"pfm_title", "Exceptions"}})});
    EXPECT_EQ(domain->allKeyNames(), (QStringList{"Proxy", "proxyHost", "proxyPort", "Bypass"}));
    EXPECT_EQ(domain->allKeyTitles(), (QStringList{"Proxy", "Proxy Host", "Proxy Port", "Exceptions"}));
    EXPECT_EQ(domain->allKeyDescriptions(), (QStringList{"How to reach\nthe web", "", "", ""}));
}

TEST(DomainSupervision, ContainsSupervisedOnlyKeysLooksAtEveryDepth) {
    const Dictionary supervised = keyTree("Lock", "boolean", {{"pfm_quorlin_supervision_required", true}});
    EXPECT_TRUE(
        domainWith({}, {keyTree("A", "string"), withSubkeys(keyTree("B", "dictionary"), {supervised})})
            ->containsSupervisedOnlyKeys());
    EXPECT_FALSE(domainWith({{"pfm_quorlin_supervision_required", true}})->containsSupervisedOnlyKeys());
}

TEST(DomainAvailability, WithoutAnyKeyEveryModelIsSupportedWithoutVersions) {
    const auto domain = domainWith({});
    ASSERT_TRUE(domain->supportedPlatforms());
    EXPECT_EQ(domain->supportedPlatforms()->platforms(),
              (std::set<SupportedPlatform>{{Model::iOS, std::nullopt},
                                           {Model::macOS, std::nullopt},
                                           {Model::tvOS, std::nullopt},
                                           {Model::watchOS, std::nullopt}}));
}

TEST(DomainAvailability, ExtendedFormatDerivesPlatformsAndNotAvailableRemovesOne) {
    const auto domain = domainWith(
        {{"pfmx_supported_oses",
          Dictionary{{"iOS", Dictionary{{"pfmx_introduced", "13.0"}}},
                     {"macOS", Dictionary{{"pfmx_introduced", "n/a"}}},
                     {"tvOS", Dictionary{{"pfmx_introduced", "13.0"}, {"pfmx_deprecated", "17.0"}}}}},
         {"pfm_quorlin_platforms", Array{"macos"}}});
    ASSERT_TRUE(domain->supportedOSes());
    EXPECT_TRUE(domain->supportedOSes()->supportedOS(Model::macOS));
    EXPECT_EQ(domain->supportedPlatforms()->platforms(),
              (std::set<SupportedPlatform>{{Model::iOS, StageVersions{{Stage::introduction, "13.0"}}},
                                           {Model::tvOS, StageVersions{{Stage::introduction, "13.0"},
                                                                       {Stage::deprecation, "17.0"}}}}));
}

TEST(DomainAvailability, OlderKeysServeWhenTheExtendedFormatCannotBeDecoded) {
    const auto domain =
        domainWith({{"pfmx_supported_oses", Dictionary{{"iOS", Dictionary{{"pfmx_removed", 16}}}}},
                    {"pfm_quorlin_platforms", Array{"iOS", "watchOS"}},
                    {"pfm_quorlin_ios_introduction", "10.0"},
                    {"pfm_quorlin_macos_introduction", "10.12"}});
    EXPECT_FALSE(domain->supportedOSes());
    EXPECT_EQ(domain->supportedPlatforms()->platforms(),
              (std::set<SupportedPlatform>{{Model::iOS, StageVersions{{Stage::introduction, "10.0"}}},
                                           {Model::watchOS, std::nullopt}}));

    const auto versionsOnly = domainWith({{"pfm_quorlin_tvos_removal", "15.0"}});
    EXPECT_EQ(versionsOnly->supportedPlatforms()->platforms().size(), 4u);
    EXPECT_EQ(versionsOnly->supportedPlatforms()->versions(Model::tvOS),
              (StageVersions{{Stage::removal, "15.0"}}));
}

// Groups need two of them in the manifest, and two that get visible keys;
// the order array decides, and labels it doesn't name get no index.
TEST(DomainDisplayGroups, LabelsAndIndexesFollowGroupsOrderAndVisibility) {
    for (const Dictionary& c : test::dataCases(QStringLiteral("schema/display-groups.plist"))) {
        SCOPED_TRACE(c.string("case")->toStdString());
        Dictionary extra{{"pfm_quorlin_groups", c.value("pfm_quorlin_groups")}};
        if (c.contains("order"))
            extra.insert("pfm_quorlin_groups_order", c.value("order"));
        const auto domain = domainWith(extra, c.array("keys") ? *c.array("keys") : threeKeys);
        QMap<int, QString> labels;
        for (const Value& label : c.array("labels") ? *c.array("labels") : Array{})
            labels.insert(int(labels.size()), *label.toString());
        EXPECT_EQ(domain->displayGroupsLabelMap().value_or(QMap<int, QString>{}), labels);
        EXPECT_EQ(domain->displayGroupsLabelMap().has_value(), !labels.isEmpty());
        if (const Dictionary* indexes = c.dictionary("indexes")) {
            std::map<QString, int> expected;
            for (auto entry = indexes->begin(); entry != indexes->end(); ++entry)
                expected[entry.key()] = int(*entry.value().toInteger());
            EXPECT_EQ(groupIndexes(*domain), expected);
        }
    }
}
