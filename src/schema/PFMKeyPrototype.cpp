#include "schema/PFMKeyPrototype.h"

#include "schema/ManifestFields.h"

#include <algorithm>
#include <array>

namespace quorlin {

namespace {

constexpr std::array allKinds{PFMKeyPrototype::Kind::boolean, PFMKeyPrototype::Kind::integer,
                              PFMKeyPrototype::Kind::real,    PFMKeyPrototype::Kind::string,
                              PFMKeyPrototype::Kind::data,    PFMKeyPrototype::Kind::date,
                              PFMKeyPrototype::Kind::array,   PFMKeyPrototype::Kind::dictionary};

QString withFirstLetterUpperCased(QString text) {
    if (!text.isEmpty())
        text[0] = text[0].toUpper();
    return text;
}

bool hasCapitalAfterFirstCharacter(const QString& name) {
    return std::any_of(name.begin() + std::min<qsizetype>(1, name.size()), name.end(),
                       [](QChar character) { return character.isUpper(); });
}

// A blank goes before a capital that ends a lower-case letter or a digit, and
// before the last capital of a run when a lower-case letter follows it
// ("HTTPServer" reads "HTTP Server").
bool startsWord(const QString& text, qsizetype index) {
    if (index == 0 || !text[index].isUpper())
        return false;
    const QChar previous = text[index - 1];
    if (previous.isLower() || previous.isDigit())
        return true;
    const bool followedByLowerCase = index + 1 < text.size() && text[index + 1].isLower();
    return previous.isUpper() && followedByLowerCase;
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

QString PFMKeyPrototype::titleFromKeyName(const QString& name) {
    if (std::any_of(name.begin(), name.end(), [](QChar character) { return character.isSpace(); }))
        return name;
    if (!name.contains(u'_') && !hasCapitalAfterFirstCharacter(name))
        return withFirstLetterUpperCased(name);

    QString spaced = name;
    spaced.replace(u'_', u' ');
    QString title;
    title.reserve(spaced.size() + spaced.size() / 4);
    for (qsizetype index = 0; index < spaced.size(); ++index) {
        if (startsWord(spaced, index))
            title.append(u' ');
        title.append(spaced[index]);
    }
    return withFirstLetterUpperCased(title);
}

std::shared_ptr<PFMKeyPrototype> PFMKeyPrototype::parse(const plist::Dictionary& dictionary,
                                                        bool allowsMissingName, int depth) {
    if (depth > maximumDepth)
        return nullptr;
    std::shared_ptr<PFMKeyPrototype> prototype(new PFMKeyPrototype());
    if (!prototype->readIdentity(dictionary, allowsMissingName))
        return nullptr;
    prototype->readValueRules(dictionary);
    prototype->readPresentation(dictionary);
    prototype->readAvailability(dictionary);
    prototype->readStructure(dictionary, depth);
    prototype->m_note = dictionary.string(QStringLiteral("pfm_quorlin_note"));
    prototype->m_representedDictionary = prototype->computeRepresentedDictionary();
    return prototype;
}

PFMKeyPrototype::MutableList PFMKeyPrototype::parseMutableSubkeyList(const plist::Array& array,
                                                                     bool allowsMissingName, int depth) {
    MutableList list;
    for (const plist::Value& element : array) {
        const plist::Dictionary* dictionary = element.dictionary();
        if (!dictionary)
            continue;
        if (auto prototype = parse(*dictionary, allowsMissingName, depth))
            list.append(std::move(prototype));
    }
    return list;
}

bool PFMKeyPrototype::readIdentity(const plist::Dictionary& dictionary, bool allowsMissingName) {
    const auto type = dictionary.string(QStringLiteral("pfm_type"));
    const auto kind = type ? kindFromRawValue(*type) : std::nullopt;
    if (!kind)
        return false;
    m_kind = *kind;

    m_name = dictionary.string(QStringLiteral("pfm_name"));
    if (!m_name && !allowsMissingName)
        return false;

    const auto title = dictionary.string(QStringLiteral("pfm_title"));
    m_title = title ? *title : (m_name ? titleFromKeyName(*m_name) : QString());
    // Manifests write line breaks of descriptions as the two characters "\n".
    m_descriptionLine = dictionary.string(QStringLiteral("pfm_description")).value_or(QString());
    m_descriptionLine.replace(QStringLiteral("\\n"), QStringLiteral("\n"));
    return true;
}

void PFMKeyPrototype::readValueRules(const plist::Dictionary& dictionary) {
    m_format = dictionary.string(QStringLiteral("pfm_format"));
    m_rangeMin = ManifestFields::integerValue(dictionary, QStringLiteral("pfm_range_min"));
    m_rangeMax = ManifestFields::integerValue(dictionary, QStringLiteral("pfm_range_max"));
    m_rangeList = ManifestFields::array(dictionary, QStringLiteral("pfm_range_list"));
    m_suggestions = ManifestFields::array(dictionary, QStringLiteral("pfm_quorlin_suggestions"));
    readConditionals(dictionary);
    m_required = ManifestFields::isRequiredAlways(dictionary);

    const plist::Value& defaultValue = dictionary.value(QStringLiteral("pfm_default"));
    if (isOfPlistClass(defaultValue, m_kind))
        m_defaultValue = defaultValue;
}

void PFMKeyPrototype::readConditionals(const plist::Dictionary& dictionary) {
    const auto readRules = [&](const QString& key, bool isExclusion) {
        const plist::Array* rules = dictionary.array(key);
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
    readRules(QStringLiteral("pfm_conditionals"), false);
    readRules(QStringLiteral("pfm_exclude"), true);
}

void PFMKeyPrototype::readPresentation(const plist::Dictionary& dictionary) {
    m_userVisible = dictionary.boolean(QStringLiteral("pfm_quorlin_user_visible")).value_or(true);
    m_userEditable = dictionary.boolean(QStringLiteral("pfm_quorlin_user_editable")).value_or(true);
    m_sortingIndex = ManifestFields::integerValue(dictionary, QStringLiteral("pfm_quorlin_sorting_index"));
    m_defaultGenerate = dictionary.string(QStringLiteral("pfm_quorlin_default_generate"));
    m_ghost = dictionary.boolean(QStringLiteral("pfm_quorlin_ghost_key")).value_or(false);
    m_prettyRangeList =
        ManifestFields::dictionary(dictionary, QStringLiteral("pfm_quorlin_pretty_range_list"));
    m_valuePlaceholder = dictionary.string(QStringLiteral("pfm_quorlin_value_placeholder"));
    m_indentationLevel = dictionary.integer(QStringLiteral("pfm_quorlin_indentation_level")).value_or(0);
    m_controlType = dictionary.string(QStringLiteral("pfm_quorlin_control_type"));
    // An adapter converts for a particular control, so it means nothing without one.
    if (m_controlType)
        m_typeAdapter = dictionary.string(QStringLiteral("pfm_quorlin_type_adapter"));
}

void PFMKeyPrototype::readAvailability(const plist::Dictionary& dictionary) {
    if (const plist::Dictionary* supportedOSes =
            dictionary.dictionary(QStringLiteral("pfmx_supported_oses"))) {
        if (auto decoded = PFMXSupportedOSes::decode(*supportedOSes))
            m_supportedOSes = std::move(*decoded);
    }
    // The older keys are a fallback only: the extended format says more.
    if (!m_supportedOSes) {
        m_supportedModels = PFMSupportedPlatforms::readPlatformList(dictionary);
        m_lifeCycleVersions = PFMSupportedPlatforms::readLifeCycleVersions(dictionary);
    }
    m_requiresSupervision =
        dictionary.boolean(QStringLiteral("pfm_quorlin_supervision_required")).value_or(false);
    m_documentationURL = ManifestFields::url(dictionary, QStringLiteral("pfm_quorlin_documentation_url"));
}

void PFMKeyPrototype::readStructure(const plist::Dictionary& dictionary, int depth) {
    m_repetitionMin = dictionary.integer(QStringLiteral("pfm_repetition_min"));
    m_repetitionMax = dictionary.integer(QStringLiteral("pfm_repetition_max"));
    if (const plist::Array* subkeys = dictionary.array(QStringLiteral("pfm_subkeys"))) {
        // Only the items of an array are nameless: they are written by position.
        for (auto& subkey : parseMutableSubkeyList(*subkeys, m_kind == Kind::array, depth + 1))
            m_subkeys.append(std::move(subkey));
    }
    if (m_kind == Kind::data)
        readFileRestrictions(dictionary);
}

void PFMKeyPrototype::readFileRestrictions(const plist::Dictionary& dictionary) {
    const plist::Array* extensions = dictionary.array(QStringLiteral("pfm_quorlin_allowed_file_extensions"));
    if (extensions && !extensions->isEmpty()) {
        QStringList strings;
        for (const plist::Value& element : *extensions) {
            if (const auto extension = element.toString())
                strings.append(*extension);
        }
        m_allowedFileExtensions = strings;
    }
    const plist::Array* signatures = dictionary.array(QStringLiteral("pfm_quorlin_allowed_data_signatures"));
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
