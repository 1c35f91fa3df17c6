#include "workspace/FormTextRenderer.h"

#include "fields/ControlSide.h"
#include "fields/InstrumentController.h"
#include "fields/ValueBinding.h"
#include "workspace/PFMSection.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"

#include <QStringList>

namespace quorlin {

namespace {

QString quoted(const QString& text) {
    QString escaped = text;
    escaped.replace(QLatin1Char('\n'), QStringLiteral("\\n"));
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

QString describeValue(const PreferenceKey& key) {
    const PreferenceKeyValue& value = key.value();
    if (value.isAbsent())
        return QString();
    if (const auto* items = value.keyList())
        return QStringLiteral("%1 item(s)").arg(items->size());
    if (const auto* subkeys = value.keyMap())
        return QStringLiteral("%1 subkey(s)").arg(subkeys->size());
    const plist::Value& plistValue = *value.plistValue();
    if (const auto string = plistValue.toString())
        return quoted(*string);
    return plistValue.debugDescription();
}

// A control that only remembers what its binding asked it to show.
class RecordingControl : public ControlSide {
public:
    void showValue(const plist::Value&) override {}
    void showNullPlaceholder(const std::optional<plist::Value>& placeholder) override { shown = placeholder; }
    std::optional<plist::Value> shown;
};

// What the empty instrument shows in grey. An instrument without a view
// gets a stand-in control for the moment of asking, as a view would bind.
std::optional<QString> placeholder(const FieldViewController& field) {
    if (!field.field()->value().isAbsent() || field.instruments().isEmpty())
        return std::nullopt;
    InstrumentController& instrument = *field.instruments().first();
    std::optional<plist::Value> shown;
    if (instrument.isViewLoaded()) {
        if (const auto binding = instrument.valueBinding())
            shown = binding->options().nullPlaceholder;
    } else {
        RecordingControl control;
        instrument.attachControl(&control);
        shown = control.shown;
        instrument.attachControl(nullptr);
    }
    if (!shown || shown->isNull())
        return std::nullopt;
    if (const auto string = shown->toString())
        return *string;
    return shown->debugDescription();
}

} // namespace

QString FormTextRenderer::render(const PFMSection& section) {
    QString text = QStringLiteral("section %1 | %2")
                       .arg(quoted(section.sectionProperties().title), section.payloadsConfiguredString());
    if (const auto badge = section.errorCount())
        text += QStringLiteral(" | badge %1").arg(badge);
    text += QLatin1Char('\n');
    if (const PFMSectionViewController* form = section.sectionViewController())
        text += render(*form);
    else
        text += QStringLiteral("not enabled\n");
    return text;
}

QString FormTextRenderer::render(const PFMSectionViewController& form) {
    QString text = QStringLiteral("errors %1\n").arg(form.errorCount());
    int number = 0;
    for (const auto& payloadForm : form.payloadControllers()) {
        text += QStringLiteral("payload %1\n").arg(++number);
        text += render(*payloadForm);
    }
    return text;
}

QString FormTextRenderer::render(const PayloadViewController& form) {
    QStringList header;
    if (form.isTitleHidden())
        header << QStringLiteral("title hidden");
    else
        header << QStringLiteral("title %1%2")
                      .arg(quoted(form.title()),
                           form.isTitleEditable() ? QStringLiteral(" editable") : QString());
    header << (form.hasCollapseButton() ? QStringLiteral("collapsible") : QStringLiteral("fixed"));
    if (form.isCollapsed())
        header << QStringLiteral("collapsed");
    header << QStringLiteral("errors %1").arg(form.errorCount());
    QString text = QStringLiteral("  ") + header.join(QStringLiteral(" | ")) + QLatin1Char('\n');
    if (form.hasGroupSelector()) {
        QStringList groups;
        for (auto label = form.displayGroupsLabelMap().cbegin(); label != form.displayGroupsLabelMap().cend();
             ++label) {
            QString group = QStringLiteral("%1:%2").arg(label.key()).arg(label.value());
            if (label.key() == form.selectedGroup())
                group += QLatin1Char('*');
            if (form.groupBadges().contains(label.key()))
                group += QLatin1Char('!');
            groups << group;
        }
        text += QStringLiteral("  groups ") + groups.join(QStringLiteral(", ")) + QLatin1Char('\n');
    }
    if (const auto notice = form.unfamiliarPropertiesNotice())
        text += QStringLiteral("  notice ") + quoted(*notice) + QLatin1Char('\n');
    if (form.isNoFieldsDisplayedShown())
        text += QStringLiteral("  no fields displayed\n");
    for (const FormField& field : form.fieldViewControllers())
        text += renderField(form, field);
    return text;
}

QString FormTextRenderer::renderField(const PayloadViewController& form, const FormField& field) {
    Q_UNUSED(form)
    if (!field.key)
        return QStringLiteral("  - [signing]\n");
    const PreferenceKey& key = *field.key;
    QStringList parts;
    parts << QStringLiteral("%1 (%2) <%3>").arg(key.name(), key.prototype().title(), field.instrumentType());
    if (field.hidden)
        parts << QStringLiteral("hidden");
    if (!field.controller->isEnabled())
        parts << QStringLiteral("disabled");
    if (key.required())
        parts << QStringLiteral("required");
    if (key.isWritingOut())
        parts << QStringLiteral("out");
    if (const QString value = describeValue(key); !value.isEmpty())
        parts << QStringLiteral("value ") + value;
    else if (const auto hint = placeholder(*field.controller))
        parts << QStringLiteral("placeholder ") + quoted(*hint);
    if (const auto error = field.controller->error())
        parts << QStringLiteral("error ") + quoted(*error);
    return QStringLiteral("  - ") + parts.join(QStringLiteral(" | ")) + QLatin1Char('\n');
}

} // namespace quorlin
