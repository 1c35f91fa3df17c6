#include "supply/ThirdPartyManifest.h"

#include "supply/UniformTypeExtensions.h"

#include <QHash>
#include <QLocale>
#include <QSet>

#include <algorithm>
#include <memory>
#include <optional>

namespace quorlin {

namespace {

const QString subkeysKey = QStringLiteral("pfm_subkeys");
const QString platformsKey = QStringLiteral("pfm_platforms");
const QString quorlinPlatformsKey = QStringLiteral("pfm_quorlin_platforms");
const QString segmentsKey = QStringLiteral("pfm_segments");
const QString rangeListKey = QStringLiteral("pfm_range_list");
const QString rangeListTitlesKey = QStringLiteral("pfm_range_list_titles");
const QString allowCustomValueKey = QStringLiteral("pfm_range_list_allow_custom_value");
const QString requireKey = QStringLiteral("pfm_require");
const QString typeKey = QStringLiteral("pfm_type");
const QString nameKey = QStringLiteral("pfm_name");

QStringList stringsOf(const plist::Array& array) {
    QStringList strings;
    for (const plist::Value& element : array)
        if (const auto string = element.toString())
            strings.append(*string);
    return strings;
}

plist::Array arrayOf(const QStringList& strings) {
    plist::Array array;
    for (const QString& string : strings)
        array.append(string);
    return array;
}

bool isTrueNumber(const plist::Value& value) {
    const auto number = value.numberAsReal();
    return number && *number != 0;
}

QSet<QString> setOf(std::initializer_list<const char*> names) {
    QSet<QString> set;
    for (const char* name : names)
        set.insert(QString::fromLatin1(name));
    return set;
}

// Dialect keys whose values mean the same in the program's vocabulary, at
// both levels.
const QHash<QString, QString>& renamedLifeCycleKeys() {
    static const QHash<QString, QString> renamed = {
        {QStringLiteral("pfm_macos_min"), QStringLiteral("pfm_quorlin_macos_introduction")},
        {QStringLiteral("pfm_macos_deprecated"), QStringLiteral("pfm_quorlin_macos_deprecation")},
        {QStringLiteral("pfm_ios_min"), QStringLiteral("pfm_quorlin_ios_introduction")},
        {QStringLiteral("pfm_ios_deprecated"), QStringLiteral("pfm_quorlin_ios_deprecation")},
        {QStringLiteral("pfm_tvos_min"), QStringLiteral("pfm_quorlin_tvos_introduction")},
        {QStringLiteral("pfm_tvos_deprecated"), QStringLiteral("pfm_quorlin_tvos_deprecation")},
    };
    return renamed;
}

const QHash<QString, QString>& renamedManifestKeys() {
    static const QHash<QString, QString> renamed = [] {
        QHash<QString, QString> table = renamedLifeCycleKeys();
        table.insert(QStringLiteral("pfm_unique"), QStringLiteral("pfm_quorlin_single_payload"));
        table.insert(QStringLiteral("pfm_icon"), QStringLiteral("pfm_quorlin_icon"));
        table.insert(platformsKey, quorlinPlatformsKey);
        table.insert(QStringLiteral("pfm_supervised"), QStringLiteral("pfm_quorlin_supervision_required"));
        return table;
    }();
    return renamed;
}

const QSet<QString>& copiedManifestKeys() {
    static const QSet<QString> keys = setOf({
        "pfm_description",
        "pfm_title",
        "pfm_format_version",
        "pfm_version",
        "pfm_domain",
        "pfm_subkeys",
        "pfm_targets",
        "pfm_quorlin_sort_priority",
        "pfm_quorlin_single_payload",
        "pfm_quorlin_file_based_payload",
        "pfm_quorlin_payload_file_name_subkey",
        "pfm_quorlin_payload_file_data_subkey",
        "pfm_quorlin_icon",
        "pfm_quorlin_icon_is_template",
        "pfm_quorlin_groups",
        "pfm_quorlin_groups_order",
        "pfm_quorlin_platforms",
        "pfm_quorlin_macos_introduction",
        "pfm_quorlin_macos_deprecation",
        "pfm_quorlin_macos_removal",
        "pfm_quorlin_ios_introduction",
        "pfm_quorlin_ios_deprecation",
        "pfm_quorlin_ios_removal",
        "pfm_quorlin_tvos_introduction",
        "pfm_quorlin_tvos_deprecation",
        "pfm_quorlin_tvos_removal",
        "pfm_quorlin_category",
        "pfm_quorlin_supervision_required",
        "pfmx_supported_oses",
        "pfm_quorlin_last_modification",
    });
    return keys;
}

// What the key reader understands, so what may pass unchanged.
const QSet<QString>& copiedKeyLevelKeys() {
    static const QSet<QString> keys = setOf({
        "pfm_conditionals",
        "pfm_default",
        "pfm_description",
        "pfm_exclude",
        "pfm_format",
        "pfm_name",
        "pfm_repetition_max",
        "pfm_repetition_min",
        "pfm_require",
        "pfm_range_list",
        "pfm_range_max",
        "pfm_range_min",
        "pfm_subkeys",
        "pfm_targets",
        "pfm_title",
        "pfm_type",
        "pfm_quorlin_suggestions",
        "pfm_quorlin_user_visible",
        "pfm_quorlin_user_editable",
        "pfm_quorlin_sorting_index",
        "pfm_quorlin_default_generate",
        "pfm_quorlin_ghost_key",
        "pfm_quorlin_pretty_range_list",
        "pfm_quorlin_value_placeholder",
        "pfm_quorlin_indentation_level",
        "pfm_quorlin_control_type",
        "pfm_quorlin_type_adapter",
        "pfm_quorlin_supervision_required",
        "pfm_quorlin_documentation_url",
        "pfm_quorlin_allowed_file_extensions",
        "pfm_quorlin_allowed_data_signatures",
        "pfm_quorlin_note",
        "pfm_quorlin_platforms",
        "pfm_quorlin_macos_introduction",
        "pfm_quorlin_macos_deprecation",
        "pfm_quorlin_macos_removal",
        "pfm_quorlin_ios_introduction",
        "pfm_quorlin_ios_deprecation",
        "pfm_quorlin_ios_removal",
        "pfm_quorlin_tvos_introduction",
        "pfm_quorlin_tvos_deprecation",
        "pfm_quorlin_tvos_removal",
        "pfmx_supported_oses",
    });
    return keys;
}

// Where a dialect key with a value of one particular class lands, for the
// root; the value is dropped when it is of another class.
bool convertTypedManifestKey(const QString& name, const plist::Value& value, plist::Dictionary& result) {
    if (name == QStringLiteral("pfm_domain")) {
        if (const auto domain = value.toString())
            result.insert(name, *domain == QStringLiteral("Configuration") ? QString() : *domain);
    } else if (name == QStringLiteral("pfm_format_version")) {
        result.insert(name, 1);
    } else if (name == QStringLiteral("pfm_last_modified")) {
        if (value.isDate())
            result.insert(QStringLiteral("pfm_quorlin_last_modification"), value);
    } else if (name == QStringLiteral("pfm_documentation_url")) {
        if (value.isString())
            result.insert(QStringLiteral("pfm_quorlin_documentation_url"), value);
    } else if (name == QStringLiteral("pfm_note")) {
        if (value.isString())
            result.insert(QStringLiteral("pfm_quorlin_note"), value);
    } else {
        return false;
    }
    return true;
}

void convertManifestKey(const QString& name, const plist::Value& value, plist::Dictionary& result) {
    if (const auto renamed = renamedManifestKeys().constFind(name); renamed != renamedManifestKeys().cend())
        result.insert(*renamed, value);
    else if (convertTypedManifestKey(name, value, result) || name == subkeysKey)
        return;
    else if (copiedManifestKeys().contains(name))
        result.insert(name, value);
}

void setGroups(const QList<SegmentGroup>& groups, plist::Dictionary& result) {
    plist::Dictionary keysByGroup;
    plist::Array order;
    for (const SegmentGroup& group : groups) {
        keysByGroup.insert(group.groupName, arrayOf(group.groupKeys));
        order.append(group.groupName);
    }
    if (!keysByGroup.isEmpty())
        result.insert(QStringLiteral("pfm_quorlin_groups"), keysByGroup);
    if (!order.isEmpty())
        result.insert(QStringLiteral("pfm_quorlin_groups_order"), order);
}

// The key level. `forChildren` narrows as negative platform lists are met
// and, by design, stays narrowed for the siblings that follow.
class KeyConverter {
public:
    KeyConverter(const QStringList& inherited)
        : m_inherited(inherited)
        , m_forChildren(inherited) {}

