#include "plist/Value.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <limits>

using namespace quorlin::plist;

TEST(ValueAccess, WrongClassCountsAsAbsent) {
    const Value string("text");
    EXPECT_EQ(string.toString(), QStringLiteral("text"));
    EXPECT_FALSE(string.toBoolean());
    EXPECT_FALSE(string.toInteger());
    EXPECT_FALSE(string.numberAsReal());
    EXPECT_EQ(string.array(), nullptr);
    EXPECT_EQ(string.dictionary(), nullptr);

    const Dictionary dictionary{{"flag", true}, {"count", 3}, {"name", "x"}};
    EXPECT_EQ(dictionary.boolean("flag"), true);
    EXPECT_FALSE(dictionary.string("flag"));
    EXPECT_FALSE(dictionary.integer("missing"));
    EXPECT_TRUE(dictionary.value("missing").isNull());
}

TEST(ValueAccess, NumberAccessAcceptsBooleansIntegersAndReals) {
    EXPECT_EQ(Value(true).numberAsInteger(), 1);
    EXPECT_EQ(Value(false).numberAsReal(), 0.0);
    EXPECT_EQ(Value(qint64(-7)).numberAsReal(), -7.0);
    EXPECT_EQ(Value(2.9).numberAsInteger(), 2);
    EXPECT_EQ(Value(-2.9).numberAsInteger(), -2);
    EXPECT_EQ(Value(1e300).numberAsInteger(), std::numeric_limits<qint64>::max());
    EXPECT_FALSE(Value("1").numberAsInteger());
}

TEST(ValueAccess, UnsignedIntegersAboveTheSignedRangeAreKept) {
    const quint64 big = std::numeric_limits<quint64>::max();
    const Value value = Value::fromUnsigned(big);
    EXPECT_TRUE(value.isUnsignedInteger());
    EXPECT_EQ(value.toUnsigned(), big);
    EXPECT_FALSE(value.toInteger());
    EXPECT_FALSE(Value::fromUnsigned(5).isUnsignedInteger());
    EXPECT_EQ(Value::fromUnsigned(5), Value(5));
    EXPECT_FALSE(Value(-1).toUnsigned());
    EXPECT_NE(Value::fromUnsigned(big), Value(qint64(-1)));
}

TEST(ValueEquality, IsDeepAndStrictAboutClass) {
    EXPECT_NE(Value(1), Value(1.0));
    EXPECT_NE(Value(1), Value(true));
    EXPECT_EQ(Value(0.0), Value(-0.0));
    EXPECT_NE(Value(QByteArray("a")), Value("a"));

    const Value a(Dictionary{{"k", Array{1, "two", Dictionary{{"x", 3.5}}}}});
    Value b(Dictionary{{"k", Array{1, "two", Dictionary{{"x", 3.5}}}}});
    EXPECT_EQ(a, b);
    b.mutableDictionary()->find("k")->mutableArray()->append(Value());
    EXPECT_NE(a, b);
}

TEST(ValueSharing, MutationDetachesCopies) {
    Value original(Array{1, 2});
    Value copy = original;
    copy.mutableArray()->append(3);
    EXPECT_EQ(original.array()->size(), 2);
    EXPECT_EQ(copy.array()->size(), 3);

    Value nested(Dictionary{{"inner", Dictionary{{"a", 1}}}});
    Value nestedCopy = nested;
    nestedCopy.mutableDictionary()->find("inner")->mutableDictionary()->insert("b", 2);
    EXPECT_EQ(nested.dictionary()->dictionary("inner")->size(), 1);
    EXPECT_EQ(nestedCopy.dictionary()->dictionary("inner")->size(), 2);
}

TEST(ValueDates, ConvertAcrossTheWholeRange) {
    for (const char* iso : {"1969-07-20T20:17:40Z", "2001-01-01T00:00:00Z", "2038-01-19T03:14:08Z",
                            "2262-04-12T00:00:00Z", "1600-03-01T12:00:00Z"}) {
        const QDateTime dateTime = QDateTime::fromString(QString::fromLatin1(iso), Qt::ISODate);
        ASSERT_TRUE(dateTime.isValid()) << iso;
        EXPECT_EQ(Date::fromDateTime(dateTime).toDateTime(), dateTime) << iso;
    }
    EXPECT_EQ(Date{0}.toDateTime().toString(Qt::ISODate), QStringLiteral("2001-01-01T00:00:00Z"));
}
