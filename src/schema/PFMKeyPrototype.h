#pragma once

#include "plist/Value.h"
#include "schema/PFMConditionalPrototype.h"
#include "schema/PFMSupportedPlatforms.h"
#include "schema/PFMXSupportedOSes.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <memory>
#include <optional>

namespace quorlin {

class PFMKeyFields;
class PFMKeyPrototype;
using PFMKeyPrototypeList = QList<std::shared_ptr<const PFMKeyPrototype>>;

// The schema of one manifest key: name, type, limits, wording and display
// hints, parsed once and shared read-only by every value bound to it.
class PFMKeyPrototype {
public:
    enum class Kind { boolean, integer, real, string, data, date, array, dictionary };
    // How a dictionary key's value is held: as a map of subkey values, or raw.
    enum class RepresentableDictionary { notADictionary, conventionalDictionary, customDictionary };

    struct SearchStrings {
        QStringList names;
        QStringList titles;
        QStringList descriptions;
    };

    // Keys nested deeper than this are dropped. Real manifests stay below
    // ten levels; the bound keeps every recursive walk of a hostile tree
    // (parsing, search strings, matching, destruction) far from the stack's end.
    static constexpr int maximumDepth = 64;

    // Nothing when "pfm_type" isn't one of the eight kinds, or when the name
    // is missing and `allowsMissingName` is false (only array items may lack one).
    static std::shared_ptr<const PFMKeyPrototype> make(const plist::Dictionary& dictionary,
                                                       bool allowsMissingName);
    // Every dictionary of the array that parses, in order; the rest is left out.
    static PFMKeyPrototypeList parseSubkeyList(const plist::Array& array, bool allowsMissingName);
    // A string key that stands in where a prototype is needed but none exists.
    static std::shared_ptr<const PFMKeyPrototype> makeEmpty();

    static QString rawValue(Kind kind);
    // Case-sensitive: "Boolean" is not a kind.
    static std::optional<Kind> kindFromRawValue(const QString& rawValue);
    // Whether a value is of the plist class that values of the kind have
    // (any number for boolean, integer and real).
    static bool isOfPlistClass(const plist::Value& value, Kind kind);
    // The label of a key that has no "pfm_title". Words break at "_", at a
    // lower-case letter or digit followed by a capital, and before the last
    // capital of a run that a lower-case letter follows. Digits stay with the
    // word before them: "SHA256Fingerprint" gives "SHA256 Fingerprint".
    static QString titleFromKeyName(const QString& name);

    const std::optional<QString>& name() const { return m_name; }
    const QString& title() const { return m_title; }
    const QString& descriptionLine() const { return m_descriptionLine; }
    Kind kind() const { return m_kind; }
    const std::optional<QString>& format() const { return m_format; }
    std::optional<qint64> rangeMin() const { return m_rangeMin; }
    std::optional<qint64> rangeMax() const { return m_rangeMax; }
    const std::optional<plist::Array>& rangeList() const { return m_rangeList; }
    const std::optional<plist::Value>& defaultValue() const { return m_defaultValue; }
    // Never empty when the key has subkeys; empty means none.
    const PFMKeyPrototypeList& subkeys() const { return m_subkeys; }
    bool required() const { return m_required; }
    // Requirement rules first, then exclusion rules; empty means none.
    const QList<PFMConditionalPrototype>& conditionalPrototypes() const { return m_conditionalPrototypes; }
    std::optional<qint64> repetitionMin() const { return m_repetitionMin; }
    std::optional<qint64> repetitionMax() const { return m_repetitionMax; }
    const std::optional<QString>& defaultGenerate() const { return m_defaultGenerate; }
    bool userVisible() const { return m_userVisible; }
    bool userEditable() const { return m_userEditable; }
    const std::optional<QString>& controlType() const { return m_controlType; }
    std::optional<qint64> sortingIndex() const { return m_sortingIndex; }
    bool ghost() const { return m_ghost; }
    const std::optional<plist::Dictionary>& prettyRangeList() const { return m_prettyRangeList; }
    const std::optional<QString>& valuePlaceholder() const { return m_valuePlaceholder; }
    qint64 indentationLevel() const { return m_indentationLevel; }
    // Set by the owning domain when its form divides fields into groups.
    std::optional<int> displayGroupIndex() const { return m_displayGroupIndex; }
    const std::optional<QStringList>& allowedFileExtensions() const { return m_allowedFileExtensions; }
    const std::optional<QList<QByteArray>>& allowedDataSignatures() const { return m_allowedDataSignatures; }
    const std::optional<QString>& typeAdapter() const { return m_typeAdapter; }
    bool requiresSupervision() const { return m_requiresSupervision; }
    const std::optional<QUrl>& documentationURL() const { return m_documentationURL; }
    const std::optional<PFMSupportedPlatforms::Models>& supportedModels() const { return m_supportedModels; }
    const std::optional<PFMSupportedPlatforms::LifeCycleVersions>& lifeCycleVersions() const {
        return m_lifeCycleVersions;
    }
    const std::optional<PFMXSupportedOSes>& supportedOSes() const { return m_supportedOSes; }
    const std::optional<plist::Array>& suggestions() const { return m_suggestions; }
    const std::optional<QString>& note() const { return m_note; }
    // Fixed at construction, so any thread may read it without a lock.
    RepresentableDictionary representedDictionary() const { return m_representedDictionary; }