    const QStringList& forChildren() const { return m_forChildren; }

    plist::Dictionary convert(const plist::Dictionary& key) {
        plist::Dictionary result;
        for (auto entry = key.begin(); entry != key.end(); ++entry)
            convertEntry(key, entry.key(), entry.value(), result);
        return result;
    }

private:
    void convertEntry(const plist::Dictionary& key, const QString& name, const plist::Value& value,
                      plist::Dictionary& result) {
        if (const auto renamed = renamedLifeCycleKeys().constFind(name);
            renamed != renamedLifeCycleKeys().cend())
            result.insert(*renamed, value);
        else if (name == QStringLiteral("pfm_allowed_file_types"))
            convertFileTypes(value, result);
        else if (name == QStringLiteral("pfm_documentation_url"))
            insertString(value, QStringLiteral("pfm_quorlin_documentation_url"), result);
        else if (name == QStringLiteral("pfm_excluded"))
            insertNumberAsBoolean(value, QStringLiteral("pfm_quorlin_ghost_key"), result);
        else if (name == rangeListTitlesKey)
            convertRangeTitles(key, value, result);
        else if (name == QStringLiteral("pfm_value_placeholder"))
            insertString(value, QStringLiteral("pfm_quorlin_value_placeholder"), result);
        else if (name == platformsKey)
            result.insert(quorlinPlatformsKey, value);
        else if (name == QStringLiteral("pfm_n_platforms"))
            convertNegativePlatforms(key, value, result);
        else if (name == QStringLiteral("pfm_supervised"))
            insertNumberAsBoolean(value, QStringLiteral("pfm_quorlin_supervision_required"), result);
        else if (name == QStringLiteral("pfm_type_input"))
            convertInputType(key, value, result);
        else
            convertPlainEntry(key, name, value, result);
    }

