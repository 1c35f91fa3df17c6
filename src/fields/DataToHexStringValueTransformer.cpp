#include "fields/DataToHexStringValueTransformer.h"

namespace quorlin {

plist::Value DataToHexStringValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    const auto data = stored ? stored->toData() : std::nullopt;
    if (!data)
        return {};
    QString text;
    for (const char byte : *data)
        text += QString::number(quint8(byte), 16);
    return text;
}

PreferenceKeyValue DataToHexStringValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto input = value.toString();
    if (!input)
        return {};
    QString text = input->toLower();
    if (text.startsWith(QLatin1String("0x")))
        text.remove(0, 2);
    if (text.isEmpty() || text.size() % 2 != 0)
        return {};
    QByteArray bytes;
    bytes.reserve(text.size() / 2);
    for (qsizetype at = 0; at < text.size(); at += 2) {
        bool ok = false;
        const uint byte = text.mid(at, 2).toUInt(&ok, 16);
        if (!ok || byte > 0xFF)
            return {};
        bytes.append(char(byte));
    }
    return plist::Value(bytes);
}

} // namespace quorlin