    // Names, titles and descriptions of this key and, unless it is a custom
    // dictionary, of its subkeys, depth-first; nothing for a key without a name.
    std::optional<SearchStrings> collectSearchStrings() const;
    bool requiresSupervisionDeep() const;
    // Whether a dictionary or array value fits this dictionary or array key,
    // entry by entry; used to pick among several item prototypes of an array.
    bool matchesValue(const plist::Value& value) const;

private:
    friend class PFMDomain;
    using MutableList = QList<std::shared_ptr<PFMKeyPrototype>>;

    PFMKeyPrototype() = default;

    static std::shared_ptr<PFMKeyPrototype> parse(const plist::Dictionary& dictionary, bool allowsMissingName,
                                                  int depth);
    static MutableList parseMutableSubkeyList(const plist::Array& array, bool allowsMissingName, int depth);

    bool readIdentity(const PFMKeyFields& fields, bool allowsMissingName);
    void readValueRules(const PFMKeyFields& fields);
    void readConditionals(const PFMKeyFields& fields);
    void readPresentation(const PFMKeyFields& fields);
    void readAvailability(const PFMKeyFields& fields, const plist::Dictionary& dictionary);
    void readStructure(const PFMKeyFields& fields, int depth);
    void readFileRestrictions(const PFMKeyFields& fields);
    RepresentableDictionary computeRepresentedDictionary() const;

    void appendSearchStrings(SearchStrings& strings) const;
    const PFMKeyPrototype* firstSubkeyNamed(const QString& name) const;
    bool fits(const plist::Value& value) const;

    std::optional<QString> m_name;
    QString m_title;
    QString m_descriptionLine;
    Kind m_kind = Kind::string;
    std::optional<QString> m_format;
    std::optional<qint64> m_rangeMin;
    std::optional<qint64> m_rangeMax;
    std::optional<plist::Array> m_rangeList;
    std::optional<plist::Value> m_defaultValue;
    PFMKeyPrototypeList m_subkeys;
    bool m_required = false;
    QList<PFMConditionalPrototype> m_conditionalPrototypes;
    std::optional<qint64> m_repetitionMin;
    std::optional<qint64> m_repetitionMax;
    std::optional<QString> m_defaultGenerate;
    bool m_userVisible = true;
    bool m_userEditable = true;
    std::optional<QString> m_controlType;
    std::optional<qint64> m_sortingIndex;
    bool m_ghost = false;
    std::optional<plist::Dictionary> m_prettyRangeList;
    std::optional<QString> m_valuePlaceholder;
    qint64 m_indentationLevel = 0;
    std::optional<int> m_displayGroupIndex;
    std::optional<QStringList> m_allowedFileExtensions;
    std::optional<QList<QByteArray>> m_allowedDataSignatures;
    std::optional<QString> m_typeAdapter;
    bool m_requiresSupervision = false;
    std::optional<QUrl> m_documentationURL;
    std::optional<PFMSupportedPlatforms::Models> m_supportedModels;
    std::optional<PFMSupportedPlatforms::LifeCycleVersions> m_lifeCycleVersions;
    std::optional<PFMXSupportedOSes> m_supportedOSes;
    std::optional<plist::Array> m_suggestions;
    std::optional<QString> m_note;
    RepresentableDictionary m_representedDictionary = RepresentableDictionary::notADictionary;
};

} // namespace quorlin
