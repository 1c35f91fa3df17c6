// Containers: arrays with one or several item prototypes, repetition bounds
// (which the model leaves to validation), and conventional versus custom
// dictionaries, read from values and written back.

#include "ModelTestSupport.h"

#include "model/PreferenceKey.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace quorlin::test;

plist::Value dict(std::initializer_list<std::pair<QString, plist::Value>> entries) {
    return plist::Value(plist::Dictionary(entries));
}

class ArraysAndDictionariesTest : public ::testing::Test {
protected:
    Payload::Pointer read(const plist::Dictionary& dictionary) {
        return Payload::make(fixtureDomain(QStringLiteral("everything")), nullptr, makeTestEnvironment(),
                             dictionary);
    }
    static plist::Value writtenValue(const Payload::Pointer& payload, const QString& name) {
        return payload->writeOutDictionary().value(name);
    }
};

TEST_F(ArraysAndDictionariesTest, ItemsTakeTheFirstPrototypeTheyFitAndOthersAreHeldInPlace) {
    const plist::Array mixed{
        "text",
        7,
        dict({{"Host", "h.example"}, {"Port", 443}}),
        true,                          // any number fits the integer prototype
        plist::Value(QByteArray("x")), // fits none
        dict({{"Unknown", 1}}),        // names a subkey the item prototype lacks
        plist::Value(plist::Date{10}), // fits none
    };
    const auto payload = read({{"Mixed", mixed}});
    const auto items = payload->keyAtPath("Mixed")->children();
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 4);
    EXPECT_EQ((*items)[0]->prototype().kind(), PFMKeyPrototype::Kind::string);
    EXPECT_EQ((*items)[1]->prototype().kind(), PFMKeyPrototype::Kind::integer);
    EXPECT_EQ((*items)[2]->prototype().kind(), PFMKeyPrototype::Kind::dictionary);
    EXPECT_EQ((*items)[3]->prototype().kind(), PFMKeyPrototype::Kind::integer);
    EXPECT_EQ(payload->keyAtPath("Mixed")->heldValues().items.size(), 3);
    EXPECT_EQ(writtenValue(payload, "Mixed"), plist::Value(mixed));
}

TEST_F(ArraysAndDictionariesTest, SingleItemPrototypeHoldsItemsOfAnotherClass) {
    const auto payload = read({{"Tags", plist::Array{"a", 3, "b"}}});
    EXPECT_EQ(payload->keyAtPath("Tags")->children()->size(), 3);
    EXPECT_TRUE((*payload->keyAtPath("Tags")->children())[1]->value().isAbsent());
    EXPECT_EQ(writtenValue(payload, "Tags"), plist::Value(plist::Array{"a", 3, "b"}));
}

TEST_F(ArraysAndDictionariesTest, ArrayWithoutItemPrototypeIsKeptRaw) {
    const plist::Array raw{1, "two", dict({{"three", 3.0}}), plist::Array{true}};
    const auto payload = read({{"Raw", raw}});
    EXPECT_TRUE(payload->keyAtPath("Raw")->value().plistValue());
    EXPECT_EQ(writtenValue(payload, "Raw"), plist::Value(raw));
}

TEST_F(ArraysAndDictionariesTest, EmptyArrayIsWrittenAndArrayOfWrongClassHeldUntilSet) {
    const auto payload = read({{"Tags", plist::Array{}}, {"Raw", "not an array"}});
    EXPECT_EQ(writtenValue(payload, "Tags"), plist::Value(plist::Array{}));
    EXPECT_TRUE(payload->keyAtPath("Raw")->value().isAbsent());
    EXPECT_EQ(writtenValue(payload, "Raw"), plist::Value("not an array"));

    payload->keyAtPath("Raw")->setEmptyValue();
    EXPECT_EQ(writtenValue(payload, "Raw"), plist::Value(plist::Array{}));
}

TEST_F(ArraysAndDictionariesTest, RepetitionBoundsNeitherTrimNorPad) {
    const auto domain = domainWithKeys({keyTree("Servers", "array",
                                                {{"pfm_repetition_min", 2},
                                                 {"pfm_repetition_max", 3},
                                                 {"pfm_subkeys", plist::Array{itemTree("string")}}}),
                                        keyTree("Backups", "array",
                                                {{"pfm_require", "always"},
                                                 {"pfm_repetition_min", 2},
                                                 {"pfm_subkeys", plist::Array{itemTree("string")}}})});
    const plist::Array five{"a", "b", "c", "d", "e"};
    const auto loaded =
        Payload::make(domain, nullptr, makeTestEnvironment(), plist::Dictionary{{"Servers", five}});
    EXPECT_EQ(loaded->keyAtPath("Servers")->children()->size(), 5);
    EXPECT_EQ(loaded->writeOutDictionary().value("Servers"), plist::Value(five));

    const auto fresh = Payload::make(domain, nullptr, makeTestEnvironment());
    EXPECT_TRUE(fresh->keyAtPath("Backups")->value().isAbsent());
    EXPECT_TRUE(fresh->keyAtPath("Backups")->required());
    EXPECT_FALSE(fresh->writeOutDictionary().contains("Backups"));
}

TEST_F(ArraysAndDictionariesTest, ConventionalDictionaryHoldsUndescribedEntries) {
    const plist::Value settings =
        dict({{"Mode", "fast"},
              {"Bogus", 1},
              {"Inner", dict({{"Flag", false}, {"Stray", "x"}, {"Levels", plist::Array{0.5, 1.5}}})}});
    const auto payload = read({{"Settings", settings}});
    EXPECT_EQ(writtenValue(payload, "Settings"), settings);
    EXPECT_TRUE(payload->keyAtPath("Settings.Inner")->heldValues().subkeys.contains("Stray"));
    EXPECT_EQ(*payload->keyAtPath("Settings.Inner.Flag")->value().plistValue(), plist::Value(false));
}

