#include "fields/InfoPanelViewModel.h"

#include "fields/NumberStrings.h"
#include "fields/PrettyRangeList.h"
#include "validation/ByteCountFormatter.h"

#include <QLocale>

#include <algorithm>
#include <functional>

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;
using Model = PFMSupportedPlatforms::Model;
using Cell = AvailabilityItem::Cell;

QString capitalized(const QString& word) {
    return word.isEmpty() ? word : word.left(1).toUpper() + word.mid(1);
}

std::optional<QString> defaultValueText(const PFMKeyPrototype& prototype) {
    const auto& value = prototype.defaultValue();
    if (!value)
        return std::nullopt;
    if (const auto text = value->toString())
        return *text;
    if (prototype.kind() == Kind::boolean) {
        if (const auto number = value->numberAsReal())
            return *number != 0 ? QStringLiteral("true") : QStringLiteral("false");
    }
    return NumberStrings::stringValue(*value);
}

QString rangeListText(const PFMKeyPrototype& prototype) {
    const PrettyRangeList labels(prototype.prettyRangeList().value_or(plist::Dictionary()));
    QStringList texts;
    for (const plist::Value& value : *prototype.rangeList()) {
        std::optional<QString> raw;
        if (const auto boolean = value.toBoolean())
            raw = *boolean ? QStringLiteral("true") : QStringLiteral("false");
        else if (const auto text = value.toString())
            raw = *text;
        else
            raw = NumberStrings::stringValue(value);
        if (raw)
            texts.append(labels.label(*raw).value_or(*raw));
    }
    return texts.join(QStringLiteral(", "));
}

QString dateText(qint64 secondsSinceReferenceDate) {
    const QDateTime date = plist::Date{double(secondsSinceReferenceDate)}.toDateTime();
    return QLocale().toString(date.toLocalTime(), QLocale::ShortFormat);
}

// The sentence for a kind and its limits; nothing without limits.
std::optional<QString> limitsText(const PFMKeyPrototype& prototype) {
    const auto min = prototype.rangeMin();
    const auto max = prototype.rangeMax();
    const auto pick = [&](const char* both, const char* minOnly,
                          const char* maxOnly) -> std::optional<QString> {
        if (min && max)
            return QString::fromUtf8(both);
        if (min)
            return QString::fromUtf8(minOnly);
        if (max)
            return QString::fromUtf8(maxOnly);
        return std::nullopt;
    };
    const auto fill = [&](std::optional<QString> text, auto format) -> std::optional<QString> {
        if (!text)
            return std::nullopt;
        if (min && max)
            return text->arg(format(*min), format(*max));
        return text->arg(format(min ? *min : *max));
    };
    const auto integer = [](qint64 value) { return QString::number(value); };
    switch (prototype.kind()) {
    case Kind::integer:
        return fill(pick("Any integer number between %1 and %2.",
                         "Any integer number equal or larger than %1.",
                         "Any integer number equal or lesser than %1."),
                    integer);
    case Kind::real:
        return fill(pick("Any real number between %1 and %2.", "Any real number equal or larger than %1.",
                         "Any real number equal or lesser than %1."),
                    [](qint64 value) { return QString::asprintf("%f", double(value)); });
    case Kind::string:
        return fill(pick("Any string between %1 and %2 characters long.",
                         "Any string at least %1 characters long.",
                         "Any string no longer than %1 characters."),
                    integer);
    case Kind::data:
        return fill(pick("Any data stream between %1 and %2 bytes.", "Any data stream %1 or longer.",
                         "Any data stream no longer than %1."),
                    [](qint64 value) { return ByteCountFormatter::fileStyle(value); });
    case Kind::date:
        return fill(pick("Any date and time between %1 and %2.", "Any date and time on or after %1.",
                         "Any date and time on or before %1."),
                    dateText);
    default:
        return std::nullopt;
    }
}