    void convertPlainEntry(const plist::Dictionary& key, const QString& name, const plist::Value& value,
                           plist::Dictionary& result) {
        if (name == QStringLiteral("pfm_value_processor") || name == subkeysKey)
            return;
        if (name == QStringLiteral("pfm_description_reference")) {
            if (!key.contains(QStringLiteral("pfm_description")))
                result.insert(QStringLiteral("pfm_description"), value);
        } else if (name == rangeListKey) {
            const bool isSuggestion = isTrueNumber(key.value(allowCustomValueKey));
            result.insert(isSuggestion ? QStringLiteral("pfm_quorlin_suggestions") : rangeListKey, value);
        } else if (name == requireKey) {
            convertRequire(value, result);
        } else if (name == QStringLiteral("pfm_required")) {
            if (isTrueNumber(value) && !key.contains(requireKey))
                result.insert(requireKey, QStringLiteral("always"));
        } else if (name == QStringLiteral("pfm_note")) {
            insertString(value, QStringLiteral("pfm_quorlin_note"), result);
        } else if (copiedKeyLevelKeys().contains(name)) {
            result.insert(name, value);
        }
    }

    static void insertString(const plist::Value& value, const QString& name, plist::Dictionary& result) {
        if (value.isString())
            result.insert(name, value);
    }

    // The key reader takes a boolean where the dialect writes any number.
    static void insertNumberAsBoolean(const plist::Value& value, const QString& name,
                                      plist::Dictionary& result) {
        if (const auto number = value.numberAsReal())
            result.insert(name, *number != 0);
    }

    static void convertFileTypes(const plist::Value& value, plist::Dictionary& result) {
        const plist::Array* types = value.array();
        if (!types)
            return;
        const QStringList extensions = ThirdPartyManifest::allowedFileExtensions(*types);
        if (!extensions.isEmpty())
            result.insert(QStringLiteral("pfm_quorlin_allowed_file_extensions"), arrayOf(extensions));
    }

    static void convertRequire(const plist::Value& value, plist::Dictionary& result) {
        const auto presence = value.toString();
        if (!presence)
            return;
        if (*presence == QStringLiteral("always-nested"))
            result.insert(requireKey, QStringLiteral("always"));
        else if (*presence == QStringLiteral("always") || *presence == QStringLiteral("push"))
            result.insert(requireKey, *presence);
    }