TEST_F(ArraysAndDictionariesTest, ConventionalDictionaryWithNothingWrittenIsLeftOut) {
    const auto payload = read({{"Settings", dict({{"Inner", dict({})}})}});
    EXPECT_EQ(writtenValue(payload, "Settings"), dict({{"Inner", dict({})}})) << "an empty one is kept";

    payload->keyAtPath("Settings.Inner.Levels")->setEmptyValue();
    EXPECT_EQ(writtenValue(payload, "Settings"), dict({{"Inner", dict({{"Levels", plist::Array{}}})}}));
    payload->keyAtPath("Settings.Inner")->setValue(PreferenceKeyValue());
    EXPECT_FALSE(payload->keyAtPath("Settings")->isWritingOut());
    EXPECT_FALSE(payload->writeOutDictionary().contains("Settings"));
}

TEST_F(ArraysAndDictionariesTest, CustomDictionariesAreWrittenWithEveryKey) {
    const plist::Value extra = dict({{"anything", 1}, {"nested", dict({{"deep", plist::Array{"x", 2.5}}})}});
    const plist::Value free = dict({{"alpha", "1"}, {"beta", 2}});
    const auto payload = read({{"Extra", extra}, {"Free", free}});
    EXPECT_EQ(writtenValue(payload, "Extra"), extra);
    EXPECT_EQ(writtenValue(payload, "Free"), free);
    EXPECT_FALSE(payload->keyAtPath("Extra")->children());
}

TEST_F(ArraysAndDictionariesTest, WrongClassesReadAsAbsent) {
    const auto payload = read({{"Count", "12"},
                               {"Ratio", 0.5},
                               {"EnableFeature", 1},
                               {"Settings", "x"},
                               {"Blob", "text"},
                               {"When", 3}});
    EXPECT_TRUE(payload->keyAtPath("Count")->value().isAbsent());
    EXPECT_TRUE(payload->keyAtPath("Blob")->value().isAbsent());
    EXPECT_TRUE(payload->keyAtPath("When")->value().isAbsent());
    EXPECT_TRUE(payload->keyAtPath("Settings")->value().isAbsent());
    EXPECT_FALSE(payload->keyAtPath("Settings.Mode"));
    // Numbers of any class are kept as they were written.
    EXPECT_EQ(writtenValue(payload, "EnableFeature"), plist::Value(1));
    EXPECT_EQ(writtenValue(payload, "Ratio"), plist::Value(0.5));
}

TEST_F(ArraysAndDictionariesTest, DisplayableSubkeysFlattenInPrototypeOrder) {
    const auto payload = read({});
    QStringList names;
    for (const auto& key : payload->keyAtPath("Settings")->displayableSubkeys())
        names.append(key->name());
    EXPECT_EQ(names, (QStringList{"Mode", "Limit", "Flag", "Levels"}));
}

TEST_F(ArraysAndDictionariesTest, RestoringDefaultsStopsAtTheFirstChildThatHasOne) {
    const auto domain = domainWithKeys(
        {keyTree("Pair", "dictionary",
                 {{"pfm_subkeys", plist::Array{keyTree("First", "string"),
                                               keyTree("Second", "string", {{"pfm_default", "b"}}),
                                               keyTree("Third", "string", {{"pfm_default", "c"}})}}})});
    const auto payload = Payload::make(domain, nullptr, makeTestEnvironment());
    EXPECT_TRUE(payload->keyAtPath("Pair")->restoreDefaultValues());
    EXPECT_EQ(*payload->keyAtPath("Pair.Second")->value().plistValue(), plist::Value("b"));
    EXPECT_TRUE(payload->keyAtPath("Pair.Third")->value().isAbsent());
    EXPECT_FALSE(payload->keyAtPath("Pair.First")->restoreDefaultValues());
}

TEST_F(ArraysAndDictionariesTest, DuplicateSharesNothingWithTheOriginal) {
    const auto payload = read({{"Settings", dict({{"Mode", "fast"}, {"Limit", 4}})}});
    const auto original = payload->keyAtPath("Settings");
    const auto copy = original->duplicateKey();
    EXPECT_EQ(copy->writeOutValue(), original->writeOutValue());
    copy->value().keyMap()->value("Mode")->setValue(plist::Value("slow"));
    EXPECT_EQ(*payload->keyAtPath("Settings.Mode")->value().plistValue(), plist::Value("fast"));

    const auto emptyCopy = payload->keyAtPath("Tags")->duplicateKey();
    EXPECT_TRUE(emptyCopy->value().isAbsent());
}

TEST_F(ArraysAndDictionariesTest, ExportOfContainerValuesReportsWhatWentWrong) {
    QTemporaryDir folder;
    const auto payload = read({{"Extra", dict({{"k", "v"}})}, {"Name", "n"}});
    const QString path = folder.filePath("extra.plist");
    EXPECT_EQ(payload->keyAtPath("Extra")->writeValueToFile(path), 0);
    EXPECT_EQ(readDictionary(path), (plist::Dictionary{{"k", "v"}}));
    EXPECT_EQ(payload->keyAtPath("Tags")->writeValueToFile(path), 1);
    EXPECT_EQ(payload->keyAtPath("Name")->writeValueToFile(path), 2);
    EXPECT_EQ(payload->keyAtPath("Settings")->writeValueToFile(path), 3);
    EXPECT_EQ(payload->keyAtPath("Extra")->writeValueToFile(folder.filePath("missing/extra.plist")), 4);
}

} // namespace
} // namespace quorlin
