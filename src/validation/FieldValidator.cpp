#include "validation/FieldValidator.h"

#include "plist/Utilities.h"
#include "schema/SupportedPlatforms.h"
#include "validation/ByteCountFormatter.h"
#include "validation/HeldValueWords.h"

#include <QRegularExpression>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace quorlin {

namespace {

using Kind = PFMKeyPrototype::Kind;
using Stage = PFMSupportedPlatforms::LifeCycleStage;
using Model = PFMSupportedPlatforms::Model;

namespace text {
const QString fieldEmpty = QStringLiteral("This field must have a value set.");
const QString numberBelowMinimum =
    QStringLiteral("The entered number is lower than the minimum for this field.");
const QString numberAboveMaximum =
    QStringLiteral("The entered number is higher than the maximum for this field.");
const QString stringLengthBelowMinimum =
    QStringLiteral("The string has %1 character(s), which is smaller than the minimum of %2.");
const QString stringLengthAboveMaximum =
    QStringLiteral("The string has %1 character(s), which is larger than the maximum of %2.");
const QString dataSizeBelowMinimum =
    QStringLiteral("The data size is %1, which is smaller than the minimum of %2.");
const QString dataSizeAboveMaximum =
    QStringLiteral("The data size is %1, which is larger than the maximum of %2.");
const QString arraySizeBelowMinimum =
    QStringLiteral("The array must contain at least %1 item(s), but it contains %2.");
const QString arraySizeAboveMaximum =
    QStringLiteral("The array must contain no more than %1 item(s), but it contains %2.");
const QString arrayItemInvalid = QStringLiteral("One of the table items is invalid.");
const QString arrayItemsInvalid = QStringLiteral("%1 items of the table are invalid.");
const QString arrayItemRepetitionMinInvalid =
    QStringLiteral("The array contains less than the minimum number of %1 %2item(s)");
const QString arrayItemRepetitionMaxInvalid =
    QStringLiteral("The array contains more than the maximum number of %1 %2item(s)");
const QString repetitionUntitledSubkey = QStringLiteral("certain");
const QString nonCustomArrayContainsCustomItems = QStringLiteral("The array contains incompatible items");
const QString dictionaryItemInvalid = QStringLiteral("One of the dictionary items is invalid.");
const QString outOfRange =
    QStringLiteral("The entered information is not among the allowed options for this field.");
const QString outOfRangeBoolean = QStringLiteral("This field's value can only be '%1'.");
const QString x500NameInvalid =
    QStringLiteral("The entered information does not represent a valid X.500 name string.");
const QString incorrectFormat =
    QStringLiteral("The entered information is not in the correct format for this field.");

const QString wasIntroducedInAfterMaximum =
    QStringLiteral("was introduced in %1 %2, after your maximum target of %3");
const QString wasIntroducedInAfterMinimum =
    QStringLiteral("was introduced in %1 %2, after your minimum target");
const QString wasDeprecatedOnMinimum = QStringLiteral("was deprecated in %1 %2, %3your minimum target");
const QString wasDeprecatedOnMaximum = QStringLiteral("was deprecated in %1 %2, %3your maximum target");
const QString wasRemovedInMinimum = QStringLiteral("was removed in %1 %2, %3your minimum target");
const QString wasRemovedInMaximum = QStringLiteral("was removed in %1 %2, %3your maximum target");
const QString targetOfVersion = QStringLiteral("%1 of %2");
const QString aheadOf = QStringLiteral("ahead of ");
const QString noSupportOn = QStringLiteral("is not supported on %1");
const QString thePreference = QStringLiteral("The preference %1.");
const QString supervisionRequired = QStringLiteral("This preference key requires devices to be supervised.");
} // namespace text

// --- Reading values and ranges; anything of the wrong type reads as nothing.

template <typename T, typename Read>
std::optional<QList<T>> readList(const std::optional<plist::Array>& list, Read read) {
    if (!list)
        return std::nullopt;
    QList<T> values;
    for (const plist::Value& entry : *list) {
        const auto value = read(entry);
        if (!value)
            return std::nullopt;
        values.append(*value);
    }
    return values;
}

const plist::Value* plainValue(const PreferenceKey& key) {
    return key.value().plistValue();
}

bool isEmptyValue(const PreferenceKeyValue& value) {
    if (const auto* keys = value.keyMap())
        return keys->isEmpty();
    const plist::Value* plain = value.plistValue();
    if (!plain)
        return false;
    if (const auto string = plain->toString())
        return string->isEmpty();
    if (const auto data = plain->toData())
        return data->isEmpty();
    if (const auto* dictionary = plain->dictionary())
        return dictionary->isEmpty();
    return false;
}

qsizetype graphemeCount(const QString& string) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, string);
    qsizetype count = 0;
    while (finder.toNextBoundary() > 0)
        ++count;
    return count;
}

