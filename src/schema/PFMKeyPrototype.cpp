#include "schema/PFMKeyPrototype.h"

#include "schema/ManifestFields.h"
#include "schema/PFMKeyFields.h"

#include <algorithm>
#include <array>

namespace quorlin {

namespace {

using Field = PFMKeyFields::Field;

constexpr std::array allKinds{PFMKeyPrototype::Kind::boolean, PFMKeyPrototype::Kind::integer,
                              PFMKeyPrototype::Kind::real,    PFMKeyPrototype::Kind::string,
                              PFMKeyPrototype::Kind::data,    PFMKeyPrototype::Kind::date,
                              PFMKeyPrototype::Kind::array,   PFMKeyPrototype::Kind::dictionary};

QString withFirstLetterUpperCased(QString text) {
    if (!text.isEmpty())
        text[0] = text[0].toUpper();
    return text;
}

// Key names are read as if each "_" were a blank.
inline QChar spacedAt(const QChar* name, qsizetype index) {
    return name[index] == u'_' ? QChar(u' ') : name[index];
}

// A blank goes before a capital that ends a lower-case letter or a digit, and
// before the last capital of a run when a lower-case letter follows it
// ("HTTPServer" reads "HTTP Server").
inline bool startsWord(const QChar* name, qsizetype size, qsizetype index) {
    if (index == 0 || !spacedAt(name, index).isUpper())
        return false;
    const QChar previous = spacedAt(name, index - 1);
    if (previous.isLower() || previous.isDigit())
        return true;
    const bool followedByLowerCase = index + 1 < size && spacedAt(name, index + 1).isLower();
    return previous.isUpper() && followedByLowerCase;
}

// Manifests write line breaks of descriptions as the two characters "\n".
// One pass by hand: QString::replace sets up a string matcher on every call,
// and nearly every key has a description.
QString withLineBreaks(QString text) {
    const QChar* in = text.constData();
    const qsizetype size = text.size();
    qsizetype first = text.indexOf(u'\\');
    while (first >= 0 && (first + 1 == size || in[first + 1] != u'n'))
        first = text.indexOf(u'\\', first + 1);
    if (first < 0)
        return text;
    QString result(size, Qt::Uninitialized);
    QChar* out = result.data();
    std::copy(in, in + first, out);
    qsizetype written = first;
    for (qsizetype index = first; index < size; ++index) {
        if (in[index] == u'\\' && index + 1 < size && in[index + 1] == u'n') {
            out[written++] = u'\n';
            ++index;
        } else {
            out[written++] = in[index];
        }
    }
    result.truncate(written);
    return result;
}

} // namespace

std::shared_ptr<const PFMKeyPrototype> PFMKeyPrototype::make(const plist::Dictionary& dictionary,
                                                             bool allowsMissingName) {
    return parse(dictionary, allowsMissingName, 1);
}

PFMKeyPrototypeList PFMKeyPrototype::parseSubkeyList(const plist::Array& array, bool allowsMissingName) {
    PFMKeyPrototypeList list;
    for (auto& prototype : parseMutableSubkeyList(array, allowsMissingName, 1))
        list.append(std::move(prototype));
    return list;
}

std::shared_ptr<const PFMKeyPrototype> PFMKeyPrototype::makeEmpty() {
    std::shared_ptr<PFMKeyPrototype> prototype(new PFMKeyPrototype());
    prototype->m_name = QStringLiteral("EmptyPrototypePlaceholder");
    prototype->m_title = QStringLiteral("Empty prototype");
    prototype->m_descriptionLine = QStringLiteral("Empty prototype");
    prototype->m_kind = Kind::string;
    return prototype;
}

QString PFMKeyPrototype::rawValue(Kind kind) {
    switch (kind) {
    case Kind::boolean:
        return QStringLiteral("boolean");
    case Kind::integer:
        return QStringLiteral("integer");
    case Kind::real:
        return QStringLiteral("real");
    case Kind::string:
        return QStringLiteral("string");
    case Kind::data:
        return QStringLiteral("data");
    case Kind::date:
        return QStringLiteral("date");
    case Kind::array:
        return QStringLiteral("array");
    case Kind::dictionary:
        return QStringLiteral("dictionary");
    }
    return {};
}

std::optional<PFMKeyPrototype::Kind> PFMKeyPrototype::kindFromRawValue(const QString& rawValue) {
    for (const Kind kind : allKinds) {
        if (PFMKeyPrototype::rawValue(kind) == rawValue)
            return kind;
    }
    return std::nullopt;
}

bool PFMKeyPrototype::isOfPlistClass(const plist::Value& value, Kind kind) {
    switch (kind) {
    case Kind::boolean:
    case Kind::integer:
    case Kind::real:
        return value.numberAsReal().has_value();
    case Kind::string:
        return value.isString();
    case Kind::data:
        return value.isData();
    case Kind::date:
        return value.isDate();
    case Kind::array:
        return value.isArray();
    case Kind::dictionary:
        return value.isDictionary();
    }
    return false;
}

// Sized once and written in place: every key without a title of its own
// comes through here while a domain is built.
QString PFMKeyPrototype::titleFromKeyName(const QString& name) {
    const QChar* chars = name.constData();
    const qsizetype size = name.size();
    bool hasUnderscore = false;
    bool hasLaterCapital = false;
    for (qsizetype index = 0; index < size; ++index) {
        if (chars[index].isSpace())
            return name;
        hasUnderscore = hasUnderscore || chars[index] == u'_';
        hasLaterCapital = hasLaterCapital || (index > 0 && chars[index].isUpper());
    }
    if (!hasUnderscore && !hasLaterCapital)
        return withFirstLetterUpperCased(name);

    qsizetype blanks = 0;
    for (qsizetype index = 0; index < size; ++index)
        blanks += startsWord(chars, size, index) ? 1 : 0;
    QString title(size + blanks, Qt::Uninitialized);
    QChar* out = title.data();
    for (qsizetype index = 0; index < size; ++index) {
        if (startsWord(chars, size, index))
            *out++ = u' ';
        *out++ = spacedAt(chars, index);
    }
    return withFirstLetterUpperCased(std::move(title));
}

std::shared_ptr<PFMKeyPrototype> PFMKeyPrototype::parse(const plist::Dictionary& dictionary,
                                                        bool allowsMissingName, int depth) {
    if (depth > maximumDepth)
        return nullptr;
    const PFMKeyFields fields(dictionary);
    std::shared_ptr<PFMKeyPrototype> prototype(new PFMKeyPrototype());
    if (!prototype->readIdentity(fields, allowsMissingName))
        return nullptr;
    prototype->readValueRules(fields);
    prototype->readPresentation(fields);
    prototype->readAvailability(fields, dictionary);
    prototype->readStructure(fields, depth);
    prototype->m_note = fields.string(Field::note);
    prototype->m_representedDictionary = prototype->computeRepresentedDictionary();
    return prototype;
}

PFMKeyPrototype::MutableList PFMKeyPrototype::parseMutableSubkeyList(const plist::Array& array,
                                                                     bool allowsMissingName, int depth) {
    MutableList list;
    list.reserve(array.size());
    for (const plist::Value& element : array) {
        const plist::Dictionary* dictionary = element.dictionary();
        if (!dictionary)
            continue;
        if (auto prototype = parse(*dictionary, allowsMissingName, depth))
            list.append(std::move(prototype));
    }
    return list;
}

bool PFMKeyPrototype::readIdentity(const PFMKeyFields& fields, bool allowsMissingName) {
    const auto type = fields.string(Field::type);
    const auto kind = type ? kindFromRawValue(*type) : std::nullopt;
    if (!kind)
        return false;
    m_kind = *kind;

    m_name = fields.string(Field::name);
    if (!m_name && !allowsMissingName)
        return false;

    const auto title = fields.string(Field::title);
    m_title = title ? *title : (m_name ? titleFromKeyName(*m_name) : QString());
    m_descriptionLine = withLineBreaks(fields.string(Field::description).value_or(QString()));
    return true;
}

void PFMKeyPrototype::readValueRules(const PFMKeyFields& fields) {
    m_format = fields.string(Field::format);
    m_rangeMin = fields.value(Field::rangeMin).numberAsInteger();
    m_rangeMax = fields.value(Field::rangeMax).numberAsInteger();
    m_rangeList = ManifestFields::array(fields.value(Field::rangeList));
    m_suggestions = ManifestFields::array(fields.value(Field::suggestions));
    readConditionals(fields);
    m_required = ManifestFields::isRequiredAlways(fields.value(Field::require));

    const plist::Value& defaultValue = fields.value(Field::defaultValue);
    if (isOfPlistClass(defaultValue, m_kind))
        m_defaultValue = defaultValue;
}

void PFMKeyPrototype::readConditionals(const PFMKeyFields& fields) {
    const auto readRules = [&](Field field, bool isExclusion) {
        const plist::Array* rules = fields.array(field);
        if (!rules)
            return;
        for (const plist::Value& element : *rules) {
            const plist::Dictionary* ruleDictionary = element.dictionary();
            if (!ruleDictionary)
                continue;
            if (auto rule = PFMConditionalPrototype::make(*ruleDictionary, isExclusion))
                m_conditionalPrototypes.append(std::move(*rule));
        }
    };
    readRules(Field::conditionals, false);
    readRules(Field::exclude, true);
}

void PFMKeyPrototype::readPresentation(const PFMKeyFields& fields) {
    m_userVisible = fields.boolean(Field::userVisible).value_or(true);
    m_userEditable = fields.boolean(Field::userEditable).value_or(true);
    m_sortingIndex = fields.value(Field::sortingIndex).numberAsInteger();
    m_defaultGenerate = fields.string(Field::defaultGenerate);
    m_ghost = fields.boolean(Field::ghostKey).value_or(false);
    m_prettyRangeList = ManifestFields::dictionary(fields.value(Field::prettyRangeList));
    m_valuePlaceholder = fields.string(Field::valuePlaceholder);
    m_indentationLevel = fields.integer(Field::indentationLevel).value_or(0);
    m_controlType = fields.string(Field::controlType);
    // An adapter converts for a particular control, so it means nothing without one.
    if (m_controlType)
        m_typeAdapter = fields.string(Field::typeAdapter);
}

void PFMKeyPrototype::readAvailability(const PFMKeyFields& fields, const plist::Dictionary& dictionary) {
    if (const plist::Dictionary* supportedOSes = fields.dictionary(Field::supportedOSes)) {
        if (auto decoded = PFMXSupportedOSes::decode(*supportedOSes))
            m_supportedOSes = std::move(*decoded);
    }
    // The older keys are a fallback only: the extended format says more.
    if (!m_supportedOSes) {
        m_supportedModels = PFMSupportedPlatforms::platformListFrom(fields.value(Field::platforms));
        m_lifeCycleVersions = PFMSupportedPlatforms::readLifeCycleVersions(dictionary);
    }
    m_requiresSupervision = fields.boolean(Field::supervisionRequired).value_or(false);
    m_documentationURL = ManifestFields::url(fields.value(Field::documentationURL));
}

void PFMKeyPrototype::readStructure(const PFMKeyFields& fields, int depth) {
    m_repetitionMin = fields.integer(Field::repetitionMin);
    m_repetitionMax = fields.integer(Field::repetitionMax);
    if (const plist::Array* subkeys = fields.array(Field::subkeys)) {
        // Only the items of an array are nameless: they are written by position.
        for (auto& subkey : parseMutableSubkeyList(*subkeys, m_kind == Kind::array, depth + 1))
            m_subkeys.append(std::move(subkey));
    }
    if (m_kind == Kind::data)
        readFileRestrictions(fields);
}

void PFMKeyPrototype::readFileRestrictions(const PFMKeyFields& fields) {
    const plist::Array* extensions = fields.array(Field::allowedFileExtensions);
    if (extensions && !extensions->isEmpty()) {
        QStringList strings;
        for (const plist::Value& element : *extensions) {
            if (const auto extension = element.toString())
                strings.append(*extension);
        }
        m_allowedFileExtensions = strings;
    }
    const plist::Array* signatures = fields.array(Field::allowedDataSignatures);
    if (signatures && !signatures->isEmpty()) {
        QList<QByteArray> bytes;
        for (const plist::Value& element : *signatures) {
            if (const auto signature = element.toData())
                bytes.append(*signature);
        }
        m_allowedDataSignatures = bytes;
    }
}

PFMKeyPrototype::RepresentableDictionary PFMKeyPrototype::computeRepresentedDictionary() const {
    if (m_kind != Kind::dictionary)
        return RepresentableDictionary::notADictionary;
    if (m_subkeys.isEmpty())
        return RepresentableDictionary::customDictionary;
    // "{{key}}" and "{{value}}" are how a manifest describes a dictionary of free keys.
    if (m_subkeys.size() == 2) {
        const auto& first = m_subkeys[0]->m_name;
        const auto& second = m_subkeys[1]->m_name;
        const QString key = QStringLiteral("{{key}}");
        const QString value = QStringLiteral("{{value}}");
        if ((first == key && second == value) || (first == value && second == key))
            return RepresentableDictionary::customDictionary;
    }
    return RepresentableDictionary::conventionalDictionary;
}

std::optional<PFMKeyPrototype::SearchStrings> PFMKeyPrototype::collectSearchStrings() const {
    if (!m_name)
        return std::nullopt;
    SearchStrings strings;
    appendSearchStrings(strings);
    return strings;
}

void PFMKeyPrototype::appendSearchStrings(SearchStrings& strings) const {
    if (!m_name)
        return;
    strings.names.append(*m_name);
    strings.titles.append(m_title);
    strings.descriptions.append(m_descriptionLine);
    if (m_representedDictionary == RepresentableDictionary::customDictionary)
        return;
    for (const auto& subkey : m_subkeys)
        subkey->appendSearchStrings(strings);
}

bool PFMKeyPrototype::requiresSupervisionDeep() const {
    return m_requiresSupervision || std::any_of(m_subkeys.begin(), m_subkeys.end(), [](const auto& subkey) {
               return subkey->requiresSupervisionDeep();
           });
}

bool PFMKeyPrototype::matchesValue(const plist::Value& value) const {
    if (const plist::Dictionary* dictionary = value.dictionary(); dictionary && m_kind == Kind::dictionary) {
        if (m_representedDictionary == RepresentableDictionary::customDictionary)
            return true;
        const auto& entries = dictionary->map();
        return std::all_of(entries.keyValueBegin(), entries.keyValueEnd(), [&](const auto& entry) {
            const PFMKeyPrototype* subkey = firstSubkeyNamed(entry.first);
            return subkey && subkey->fits(entry.second);
        });
    }
    if (const plist::Array* array = value.array(); array && m_kind == Kind::array) {
        return std::all_of(array->begin(), array->end(), [&](const plist::Value& item) {
            return std::any_of(m_subkeys.begin(), m_subkeys.end(),
                               [&](const auto& subkey) { return subkey->fits(item); });
        });
    }
    return false;
}

const PFMKeyPrototype* PFMKeyPrototype::firstSubkeyNamed(const QString& name) const {
    for (const auto& subkey : m_subkeys) {
        if (subkey->m_name == name)
            return subkey.get();
    }
    return nullptr;
}

bool PFMKeyPrototype::fits(const plist::Value& value) const {
    if (m_kind == Kind::array || m_kind == Kind::dictionary)
        return matchesValue(value);
    return isOfPlistClass(value, m_kind);
}

} // namespace quorlin
