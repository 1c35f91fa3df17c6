#include "ProgramFiles.h"
#include "SignatureBlobBuilder.h"

#include "apptools/RequirementDecompiler.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace quorlin::apptools;
using namespace quorlin::test::requirement;
using quorlin::test::ProgramFiles;

namespace {

// Content octets of object identifiers that Apple's certificates carry.
const QByteArray kDeveloperIdIntermediate = "2a864886f76364060206";
const QByteArray kDeveloperIdLeaf = "2a864886f7636406010d";
const QByteArray kHash = QByteArray::fromHex("00112233445566778899aabbccddeeff00112233");

struct Case {
    const char* name;
    QByteArray expression;
    const char* text;
};

QByteArray a() {
    return identifier("com.example.app");
}
QByteArray b() {
    return appleAnchor();
}
QByteArray c() {
    return certificateField(0, "subject.OU", equals("QRLN123456"));
}

const Case kCases[] = {
    {"identifier", identifier("com.example.app"), R"(identifier "com.example.app")"},
    {"bare word", identifier("bash"), "identifier bash"},
    {"quote in a value", identifier(R"(odd"name)"), R"(identifier "odd\"name")"},
    {"anchor apple", appleAnchor(), "anchor apple"},
    {"anchor apple generic", appleGenericAnchor(), "anchor apple generic"},
    {"leaf field", c(), "certificate leaf[subject.OU] = QRLN123456"},
    {"root field", certificateField(-1, "subject.CN", equals("Apple Root CA")),
     R"(certificate root[subject.CN] = "Apple Root CA")"},
    {"intermediate oid", certificateGeneric(1, kDeveloperIdIntermediate, exists()),
     "certificate 1[field.1.2.840.113635.100.6.2.6] /* exists */"},
    {"policy oid", certificatePolicy(0, "2a864886f763640501", exists()),
     "certificate leaf[policy.1.2.840.113635.100.5.1] /* exists */"},
    {"info key", infoField("CFBundleShortVersionString", atLeast("2.0")),
     R"(info[CFBundleShortVersionString] >= "2.0")"},
    {"info prefix", infoField("CFBundleVersion", beginsWith("1.")), R"(info[CFBundleVersion] = "1."*)"},
    {"entitlement key", entitlementField("com.apple.security.app-sandbox", exists()),
     R"(entitlement["com.apple.security.app-sandbox"] /* exists */)"},
    {"anchor hash", anchorHash(-1, kHash),
     R"(certificate root = H"00112233445566778899aabbccddeeff00112233")"},
    {"cdhash", codeDirectoryHash(kHash), R"(cdhash H"00112233445566778899aabbccddeeff00112233")"},
    {"trusted leaf", trusted(0), "certificate leaf trusted"},
    {"and binds tighter than or", either(both(a(), b()), c()),
     R"(identifier "com.example.app" and anchor apple or certificate leaf[subject.OU] = QRLN123456)"},
    {"or inside and", both(either(a(), b()), c()),
     R"((identifier "com.example.app" or anchor apple) and certificate leaf[subject.OU] = QRLN123456)"},
    {"or on the right of and", both(a(), either(b(), c())),
     R"(identifier "com.example.app" and (anchor apple or certificate leaf[subject.OU] = QRLN123456))"},
    {"not of a primary", both(a(), negated(b())), R"(identifier "com.example.app" and ! anchor apple)"},
    {"not of an or", negated(either(a(), b())), R"(! (identifier "com.example.app" or anchor apple))"},
    {"developer id designated requirement",
     both(both(both(identifier("com.example.app"), appleGenericAnchor()),
               certificateGeneric(1, kDeveloperIdIntermediate, exists())),
          both(certificateGeneric(0, kDeveloperIdLeaf, exists()), c())),
     R"(identifier "com.example.app" and anchor apple generic and )"
     R"(certificate 1[field.1.2.840.113635.100.6.2.6] /* exists */ and )"
     R"(certificate leaf[field.1.2.840.113635.100.6.1.13] /* exists */ and )"
     R"(certificate leaf[subject.OU] = QRLN123456)"},
};

class RequirementDecompilerTest : public ::testing::TestWithParam<Case> {};

} // namespace

TEST_P(RequirementDecompilerTest, DecodesTheEncodedExpressionToItsText) {
    EXPECT_EQ(RequirementDecompiler::decompileExpression(GetParam().expression),
              QString::fromUtf8(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Expressions, RequirementDecompilerTest, ::testing::ValuesIn(kCases),
                         [](const auto& info) {
                             QString name = QString::fromLatin1(info.param.name);
                             name.replace(QLatin1Char(' '), QLatin1Char('_'));
                             return name.toStdString();
                         });

TEST(RequirementDecompilerSetTest, TakesTheDesignatedRequirementAmongOthers) {
    const QByteArray requirements = set({{1, appleAnchor()}, {3, identifier("com.example.app")}});
    EXPECT_EQ(RequirementDecompiler::designatedRequirement(requirements),
              QStringLiteral(R"(identifier "com.example.app")"));
    EXPECT_EQ(RequirementDecompiler::designatedRequirement(set({{1, appleAnchor()}})), std::nullopt);
}

TEST(RequirementDecompilerSetTest, RefusesWhatDoesNotHoldTogether) {
    QByteArray deep = appleAnchor();
    for (int depth = 0; depth < 200; ++depth)
        deep = negated(deep);
    const QByteArray truncatedSet = set({{3, identifier("com.example.app")}}).chopped(4);
    const QList<QByteArray> expressions{
        {},                                                     // nothing at all
        identifier("com.example.app").chopped(4),               // data shorter than its length
        operation(0xFF),                                        // an operation nobody knows
        both(appleAnchor(), {}),                                // an and with one side
        operation(2) + ProgramFiles::bigEndianWord(0x7FFFFFFF), // a length past the end
        deep,                                                   // nesting without end
        certificateGeneric(1, "2a86", exists()),                // an OID cut inside an arc
    };
    for (const QByteArray& expression : expressions)
        EXPECT_EQ(RequirementDecompiler::decompileExpression(expression), std::nullopt)
            << expression.toHex().constData();
    EXPECT_EQ(RequirementDecompiler::designatedRequirement(truncatedSet), std::nullopt);
}