// --- The tests of each kind.

std::optional<QString> booleanError(const PFMKeyPrototype& prototype, const plist::Value& value) {
    const auto number = value.numberAsReal();
    if (!number)
        return std::nullopt;
    const bool held = *number != 0;
    const auto allowed =
        readList<bool>(prototype.rangeList(), [](const plist::Value& v) { return v.toBoolean(); });
    if (!allowed || allowed->contains(held))
        return std::nullopt;
    if (allowed->size() == 1)
        return text::outOfRangeBoolean.arg(allowed->first() ? QStringLiteral("true")
                                                            : QStringLiteral("false"));
    return text::outOfRange;
}

std::optional<QString> integerError(const PFMKeyPrototype& prototype, const plist::Value& value) {
    const auto number = value.numberAsInteger();
    if (!number)
        return std::nullopt;
    if (prototype.rangeMin() && *number < *prototype.rangeMin())
        return text::numberBelowMinimum;
    if (prototype.rangeMax() && *number > *prototype.rangeMax())
        return text::numberAboveMaximum;
    const auto allowed =
        readList<qint64>(prototype.rangeList(), [](const plist::Value& v) { return v.numberAsInteger(); });
    if (allowed && !allowed->contains(*number))
        return text::outOfRange;
    return std::nullopt;
}

std::optional<QString> realError(const PFMKeyPrototype& prototype, const plist::Value& value) {
    const auto number = value.numberAsReal();
    if (!number)
        return std::nullopt;
    if (prototype.rangeMin() && *number < double(*prototype.rangeMin()))
        return text::numberBelowMinimum;
    if (prototype.rangeMax() && *number > double(*prototype.rangeMax()))
        return text::numberAboveMaximum;
    const auto allowed =
        readList<double>(prototype.rangeList(), [](const plist::Value& v) { return v.numberAsReal(); });
    if (allowed && !allowed->contains(*number))
        return text::outOfRange;
    return std::nullopt;
}

// A pattern must match exactly once: a second match means the string holds
// more than the one thing the field asks for. The search covers as many
// UTF-16 units as the string has characters, as the manifests' own tools
// do, so that a field judged valid there is judged valid here.
bool matchesFormatOnce(const QString& format, const QString& string, qsizetype characters) {
    const QRegularExpression expression(format);
    if (!expression.isValid())
        return true;
    int matches = 0;
    auto iterator = expression.globalMatch(string.left(characters));
    while (iterator.hasNext() && matches < 2) {
        iterator.next();
        ++matches;
    }
    return matches == 1;
}

std::optional<QString> stringError(const PFMKeyPrototype& prototype, const plist::Value& value) {
    const auto string = value.toString();
    if (!string)
        return std::nullopt;
    const qsizetype length = graphemeCount(*string);
    if (prototype.format() && !matchesFormatOnce(*prototype.format(), *string, length))
        return text::incorrectFormat;
    if (prototype.rangeMin() && length < *prototype.rangeMin())
        return text::stringLengthBelowMinimum.arg(length).arg(*prototype.rangeMin());
    if (prototype.rangeMax() && length > *prototype.rangeMax())
        return text::stringLengthAboveMaximum.arg(length).arg(*prototype.rangeMax());
    const auto allowed =
        readList<QString>(prototype.rangeList(), [](const plist::Value& v) { return v.toString(); });
    if (allowed && !allowed->contains(*string))
        return text::outOfRange;
    return std::nullopt;
}

