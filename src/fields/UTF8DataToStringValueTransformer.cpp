#include "fields/UTF8DataToStringValueTransformer.h"

#include <QStringDecoder>

namespace quorlin {

plist::Value UTF8DataToStringValueTransformer::transformedValue(const PreferenceKeyValue& value) const {
    const plist::Value* stored = value.plistValue();
    const auto data = stored ? stored->toData() : std::nullopt;
    if (!data)
        return {};
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(*data);
    if (decoder.hasError())
        return {};
    return text;
}

PreferenceKeyValue
UTF8DataToStringValueTransformer::reverseTransformedValue(const plist::Value& value) const {
    const auto text = value.toString();
    if (!text)
        return {};
    return plist::Value(text->toUtf8());
}

} // namespace quorlin
