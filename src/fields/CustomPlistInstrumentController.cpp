#include "fields/CustomPlistInstrumentController.h"

#include "fields/ContainerValue.h"
#include "plist/PlistReader.h"

#include <QFile>

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;

InstrumentAlert importAlert(const char* text) {
    return {CustomPlistInstrumentController::importFailedTitle(), QString::fromUtf8(text)};
}

InstrumentAlert exportAlert(const QString& text) {
    return {CustomPlistInstrumentController::exportFailedTitle(), text};
}

} // namespace

void CustomPlistInstrumentController::setShowingButtons(bool showing) {
    m_showingButtons = showing;
    notifyChange();
}

QString CustomPlistInstrumentController::chooseButtonTitle() {
    return QStringLiteral("Choose Plist File...");
}

QString CustomPlistInstrumentController::importFailedTitle() {
    return QStringLiteral("Could not load plist file");
}

QString CustomPlistInstrumentController::exportFailedTitle() {
    return QStringLiteral("Could not save plist file");
}

bool CustomPlistInstrumentController::hasContent() const {
    const auto& key = representedPreferenceKey();
    if (!key)
        return false;
    const PreferenceKeyValue& value = key->value();
    if (const plist::Value* plain = value.plistValue()) {
        if (const auto* array = plain->array())
            return !array->isEmpty();
        if (const auto* dictionary = plain->dictionary())
            return !dictionary->isEmpty();
        return false;
    }
    if (const auto* keys = value.keyList())
        return !keys->isEmpty();
    if (const auto* keys = value.keyMap())
        return !keys->isEmpty();
    return false;
}

QString CustomPlistInstrumentController::explanatoryText() const {
    const auto& key = representedPreferenceKey();
    const bool isArray = key && key->prototype().kind() == Kind::array;
    if (isArray)
        return hasContent()
                   ? QStringLiteral("This property is set to a custom array.")
                   : QStringLiteral("This property accepts a custom array loaded from a plist file.");
    return hasContent()
               ? QStringLiteral("This property is set to a custom key-value dictionary.")
               : QStringLiteral(
                     "This property accepts a custom key-value dictionary loaded from a plist file.");
}

std::optional<InstrumentAlert>
CustomPlistInstrumentController::checkImportedRoot(const plist::Value& root) const {
    const auto& key = representedPreferenceKey();
    const Kind kind = key ? key->prototype().kind() : Kind::string;
    if (kind == Kind::dictionary && !root.isDictionary())
        return importAlert("The root element of the selected plist file is not a dictionary.");
    if (kind == Kind::array && !root.isArray())
        return importAlert("The root element of the selected plist file is not an array.");
    if (kind != Kind::dictionary && kind != Kind::array)
        return importAlert("This preference key does not represent a container property like an array or a "
                           "dictionary which can be loaded from plist.");
    const bool declaresContent = !key->prototype().subkeys().isEmpty() &&
                                 key->prototype().representedDictionary() !=
                                     PFMKeyPrototype::RepresentableDictionary::customDictionary;
    if (declaresContent && !key->prototype().matchesValue(root))
        return importAlert("The loaded plist does not match the specification of this property");
    return std::nullopt;
}

std::optional<InstrumentAlert> CustomPlistInstrumentController::importFile(const QString& filePath) {
    const auto& key = representedPreferenceKey();
    if (!key)
        return std::nullopt;
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return importAlert("The selected file could not be loaded because of a system error.");
    const auto read = plist::PlistReader::read(file.readAll());
    if (!read)
        return importAlert("The selected plist file could not be parsed correctly.");
    if (auto refusal = checkImportedRoot(read->root))
        return refusal;
    writeValue(ContainerValue::make(key, read->root));
    notifyChange();
    return std::nullopt;
}

std::optional<InstrumentAlert> CustomPlistInstrumentController::exportToFile(const QString& filePath) const {
    const auto& key = representedPreferenceKey();
    if (!key)
        return std::nullopt;
    const int result = key->writeValueToFile(filePath);
    if (result == 0)
        return std::nullopt;
    if (result == 4)
        return exportAlert(QStringLiteral("The plist file could not be written in the provided location."));
    if (key->prototype().kind() == Kind::array)
        return exportAlert(QStringLiteral("The custom array could not be converted to a plist."));
    return exportAlert(QStringLiteral("The custom dictionary could not be converted to a plist."));
}

void CustomPlistInstrumentController::remove() {
    writeValue({});
    notifyChange();
}

void CustomPlistInstrumentController::bindValue() {
    bind(ValueBinding::Role::value, QStringLiteral("value"), {});
}

} // namespace quorlin