std::optional<QString> dataError(const PFMKeyPrototype& prototype, const plist::Value& value) {
    const auto data = value.toData();
    if (!data)
        return std::nullopt;
    const qint64 size = data->size();
    if (prototype.rangeMin() && size < *prototype.rangeMin())
        return text::dataSizeBelowMinimum.arg(ByteCountFormatter::fileStyle(size),
                                              ByteCountFormatter::fileStyle(*prototype.rangeMin()));
    if (prototype.rangeMax() && size > *prototype.rangeMax())
        return text::dataSizeAboveMaximum.arg(ByteCountFormatter::fileStyle(size),
                                              ByteCountFormatter::fileStyle(*prototype.rangeMax()));
    return std::nullopt;
}

QString repetitionTitleFragment(const PFMKeyPrototype& prototype, const PFMKeyPrototype& subkey) {
    if (prototype.subkeys().size() < 2)
        return QString();
    const QString title = subkey.title().isEmpty() ? text::repetitionUntitledSubkey : subkey.title();
    return title + QLatin1Char(' ');
}

std::optional<QString> repetitionError(const PFMKeyPrototype& prototype,
                                       const PreferenceKey::KeyList& items) {
    qsizetype accounted = 0;
    for (const auto& subkey : prototype.subkeys()) {
        const qint64 minimum = subkey->repetitionMin().value_or(subkey->required() ? 1 : 0);
        const qint64 count =
            std::count_if(items.begin(), items.end(), [&](const PreferenceKey::Pointer& item) {
                return item && item->prototypePointer() == subkey;
            });
        if (count < minimum)
            return text::arrayItemRepetitionMinInvalid.arg(minimum).arg(
                repetitionTitleFragment(prototype, *subkey));
        if (subkey->repetitionMax() && *subkey->repetitionMax() < count)
            return text::arrayItemRepetitionMaxInvalid.arg(*subkey->repetitionMax())
                .arg(repetitionTitleFragment(prototype, *subkey));
        accounted += count;
    }
    if (accounted != items.size())
        return text::nonCustomArrayContainsCustomItems;
    return std::nullopt;
}

std::optional<QString> arrayError(const PreferenceKey& key) {
    const PFMKeyPrototype& prototype = key.prototype();
    const auto* items = key.value().keyList();
    const plist::Value* plain = plainValue(key);
    if (!items && !(plain && plain->array()))
        return std::nullopt;
    const qint64 count = items ? items->size() : plain->array()->size();
    if (prototype.rangeMin() && count < *prototype.rangeMin())
        return text::arraySizeBelowMinimum.arg(*prototype.rangeMin()).arg(count);
    if (prototype.rangeMax() && count > *prototype.rangeMax())
        return text::arraySizeAboveMaximum.arg(*prototype.rangeMax()).arg(count);
    if (!items)
        return std::nullopt;

    const qint64 invalid =
        std::count_if(items->begin(), items->end(), [](const PreferenceKey::Pointer& item) {
            return item && FieldValidator::valueError(*item).has_value();
        });
    if (invalid > 0) {
        if (prototype.controlType() == QStringLiteral("x500-arr"))
            return text::x500NameInvalid;
        return invalid == 1 ? text::arrayItemInvalid : text::arrayItemsInvalid.arg(invalid);
    }
    if (prototype.subkeys().isEmpty())
        return std::nullopt;
    return repetitionError(prototype, *items);
}