    static void convertRangeTitles(const plist::Dictionary& key, const plist::Value& value,
                                   plist::Dictionary& result) {
        const auto type = key.string(typeKey);
        const plist::Array* range = key.array(rangeListKey);
        const plist::Array* titles = value.array();
        if (!type || !range || key.contains(allowCustomValueKey) || !titles ||
            titles->size() != range->size())
            return;
        plist::Dictionary pretty;
        for (qsizetype index = 0; index < range->size(); ++index)
            if (const auto rangeKey = rangeValueKey(*type, range->at(index)))
                pretty.insert(*rangeKey, titles->at(index));
        if (!pretty.isEmpty())
            result.insert(QStringLiteral("pfm_quorlin_pretty_range_list"), pretty);
    }

    // The text a value of the range list is looked up by.
    static std::optional<QString> rangeValueKey(const QString& type, const plist::Value& element) {
        if (type == QStringLiteral("string"))
            return element.toString();
        if (type != QStringLiteral("integer") && type != QStringLiteral("real"))
            return std::nullopt;
        if (element.isReal())
            return QString::number(*element.toReal(), 'g', QLocale::FloatingPointShortest);
        if (element.isUnsignedInteger())
            return QString::number(*element.toUnsigned());
        if (const auto integer = element.numberAsInteger())
            return QString::number(*integer);
        return std::nullopt;
    }

    // The inherited platforms that the list names are the ones kept, unlike
    // the subtraction of the merge: this is how the dialect means it here.
    void convertNegativePlatforms(const plist::Dictionary& key, const plist::Value& value,
                                  plist::Dictionary& result) {
        const plist::Array* listed = value.array();
        if (key.contains(platformsKey) || !listed)
            return;
        QStringList named;
        for (const QString& platform : stringsOf(*listed))
            named.append(platform.toLower());
        QStringList kept;
        for (const QString& platform : m_inherited)
            if (named.contains(platform.toLower()))
                kept.append(platform);
        result.insert(quorlinPlatformsKey, arrayOf(kept));
        m_forChildren = kept;
    }

    static void convertInputType(const plist::Dictionary& key, const plist::Value& value,
                                 plist::Dictionary& result) {
        const auto type = key.string(typeKey);
        const auto input = value.toString();
        if (!type || !input)
            return;
        const auto processor = key.string(QStringLiteral("pfm_value_processor"));
        const QString controlTypeKey = QStringLiteral("pfm_quorlin_control_type");
        if (*input == QStringLiteral("string") && *type == QStringLiteral("data")) {
            if (!processor || *processor == QStringLiteral("base642data")) {
                result.insert(controlTypeKey, *input);
            } else if (*processor == QStringLiteral("hex2data")) {
                result.insert(controlTypeKey, *input);
                result.insert(QStringLiteral("pfm_quorlin_type_adapter"),
                              QStringLiteral("data-to-hex-string"));
            }
        } else if (*input == QStringLiteral("boolean") && *type == QStringLiteral("integer") && !processor) {
            result.insert(controlTypeKey, *input);
        }
    }

