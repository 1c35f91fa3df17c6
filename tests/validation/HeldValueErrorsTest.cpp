// What the fields say of values held from the file, and that a profile's
// check counts each of them.

#include "ValidationTestSupport.h"
#include "support/DataManifests.h"

#include "validation/ProfileValidation.h"

namespace quorlin::test {
namespace {

const QString keptUntilSetOrRemoved = QStringLiteral("; it is kept as it is until you set or remove it.");
const QString keptUntilRemoved = QStringLiteral("; it is kept as it is until you remove it.");

Payload::Pointer heldPayload() {
    return dataPayload("validation/held-values.plist",
                       {{"Enable", false},
                        {"Mode", "fast"},
                        {"Server", "s.example"},
                        {"Port", "80"},
                        {"Options", plist::Dictionary{{"Level", 2}, {"Vendor", true}}},
                        {"Hosts", plist::Array{"a", 2, plist::Dictionary{}}},
                        {"Mixed", plist::Array{"a", plist::Array{}}}});
}

TEST(HeldValueErrorsTest, EachHeldValueSaysWhatIsWrongAndThatItIsKept) {
    const auto payload = heldPayload();
    const std::pair<const char*, QString> expected[] = {
        {"Server", "The manifest leaves this key out while “Enable” is false and “Mode” is set; the file's "
                   "value is kept as it is until you set or remove it."},
        {"Port", "The file holds a string here, where the manifest wants an integer" + keptUntilSetOrRemoved},
        {"Options", "“Vendor” is not described by the manifest" + keptUntilRemoved},
        {"Hosts", "Item 2: The file holds an integer here, where the manifest wants a string" +
                      keptUntilSetOrRemoved + " (1 more value is kept the same way.)"},
        {"Mixed", "Item 2 fits none of the kinds of item the manifest describes" + keptUntilRemoved},
        {"Enable", ""},
    };
    for (const auto& [path, text] : expected)
        EXPECT_EQ(valueErrorAt(payload, path), text) << path;

    const auto errors = ProfileValidation::validatePayload(payload, nullptr);
    QStringList paths;
    for (const auto& error : errors)
        paths << error.keyPath;
    EXPECT_EQ(paths, QStringList({"Server", "Port", "Options", "Hosts", "Mixed"}));

    payload->keyAtPath("Port")->setValue(plist::Value(80));
    EXPECT_EQ(valueErrorAt(payload, "Port"), "");
}

} // namespace
} // namespace quorlin::test