std::optional<QString> repetitionText(const PFMKeyPrototype& prototype) {
    const auto min = prototype.repetitionMin();
    const auto max = prototype.repetitionMax();
    if (min && max)
        return QStringLiteral("Array with between %1 and %2 items.").arg(*min).arg(*max);
    if (min)
        return *min == 1 ? QStringLiteral("Array with a minimum of one item")
                         : QStringLiteral("Array with a minimum of %1 items").arg(*min);
    if (max)
        return *max == 1 ? QStringLiteral("Array with no more than one item.")
                         : QStringLiteral("Array with no more than %1 items").arg(*max);
    return std::nullopt;
}

// A string with a format: the sentence, then the expression in fixed pitch.
void setFormatText(InfoPanelViewModel& model, const PFMKeyPrototype& prototype) {
    const auto min = prototype.rangeMin();
    const auto max = prototype.rangeMax();
    QString lead;
    if (min && max)
        lead = QStringLiteral(
                   "Any string between %1 and %2 charachters long and matching the regular expression "
                   "format ")
                   .arg(*min)
                   .arg(*max);
    else if (min)
        lead = QStringLiteral(
                   "Any string at least %1 characters long and matching the regular expression format ")
                   .arg(*min);
    else if (max)
        lead = QStringLiteral(
                   "Any string no longer than %1 characters and matching the regular expression format ")
                   .arg(*max);
    else
        lead = QStringLiteral("Any string matching the regular expression format ");
    const QString& expression = *prototype.format();
    model.allowedValues = lead + expression;
    model.allowedValuesFixedPitchRange = TextRange{lead.size(), expression.size()};
}

void setAllowedValues(InfoPanelViewModel& model, const PFMKeyPrototype& prototype) {
    if (prototype.rangeList()) {
        model.allowedValues = rangeListText(prototype);
        return;
    }
    if (prototype.kind() == Kind::array) {
        model.allowedValues = repetitionText(prototype);
        return;
    }
    if (prototype.kind() == Kind::string && prototype.format()) {
        setFormatText(model, prototype);
        return;
    }
    model.allowedValues = limitsText(prototype);
}

std::optional<QString> sharedIPadText(const PFMXSharedIPad& record) {
    QString text = capitalized(PFMXSharedIPad::rawValue(record.mode));
    const bool device = record.deviceChannel.value_or(false);
    const bool user = record.userChannel.value_or(false);
    if (device && user)
        text += QStringLiteral(", supports both device and user MDM channels.");
    else if (device)
        text += QStringLiteral(", supports only the device MDM channel.");
    else if (user)
        text += QStringLiteral(", supports only the user MDM channel.");
    return text;
}

struct RowRule {
    const char* label;
    std::function<std::optional<Cell>(const PFMXSupportedOS&)> cell;
    bool marksEndOfLife = false;
};

std::optional<Cell> flag(const std::optional<bool>& value) {
    if (!value)
        return std::nullopt;
    return Cell(*value);
}

std::optional<Cell> version(const std::optional<QString>& value) {
    if (!value)
        return std::nullopt;
    return Cell(*value);
}

QList<RowRule> rowRules(bool forDomain) {
    QList<RowRule> rules{
        {"Introduced",
         [](const PFMXSupportedOS& os) {
             return os.introduced == QLatin1String("all") ? std::nullopt : version(os.introduced);
         }},
        {"Deprecated", [](const PFMXSupportedOS& os) { return version(os.deprecated); }, true},
        {"Removed", [](const PFMXSupportedOS& os) { return version(os.removed); }, true},
        {"Allows Multiple Payloads", [](const PFMXSupportedOS& os) { return flag(os.multiple); }},
        {"Device Channel", [](const PFMXSupportedOS& os) { return flag(os.deviceChannel); }},
        {"User Channel", [](const PFMXSupportedOS& os) { return flag(os.userChannel); }},
        {"Requires Supervision", [](const PFMXSupportedOS& os) { return flag(os.supervised); }},
        {"Requires ADE", [](const PFMXSupportedOS& os) { return flag(os.requiresDEP); }},
        {"User Approved MDM", [](const PFMXSupportedOS& os) { return flag(os.userApprovedMDM); }},
        // A key that may be installed by hand needs no MDM.
        {"Requires MDM Installation",
         [](const PFMXSupportedOS& os) -> std::optional<Cell> {
             if (!os.allowManualInstall)
                 return std::nullopt;
             return Cell(!*os.allowManualInstall);
         }},
        {"User Enrollment Behavior",
         [](const PFMXSupportedOS& os) -> std::optional<Cell> {
             if (!os.userEnrollment)
                 return std::nullopt;
             return Cell(capitalized(PFMXSharedIPad::rawValue(os.userEnrollment->mode)));
         }},
        {"Always Skippable", [](const PFMXSupportedOS& os) { return flag(os.alwaysSkippable); }},
    };
    const QString left = QString::fromUtf8(forDomain ? "Always Skippable" : "Allows Multiple Payloads");
    rules.removeIf([&](const RowRule& rule) { return left == QLatin1String(rule.label); });
    return rules;
}