std::optional<QString> dictionaryError(const PreferenceKey& key) {
    const auto* subkeys = key.value().keyMap();
    if (!subkeys)
        return std::nullopt;
    const bool anyInvalid =
        std::any_of(subkeys->begin(), subkeys->end(), [](const PreferenceKey::Pointer& subkey) {
            return subkey && FieldValidator::valueError(*subkey).has_value();
        });
    return anyInvalid ? std::optional(text::dictionaryItemInvalid) : std::nullopt;
}

// Arrays and dictionaries may hold child keys; every other kind a plain value.
std::optional<QString> kindError(const PreferenceKey& key) {
    const PFMKeyPrototype& prototype = key.prototype();
    if (prototype.kind() == Kind::array)
        return arrayError(key);
    if (prototype.kind() == Kind::dictionary)
        return dictionaryError(key);
    const plist::Value* value = plainValue(key);
    if (!value)
        return std::nullopt;
    switch (prototype.kind()) {
    case Kind::boolean:
        return booleanError(prototype, *value);
    case Kind::integer:
        return integerError(prototype, *value);
    case Kind::real:
        return realError(prototype, *value);
    case Kind::string:
        return stringError(prototype, *value);
    case Kind::data:
        return dataError(prototype, *value);
    default:
        // Date limits can't be stated: the manifest's limits are integers.
        return std::nullopt;
    }
}

// --- Targets.

// "was deprecated in iOS 11.0, ahead of your minimum target of 12.0": the
// "ahead of" and the target's version are left out when the versions agree.
QString stageFragment(const QString& phrase, const QString& name, const QString& version,
                      const QString& target) {
    const bool same = Utilities::compareVersions(version, target) == 0;
    const QString ahead = same ? QString() : text::aheadOf;
    const QString fragment = phrase.arg(name, version, ahead);
    if (target.isEmpty() || ahead.isEmpty())
        return fragment;
    return text::targetOfVersion.arg(fragment, target);
}

QString platformDisplayName(Model model) {
    const QString name = PFMSupportedPlatforms::displayName(model);
    return name.isEmpty() ? PFMSupportedPlatforms::rawValue(model) : name;
}

} // namespace

std::shared_ptr<FieldValidator> FieldValidator::make(const PreferenceKey::Pointer& key) {
    std::shared_ptr<FieldValidator> validator(new FieldValidator(key));
    key->addObserver(validator);
    return validator;
}

FieldValidator::FieldValidator(PreferenceKey::Pointer key)
    : m_preferenceKey(std::move(key)) {}

FieldValidator::~FieldValidator() {
    m_preferenceKey->removeObserver(this);
}

void FieldValidator::validateValue() {
    m_valueValidationErrors.clear();
    if (auto error = valueError(*m_preferenceKey))
        m_valueValidationErrors.append(*error);
    updateProminentError();
}

void FieldValidator::validateSettings() {
    m_settingsValidationErrors.clear();
    const auto settings = m_validationSettings.lock();
    if (m_preferenceKey->isWritingOut() && settings)
        m_settingsValidationErrors = settingsErrors(*settings, *m_preferenceKey);
    updateProminentError();
}

void FieldValidator::requiredDidChange(bool wasRequired, bool isRequired) {
    if (wasRequired && !isRequired)
        validateValue();
}

void FieldValidator::writingOutDidChange() {
    validateSettings();
}

// An array is checked on each edit only while it shows a fault; otherwise
// its rows would be walked on every keystroke in one of them.
void FieldValidator::preferenceKeyValueDidChange(PreferenceKey&) {
    if (m_preferenceKey->prototype().kind() == Kind::array && m_valueValidationErrors.isEmpty())
        return;
    validateValue();
}

void FieldValidator::updateProminentError() {
    std::optional<QString> prominent;
    if (!m_valueValidationErrors.isEmpty())
        prominent = m_valueValidationErrors.first();
    else if (!m_settingsValidationErrors.isEmpty())
        prominent = m_settingsValidationErrors.first();
    const auto hasText = [](const std::optional<QString>& error) { return error && !error->isEmpty(); };
    const bool validityChanged = hasText(prominent) != hasText(m_prominentError);
    m_prominentError = prominent;
    if (validityChanged) {
        if (const auto delegate = m_delegate.lock())
            delegate->fieldValidatorValidityDidChange(*this);
    }
}

