#include "plist/OpenStepReader.h"
#include "support/DataTrees.h"

#include <gtest/gtest.h>

#include <QStringEncoder>

using namespace quorlin::plist;

namespace {

Value readOrDie(const QByteArray& text) {
    const auto read = OpenStepReader::read(text);
    EXPECT_TRUE(read.hasValue()) << text.left(200).toStdString() << "\n  -> "
                                 << (read ? "" : read.error().toString().toStdString());
    return read ? *read : Value();
}

ParseError errorOf(const QByteArray& text, const ReadLimits& limits = {}) {
    const auto read = OpenStepReader::read(text, limits);
    EXPECT_FALSE(read.hasValue()) << text.left(200).toStdString() << "\n  read as "
                                  << (read ? read->debugDescription().toStdString() : "");
    return read ? ParseError{} : read.error();
}

// The value of a case in JSON: strings, arrays, dictionaries, and data as {"$data": hex}.
Value fromJson(const QJsonValue& json) {
    if (json.isArray()) {
        Array array;
        for (const QJsonValue& item : json.toArray())
            array.append(fromJson(item));
        return array;
    }
    const QJsonObject object = json.toObject();
    if (!json.isObject())
        return json.toString();
    if (object.contains("$data"))
        return QByteArray::fromHex(object["$data"].toString().toLatin1());
    Dictionary dictionary;
    for (auto entry = object.begin(); entry != object.end(); ++entry)
        dictionary.insert(entry.key(), fromJson(entry.value()));
    return dictionary;
}

} // namespace

// Strings, data, arrays and dictionaries, escapes, comments and strings
// files: each text and the value it reads as.
TEST(OpenStepValues, EachFormReadsAsItsValue) {
    const QJsonArray cases = quorlin::test::dataJson(QStringLiteral("plist/openstep-values.json")).toArray();
    ASSERT_GT(cases.size(), 30);
    for (const QJsonValue& c : cases)
        EXPECT_EQ(readOrDie(c["text"].toString().toUtf8()), fromJson(c["value"]))
            << c["rule"].toString().toStdString();
}

TEST(OpenStepText, Utf8AndUtf16WithByteOrderMarks) {
    const QString text = QStringLiteral("{ \"caf\u00e9\" = \"\U0001F600\"; }");
    const Value expected(Dictionary{{QStringLiteral("caf\u00e9"), QStringLiteral("\U0001F600")}});
    EXPECT_EQ(readOrDie(text.toUtf8()), expected);
    EXPECT_EQ(readOrDie("\xEF\xBB\xBF" + text.toUtf8()), expected);
    for (const auto encoding : {QStringEncoder::Utf16BE, QStringEncoder::Utf16LE}) {
        auto encoder = QStringEncoder(encoding, QStringEncoder::Flag::WriteBom);
        const QByteArray bytes = encoder.encode(text);
        EXPECT_EQ(readOrDie(bytes), expected);
    }
}

TEST(OpenStepErrors, ReportTheLineOfTheFault) {
    const QJsonArray cases = quorlin::test::dataJson(QStringLiteral("plist/openstep-errors.json")).toArray();
    ASSERT_GT(cases.size(), 20);
    for (const QJsonValue& c : cases) {
        SCOPED_TRACE(c["fault"].toString().toStdString());
        const ParseError error = errorOf(c["text"].toString().toUtf8());
        EXPECT_EQ(error.line, c["line"].toInt()) << error.toString().toStdString();
        EXPECT_FALSE(error.reason.isEmpty());
    }
}

TEST(OpenStepErrors, LinesCountEveryKindOfLineEnd) {
    EXPECT_EQ(errorOf("(\r\na,\r\nb\r\n@)").line, 4);
    EXPECT_EQ(errorOf("(\ra,\rb\r@)").line, 4);
    EXPECT_EQ(errorOf("(\na,\r\nb\r@)").line, 4);
}

TEST(OpenStepErrors, EmptyAndUndecodableInput) {
    EXPECT_FALSE(OpenStepReader::read(QByteArray()));
    const ParseError badUtf8 = errorOf("{\n a = b;\n c = \"\xC3\x28\";\n}");
    EXPECT_EQ(badUtf8.line, 3);
    EXPECT_EQ(errorOf("{ a = \"\xFF\"; }").line, 1);
}

TEST(OpenStepErrors, NestingIsLimited) {
    const auto nested = [](int depth) { return QByteArray(depth, '(') + "x" + QByteArray(depth, ')'); };
    EXPECT_TRUE(OpenStepReader::read(nested(512)));
    EXPECT_GT(errorOf(nested(513)).line, 0);
    EXPECT_GT(errorOf(QByteArray("{a=").repeated(200000)).line, 0);
    EXPECT_GT(errorOf(QByteArray(200000, '(')).line, 0);
    EXPECT_TRUE(OpenStepReader::read("{ a = { b = c; }; }", ReadLimits{2}));
    EXPECT_FALSE(OpenStepReader::read("{ a = { b = (c); }; }", ReadLimits{2}));
}