bool isWorthARow(const AvailabilityItem& item) {
    return std::any_of(item.values.begin(), item.values.end(), [](const auto& entry) {
        const bool* boolean = std::get_if<bool>(&entry.second);
        return !boolean || *boolean;
    });
}

void setAvailability(InfoPanelViewModel& model, const QList<PFMXSupportedOSes>& entries, bool forDomain) {
    model.availabilityTable = QList<AvailabilityItem>();
    if (entries.isEmpty())
        return;
    const PFMXSupportedOSes& nearest = entries.first();
    for (const auto& [platform, os] : nearest.storage()) {
        if (!os.isNeverIntroduced())
            model.availabilityColumns.append(platform);
    }
    for (const RowRule& rule : rowRules(forDomain)) {
        AvailabilityItem item{QString::fromUtf8(rule.label), {}, rule.marksEndOfLife};
        for (const Model platform : model.availabilityColumns) {
            if (const auto cell = rule.cell(*nearest.supportedOS(platform)))
                item.values.emplace(platform, *cell);
        }
        if (isWorthARow(item))
            model.availabilityTable->append(item);
    }
    for (const auto& entry : nearest.storage()) {
        if (entry.second.sharedIPad)
            model.sharedIPadBehavior = sharedIPadText(*entry.second.sharedIPad);
        break;
    }
}

} // namespace

InfoPanelViewModel InfoPanelViewModel::make(const PreferenceKey& key) {
    const PFMKeyPrototype& prototype = key.prototype();
    InfoPanelViewModel model;
    model.title = prototype.title();
    model.name = prototype.name();
    model.type = PFMKeyPrototype::rawValue(prototype.kind());
    model.descriptionText = prototype.descriptionLine();
    model.defaultValue = defaultValueText(prototype);
    setAllowedValues(model, prototype);
    model.presence = key.required() ? QStringLiteral("Required") : QStringLiteral("Optional");
    setAvailability(model, key.collectSupportedOSes(), false);
    model.documentationURL = prototype.documentationURL();
    if (prototype.note())
        model.note = QStringLiteral("Community note: %1").arg(*prototype.note());
    return model;
}

InfoPanelViewModel InfoPanelViewModel::make(const PFMDomain& domain) {
    InfoPanelViewModel model;
    model.title = domain.title();
    model.name = domain.domainString();
    model.descriptionText = domain.descriptionline();
    QList<PFMXSupportedOSes> entries;
    if (domain.supportedOSes())
        entries.append(*domain.supportedOSes());
    setAvailability(model, entries, true);
    model.documentationURL = domain.documentationURL();
    model.note = domain.note();
    return model;
}

QString InfoPanelViewModel::columnIdentifier(Model model) {
    return QStringLiteral("os-column-") + PFMSupportedPlatforms::rawValue(model);
}

QString InfoPanelViewModel::presenceLabel() {
    return QStringLiteral("Presence");
}

QString InfoPanelViewModel::defaultLabel() {
    return QStringLiteral("Default");
}

QString InfoPanelViewModel::allowedValuesLabel() {
    return QStringLiteral("Allowed values");
}

QString InfoPanelViewModel::sharedIPadBehaviorLabel() {
    return QStringLiteral("Shared iPad Behavior");
}

QString InfoPanelViewModel::documentationButtonTitle() {
    return QStringLiteral("Documentation");
}

} // namespace quorlin