    const QStringList m_inherited;
    QStringList m_forChildren;
};

} // namespace

bool ThirdPartyManifest::isThirdParty(const plist::Dictionary& manifest) {
    return manifest.contains(QStringLiteral("pfm_unique")) || manifest.contains(platformsKey);
}

plist::Dictionary ThirdPartyManifest::convert(const plist::Dictionary& manifest) {
    plist::Dictionary result;
    for (auto entry = manifest.begin(); entry != manifest.end(); ++entry)
        convertManifestKey(entry.key(), entry.value(), result);

    const plist::Array* subkeys = manifest.array(subkeysKey);
    if (!subkeys)
        return result;
    plist::Array keys;
    QList<plist::Dictionary> dictionaries;
    for (const plist::Value& key : *subkeys) {
        const plist::Dictionary* dictionary = key.dictionary();
        if (dictionary)
            dictionaries.append(*dictionary);
        // The segmented control's own key only switches between groups,
        // which the program shows as such.
        if (!dictionary || !dictionary->contains(segmentsKey))
            keys.append(key);
    }
    setGroups(resolveSegmentGroups(segmentGroups(dictionaries)), result);

    const plist::Array* declaredPlatforms = manifest.array(platformsKey);
    const QStringList platforms = declaredPlatforms ? stringsOf(*declaredPlatforms) : defaultPlatforms();
    result.insert(subkeysKey, convertKeys(keys, platforms));
    return result;
}

plist::Array ThirdPartyManifest::convertKeys(const plist::Array& keys, const QStringList& platforms,
                                             int depth) {
    plist::Array converted;
    if (depth >= maximumDepth)
        return converted;
    KeyConverter converter(platforms);
    for (const plist::Value& element : keys) {
        const plist::Dictionary* key = element.dictionary();
        if (!key)
            continue;
        plist::Dictionary result = converter.convert(*key);
        if (const plist::Array* subkeys = key->array(subkeysKey))
            result.insert(subkeysKey, convertKeys(*subkeys, converter.forChildren(), depth + 1));
        converted.append(result);
    }
    return converted;
}

QList<SegmentGroup> ThirdPartyManifest::segmentGroups(const QList<plist::Dictionary>& keys) {
    QList<SegmentGroup> groups;
    for (const plist::Dictionary& key : keys) {
        const plist::Dictionary* segments = key.dictionary(segmentsKey);
        if (!segments)
            continue;
        const plist::Array* titleOrder = key.array(rangeListTitlesKey);
        // Dictionary keys are kept sorted, so without titles this is the sorted order.
        const QStringList titles = titleOrder ? stringsOf(*titleOrder) : segments->keys();
        const QString control = key.string(nameKey).value_or(QString());
        for (const QString& title : titles)
            if (const plist::Array* shown = segments->array(title))
                groups.append({title, stringsOf(*shown), control});
    }
    return groups;
}

QList<SegmentGroup> ThirdPartyManifest::resolveSegmentGroups(const QList<SegmentGroup>& groups) {
    // Groups are changed while both lists refer to them, so each is shared.
    using Group = std::shared_ptr<SegmentGroup>;
    QList<Group> given;
    for (const SegmentGroup& group : groups)
        given.append(std::make_shared<SegmentGroup>(group));
    QList<Group> working = given;
    QList<std::pair<Group, QString>> removals;

    for (qsizetype childIndex = given.size() - 1; childIndex >= 0; --childIndex) {
        const Group& child = given[childIndex];
        for (const Group& parent : given) {
            if (*parent == *child || parent->groupKeys.isEmpty() ||
                !parent->groupKeys.contains(child->originalControlName))
                continue;
            removals.append({parent, child->originalControlName});
            for (const QString& key : child->groupKeys)
                parent->groupKeys.removeAll(key);
            const QString prefix = parent->groupName + QLatin1Char(' ');
            if (!child->groupName.startsWith(prefix) && child->groupName != parent->groupName)
                child->groupName = prefix + child->groupName;
            working.removeIf([&](const Group& group) { return *group == *child; });
            const auto parentPlace = std::find_if(working.begin(), working.end(),
                                                  [&](const Group& group) { return *group == *parent; });
            working.insert(parentPlace == working.end() ? working.size() : parentPlace - working.begin() + 1,
                           child);
        }
    }
    for (const auto& [group, name] : removals)
        group->groupKeys.removeAll(name);

    QList<SegmentGroup> resolved;
    for (const Group& group : working)
        if (!group->groupKeys.isEmpty())
            resolved.append(*group);
    return resolved;
}

QStringList ThirdPartyManifest::allowedFileExtensions(const plist::Array& fileTypes) {
    QStringList extensions;
    for (const QString& type : stringsOf(fileTypes)) {
        if (!type.contains(QLatin1Char('.')))
            extensions.append(type);
        else if (const auto declared = UniformTypeExtensions::extensions(type))
            extensions.append(*declared);
        else if (type == QStringLiteral("public.image"))
            extensions.append(UniformTypeExtensions::imageExtensions());
    }
    return extensions;
}

const QStringList& ThirdPartyManifest::defaultPlatforms() {
    static const QStringList platforms = {QStringLiteral("ios"), QStringLiteral("macos"),
                                          QStringLiteral("tvos"), QStringLiteral("watchos")};
    return platforms;
}

} // namespace quorlin
