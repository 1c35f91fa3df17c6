#include "ui/InstrumentWidgetFactory.h"

#include "fields/ArrayInstrumentController.h"
#include "fields/BooleanInstrumentController.h"
#include "fields/FieldViewController.h"
#include "fields/InstrumentController.h"
#include "ui/ArrayInstrumentWidget.h"
#include "ui/BooleanInstrumentWidget.h"
#include "ui/ComboBoxInstrumentWidget.h"
#include "ui/DateInstrumentWidget.h"
#include "ui/FileInstrumentWidget.h"
#include "ui/NumberInstrumentWidget.h"
#include "ui/PopUpInstrumentWidget.h"
#include "ui/StringInstrumentWidget.h"
#include "ui/TextInstrumentWidget.h"

#include <QLabel>

namespace quorlin {

namespace {

using Types = InstrumentFactory::Types;

QWidget* makeInstrumentWidget(FieldViewController& field, InstrumentController& instrument, QWidget* parent) {
    switch (instrument.type()) {
    case Types::string:
        return new StringInstrumentWidget(field, instrument, parent);
    case Types::text:
        return new TextInstrumentWidget(field, instrument, parent);
    case Types::integer:
        return new NumberInstrumentWidget(field, instrument, false, parent);
    case Types::real:
        return new NumberInstrumentWidget(field, instrument, true, parent);
    case Types::boolean:
        if (auto* boolean = dynamic_cast<BooleanInstrumentController*>(&instrument))
            return new BooleanInstrumentWidget(field, *boolean, parent);
        return nullptr;
    case Types::popUpButton:
        return new PopUpInstrumentWidget(field, instrument, parent);
    case Types::comboBox:
        return new ComboBoxInstrumentWidget(field, instrument, parent);
    case Types::date:
        return new DateInstrumentWidget(field, instrument, parent);
    case Types::array:
        if (auto* array = dynamic_cast<ArrayInstrumentController*>(&instrument))
            return new ArrayInstrumentWidget(field, *array, parent);
        return nullptr;
    case Types::data:
    case Types::image:
    case Types::customPlist:
    case Types::appSelector:
        return new FileInstrumentWidget(field, instrument, parent);
    }
    return nullptr;
}

// An instrument whose controller isn't of its type's class has no control
// to show; a disabled label says so rather than leave a hole.
QWidget* makePlaceholder(InstrumentController& instrument, QWidget* parent) {
    auto* label =
        new QLabel(QStringLiteral("(%1)").arg(InstrumentFactory::rawValue(instrument.type())), parent);
    label->setEnabled(false);
    return label;
}

} // namespace

QWidget* InstrumentWidgetFactory::makeWidget(FieldViewController& field, InstrumentController& instrument,
                                             QWidget* parent) {
    QWidget* widget = makeInstrumentWidget(field, instrument, parent);
    if (!widget)
        widget = makePlaceholder(instrument, parent);
    const QString title = field.field()->prototype().title();
    widget->setAccessibleName(title.isEmpty() ? field.field()->name() : title);
    return widget;
}

} // namespace quorlin
