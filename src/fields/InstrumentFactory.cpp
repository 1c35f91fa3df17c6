#include "fields/InstrumentFactory.h"

#include "fields/AppSelectorInstrumentController.h"
#include "fields/ArrayInstrumentController.h"
#include "fields/BooleanInstrumentController.h"
#include "fields/ComboBoxInstrumentController.h"
#include "fields/CustomPlistInstrumentController.h"
#include "fields/DataInstrumentController.h"
#include "fields/DateInstrumentController.h"
#include "fields/ImageInstrumentController.h"
#include "fields/IntegerInstrumentController.h"
#include "fields/PopUpButtonInstrumentController.h"
#include "fields/RealInstrumentController.h"
#include "fields/StringInstrumentController.h"
#include "fields/TextInstrumentController.h"

#include <array>

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;
using Types = InstrumentFactory::Types;

constexpr std::array<std::pair<Types, const char*>, 13> typeNames{{
    {Types::appSelector, "appSelector"},
    {Types::array, "array"},
    {Types::boolean, "boolean"},
    {Types::comboBox, "comboBox"},
    {Types::customPlist, "customPlist"},
    {Types::data, "data"},
    {Types::date, "date"},
    {Types::image, "image"},
    {Types::integer, "integer"},
    {Types::popUpButton, "popUpButton"},
    {Types::real, "real"},
    {Types::string, "string"},
    {Types::text, "text"},
}};

// What "pfm_quorlin_control_type" asks for, when the value's shape allows it.
std::optional<Types> requestedType(const PFMKeyPrototype& prototype, bool inTableCell) {
    const auto& controlType = prototype.controlType();
    if (!controlType)
        return std::nullopt;
    const Kind kind = prototype.kind();
    const auto& adapter = prototype.typeAdapter();
    if (controlType == QLatin1String("string") && StringInstrumentController::accepts(kind, adapter))
        return Types::string;
    if (controlType == QLatin1String("boolean") && BooleanInstrumentController::accepts(kind, adapter))
        return Types::boolean;
    if (controlType == QLatin1String("image") && kind == Kind::data && !inTableCell)
        return Types::image;
    if (controlType == QLatin1String("bundle-id") && kind == Kind::string)
        return Types::appSelector;
    if (controlType == QLatin1String("text") && kind == Kind::string && !inTableCell)
        return Types::text;
    return std::nullopt;
}

Types typeOfKind(Kind kind, bool inTableCell) {
    switch (kind) {
    case Kind::boolean:
        return Types::boolean;
    case Kind::integer:
        return Types::integer;
    case Kind::real:
        return Types::real;
    case Kind::string:
        return Types::string;
    case Kind::data:
        return Types::data;
    case Kind::date:
        return Types::date;
    case Kind::array:
        return inTableCell ? Types::customPlist : Types::array;
    case Kind::dictionary:
        return Types::customPlist;
    }
    return Types::string;
}

} // namespace

Types InstrumentFactory::type(const PFMKeyPrototype& prototype, bool inTableCell) {
    if (const auto requested = requestedType(prototype, inTableCell))
        return *requested;
    if (prototype.rangeList())
        return Types::popUpButton;
    if (prototype.suggestions() &&
        ComboBoxInstrumentController::accepts(prototype.kind(), prototype.typeAdapter()))
        return Types::comboBox;
    return typeOfKind(prototype.kind(), inTableCell);
}

std::unique_ptr<InstrumentController> InstrumentFactory::makeInstrument(Types type) {
    switch (type) {
    case Types::appSelector:
        return std::make_unique<AppSelectorInstrumentController>();
    case Types::array:
        return std::make_unique<ArrayInstrumentController>();
    case Types::boolean:
        return std::make_unique<BooleanInstrumentController>();
    case Types::comboBox:
        return std::make_unique<ComboBoxInstrumentController>();
    case Types::customPlist:
        return std::make_unique<CustomPlistInstrumentController>();
    case Types::data:
        return std::make_unique<DataInstrumentController>();
    case Types::date:
        return std::make_unique<DateInstrumentController>();
    case Types::image:
        return std::make_unique<ImageInstrumentController>();
    case Types::integer:
        return std::make_unique<IntegerInstrumentController>();
    case Types::popUpButton:
        return std::make_unique<PopUpButtonInstrumentController>();
    case Types::real:
        return std::make_unique<RealInstrumentController>();
    case Types::string:
        return std::make_unique<StringInstrumentController>();
    case Types::text:
        return std::make_unique<TextInstrumentController>();
    }
    return std::make_unique<StringInstrumentController>();
}

QString InstrumentFactory::rawValue(Types type) {
    for (const auto& [candidate, name] : typeNames) {
        if (candidate == type)
            return QString::fromLatin1(name);
    }
    return {};
}

std::optional<InstrumentFactory::Types> InstrumentFactory::typeFromRawValue(const QString& rawValue) {
    for (const auto& [type, name] : typeNames) {
        if (rawValue == QLatin1String(name))
            return type;
    }
    return std::nullopt;
}

} // namespace quorlin