// What the file holds and the key can't bind comes first: it is what a
// save would keep against the manifest.
std::optional<QString> FieldValidator::valueError(const PreferenceKey& key) {
    if (auto held = HeldValueWords::fieldText(key))
        return held;
    if (key.required() && !key.excluded()) {
        if (key.value().isAbsent())
            return text::fieldEmpty;
        if (key.prototype().kind() != Kind::array && isEmptyValue(key.value()))
            return text::fieldEmpty;
    }
    if (key.value().isAbsent())
        return std::nullopt;
    return kindError(key);
}

QStringList FieldValidator::settingsErrors(const ValidationSettings& settings, const PreferenceKey& key) {
    const auto record = key.supportedPlatforms();
    QStringList fragments;
    QStringList unsupported;
    for (const Model model : PFMSupportedPlatforms::allModels) {
        if (!settings.targeting(model))
            continue;
        if (record && !record->contains(model))
            unsupported.append(platformDisplayName(model));
        else
            fragments.append(targetFragments(model, settings, key));
    }
    if (!unsupported.isEmpty())
        fragments.append(text::noSupportOn.arg(Utilities::joinedTermSeries(unsupported, true)));

    QStringList errors;
    if (!fragments.isEmpty())
        errors.append(text::thePreference.arg(Utilities::joinedTermSeries(fragments, false)));
    if (settings.supervisionInvalidates() && key.prototype().requiresSupervision())
        errors.append(text::supervisionRequired);
    return errors;
}

QStringList FieldValidator::targetFragments(Model platform, const ValidationSettings& settings,
                                            const PreferenceKey& key) {
    const auto record = key.supportedPlatforms();
    if (!record)
        return {};
    const QString minimum = settings.minimumVersion(platform);
    const QString maximum = settings.maximumVersion(platform);
    const QString name = platformDisplayName(platform);
    const bool deprecation = settings.deprecationInvalidates();
    const auto version = [&](Stage stage) {
        return record->versionOfStage(stage, platform).value_or(QString());
    };
    const auto reached = [&](const QString& target, Stage stage) {
        return record->hasReachedStage(platform, target, stage);
    };

    QStringList fragments;
    bool checkMaximumRemoval = true;
    bool deprecatedOnMinimum = false;
    if (!maximum.isEmpty() && record->isBeforeIntroduction(platform, maximum)) {
        fragments.append(text::wasIntroducedInAfterMaximum.arg(name, version(Stage::introduction), maximum));
        checkMaximumRemoval = false;
    } else if (!minimum.isEmpty() && record->isBeforeIntroduction(platform, minimum)) {
        // With no minimum there is no claim that older systems are aimed at,
        // so a key's introduction is no fault.
        const QString fragment = text::wasIntroducedInAfterMinimum.arg(name, version(Stage::introduction));
        fragments.append(text::targetOfVersion.arg(fragment, minimum));
    } else {
        if (deprecation && reached(minimum, Stage::deprecation)) {
            fragments.append(
                stageFragment(text::wasDeprecatedOnMinimum, name, version(Stage::deprecation), minimum));
            deprecatedOnMinimum = true;
        }
        if (reached(minimum, Stage::removal)) {
            fragments.append(
                stageFragment(text::wasRemovedInMinimum, name, version(Stage::removal), minimum));
            return fragments;
        }
    }
    if (checkMaximumRemoval && reached(maximum, Stage::removal)) {
        fragments.append(stageFragment(text::wasRemovedInMaximum, name, version(Stage::removal), maximum));
        return fragments;
    }
    if (!deprecatedOnMinimum && deprecation && reached(maximum, Stage::deprecation))
        fragments.append(
            stageFragment(text::wasDeprecatedOnMaximum, name, version(Stage::deprecation), maximum));
    return fragments;
}

} // namespace quorlin
