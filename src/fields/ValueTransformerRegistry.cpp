#include "fields/ValueTransformerRegistry.h"

#include "fields/AppSelectorResultTypeToLocalizedStringValueTransformer.h"
#include "fields/ArrayToX500NameStringValueTransformer.h"
#include "fields/DataToHexStringValueTransformer.h"
#include "fields/IntegerNSNumberToBoolNSNumberValueTransformer.h"
#include "fields/IntegerToStringValueTransformer.h"
#include "fields/NumberArrayToStringArrayValueTransformer.h"
#include "fields/NumberOfRangeListToPrettyStringValueTransformer.h"
#include "fields/NumberRangeListToPrettyListValueTransformer.h"
#include "fields/OptionalStringToPopUpButtonIndexValueTransformer.h"
#include "fields/RealToStringValueTransformer.h"
#include "fields/StringEmptinessToBooleanValueTransformer.h"
#include "fields/StringOfRangeListToPrettyStringValueTransformer.h"
#include "fields/StringRangeListToPrettyListValueTransformer.h"
#include "fields/StringsArrayToCommaDelimitedStringValueTransformer.h"
#include "fields/TextStyleAttributedStringToCocoaAttributedStringValueTransformer.h"
#include "fields/UTF8DataToStringValueTransformer.h"

#include <QMap>

namespace quorlin {

namespace {

using Table = QMap<QString, std::shared_ptr<const ValueTransformer>>;

template <typename... Transformers>
Table makeTable() {
    Table table;
    (
        [&] {
            auto transformer = std::make_shared<const Transformers>();
            table.insert(transformer->name(), transformer);
        }(),
        ...);
    return table;
}

const Table& table() {
    static const Table registered = makeTable<
        IntegerToStringValueTransformer, RealToStringValueTransformer, UTF8DataToStringValueTransformer,
        DataToHexStringValueTransformer, IntegerNSNumberToBoolNSNumberValueTransformer,
        StringEmptinessToBooleanValueTransformer, NumberArrayToStringArrayValueTransformer,
        StringsArrayToCommaDelimitedStringValueTransformer, ArrayToX500NameStringValueTransformer,
        NumberOfRangeListToPrettyStringValueTransformer, StringOfRangeListToPrettyStringValueTransformer,
        NumberRangeListToPrettyListValueTransformer, StringRangeListToPrettyListValueTransformer,
        OptionalStringToPopUpButtonIndexValueTransformer,
        AppSelectorResultTypeToLocalizedStringValueTransformer,
        TextStyleAttributedStringToCocoaAttributedStringValueTransformer>();
    return registered;
}

} // namespace

std::shared_ptr<const ValueTransformer> ValueTransformerRegistry::transformer(const QString& name) {
    return table().value(name);
}

QStringList ValueTransformerRegistry::names() {
    return table().keys();
}

} // namespace quorlin
