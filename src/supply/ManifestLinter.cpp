#include "supply/ManifestLinter.h"

#include "plist/Utilities.h"
#include "supply/ManifestVocabulary.h"

#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>

namespace quorlin {

namespace {

const QStringList kinds{"boolean", "integer", "real", "string", "data", "date", "array", "dictionary"};
const QStringList platformWords{"ios", "macos", "tvos", "watchos"};
const QStringList ruleListKeys{"pfm_range_list", "pfm_n_range_list", "pfm_contains_any",
                               "pfm_n_contains_any"};

QString joined(const QString& path, const QString& segment) {
    if (segment.startsWith(u'['))
        return path + segment;
    return path.isEmpty() ? segment : path + u'.' + segment;
}

QString shown(const plist::Value& value) {
    return value.debugDescription();
}

bool isNumber(const plist::Value& value) {
    return value.isInteger() || value.isReal();
}

// Whether a value has the plist class a key of this kind writes.
bool hasKind(const plist::Value& value, const QString& kind) {
    static const QMap<QString, plist::Value::Type> types{{"boolean", plist::Value::Type::Boolean},
                                                         {"integer", plist::Value::Type::Integer},
                                                         {"string", plist::Value::Type::String},
                                                         {"data", plist::Value::Type::Data},
                                                         {"date", plist::Value::Type::Date},
                                                         {"array", plist::Value::Type::Array},
                                                         {"dictionary", plist::Value::Type::Dictionary}};
    if (kind == QStringLiteral("real"))
        return isNumber(value);
    return types.contains(kind) && value.type() == types.value(kind);
}

bool sameValue(const plist::Value& a, const plist::Value& b) {
    if (isNumber(a) && isNumber(b))
        return *a.numberAsReal() == *b.numberAsReal();
    return a == b;
}

bool listHolds(const plist::Array& list, const plist::Value& value) {
    return std::any_of(list.begin(), list.end(),
                       [&](const plist::Value& item) { return sameValue(item, value); });
}

// Platforms and introduction versions, as one level of keys declares them in
// any of the three vocabularies. Models a key doesn't name are inherited.
struct Availability {
    std::optional<QSet<QString>> platforms;
    QSet<QString> withdrawn; // "n/a" in an availability record
    QMap<QString, QString> introduced;
    QMap<QString, QString> removed;
};

void readPlatformList(const plist::Dictionary& dictionary, const QString& key, Availability& availability) {
    const plist::Array* list = dictionary.array(key);
    if (!list)
        return;
    QSet<QString> platforms;
    for (const plist::Value& item : *list) {
        if (const auto word = item.toString(); word && platformWords.contains(word->toLower()))
            platforms.insert(word->toLower());
    }
    availability.platforms = platforms;
}

void readRecords(const plist::Dictionary& dictionary, Availability& availability) {
    const plist::Dictionary* records = dictionary.dictionary(QStringLiteral("pfmx_supported_oses"));
    if (!records)
        return;
    for (const auto& [model, record] : records->map().asKeyValueRange()) {
        const plist::Dictionary* fields = record.dictionary();
        const QString word = model.toLower();
        if (!fields || !platformWords.contains(word))
            continue;
        const auto introduced = fields->string(QStringLiteral("pfmx_introduced"));
        if (introduced == QStringLiteral("n/a")) {
            availability.withdrawn.insert(word);
            continue;
        }
        if (introduced)
            availability.introduced.insert(word, *introduced);
        if (const auto removed = fields->string(QStringLiteral("pfmx_removed")))
            availability.removed.insert(word, *removed);
    }
}

Availability readAvailability(const plist::Dictionary& dictionary) {
    Availability availability;
    readPlatformList(dictionary, QStringLiteral("pfm_platforms"), availability);
    readPlatformList(dictionary, QStringLiteral("pfm_quorlin_platforms"), availability);
    for (const QString& word : platformWords) {
        for (const QString& key :
             {QStringLiteral("pfm_%1_min"), QStringLiteral("pfm_quorlin_%1_introduction")}) {
            if (const auto version = dictionary.string(key.arg(word)))
                availability.introduced.insert(word, *version);
        }
        if (const auto version = dictionary.string(QStringLiteral("pfm_quorlin_%1_removal").arg(word)))
            availability.removed.insert(word, *version);
    }
    readRecords(dictionary, availability);
    return availability;
}

// What a child inherits: its own list narrowed to the parent's, and the
// later of the two introductions.
Availability inherited(const Availability& parent, const Availability& own) {
    Availability result = parent;
    if (own.platforms)
        result.platforms = parent.platforms ? (*own.platforms & *parent.platforms) : *own.platforms;
    if (result.platforms)
        result.platforms->subtract(own.withdrawn);
    for (const auto& [word, version] : own.introduced.asKeyValueRange()) {
        if (!parent.introduced.contains(word) ||
            Utilities::compareVersions(version, parent.introduced.value(word)) > 0)
            result.introduced.insert(word, version);
    }
    result.removed.insert(own.removed);
    return result;
}

class Walker {
public:
    explicit Walker(QList<ManifestFinding>& findings)
        : m_findings(findings) {}

    void lintManifest(const plist::Dictionary& manifest) {
        checkWords(manifest, QString());
        if (!manifest.string(QStringLiteral("pfm_domain")))
            report(QString(), QStringLiteral("has no \"pfm_domain\" string"));
        const plist::Array* keys = manifest.array(QStringLiteral("pfm_subkeys"));
        if (!keys) {
            report(QString(), QStringLiteral("has no \"pfm_subkeys\" array"));
            return;
        }
        collectKinds(*keys, QString(), 0);
        lintKeys(*keys, QString(), readAvailability(manifest), false, 0);
    }

private:
    void report(const QString& path, const QString& reason) { m_findings.append({path, reason}); }

    void checkWords(const plist::Dictionary& dictionary, const QString& path) {
        for (const QString& key : dictionary.keys()) {
            if (!ManifestVocabulary::isManifestWord(key) || ManifestVocabulary::isKnown(key))
                continue;
            const auto closest = ManifestVocabulary::closestKnown(key);
            report(path, closest
                             ? QStringLiteral("unknown key \"%1\"; did you mean \"%2\"?").arg(key, *closest)
                             : QStringLiteral("unknown key \"%1\"").arg(key));
        }
    }

    // Rules name their targets by path from the top level through
    // dictionaries, so only those paths can be targets.
    void collectKinds(const plist::Array& keys, const QString& path, int depth) {
        if (depth > ManifestLinter::maximumDepth)
            return;
        for (const plist::Value& item : keys) {
            const plist::Dictionary* key = item.dictionary();
            const auto name = key ? key->string(QStringLiteral("pfm_name")) : std::nullopt;
            if (!name)
                continue;
            const QString keyPath = joined(path, *name);
            const QString kind = key->string(QStringLiteral("pfm_type")).value_or(QString());
            m_kinds.insert(keyPath, kind);
            m_items.insert(keyPath, itemKind(*key));
            if (kind == QStringLiteral("dictionary") && key->array(QStringLiteral("pfm_subkeys")))
                collectKinds(*key->array(QStringLiteral("pfm_subkeys")), keyPath, depth + 1);
        }
    }

    static QString itemKind(const plist::Dictionary& key) {
        const plist::Array* subkeys = key.array(QStringLiteral("pfm_subkeys"));
        if (!subkeys || subkeys->size() != 1 || !subkeys->first().dictionary())
            return QString();
        return subkeys->first().dictionary()->string(QStringLiteral("pfm_type")).value_or(QString());
    }

    void lintKeys(const plist::Array& keys, const QString& path, const Availability& parent, bool inArray,
                  int depth) {
        if (depth > ManifestLinter::maximumDepth) {
            report(path, QStringLiteral("nests keys too deep to read"));
            return;
        }
        QSet<QString> names;
        for (qsizetype index = 0; index < keys.size(); ++index) {
            const plist::Dictionary* key = keys[index].dictionary();
            const auto name = key ? key->string(QStringLiteral("pfm_name")) : std::nullopt;
            const QString keyPath = joined(path, name ? *name : QStringLiteral("[%1]").arg(index));
            if (!key) {
                report(keyPath, QStringLiteral("is not a dictionary"));
                continue;
            }
            if (name && names.contains(*name))
                report(keyPath, QStringLiteral("repeats a key name of this level"));
            if (!name && !inArray)
                report(keyPath, QStringLiteral("has no \"pfm_name\" outside an array"));
            if (name)
                names.insert(*name);
            lintKey(*key, keyPath, parent, depth);
        }
    }

    void lintKey(const plist::Dictionary& key, const QString& path, const Availability& parent, int depth) {
        checkWords(key, path);
        const Availability own = readAvailability(key);
        checkAvailability(own, parent, path);
        const auto kind = key.string(QStringLiteral("pfm_type"));
        if (!kind || !kinds.contains(*kind)) {
            report(path, kind ? QStringLiteral("has the unknown type \"%1\"").arg(*kind)
                              : QStringLiteral("has no \"pfm_type\""));
            return;
        }
        checkValues(key, *kind, path);
        checkRange(key, *kind, path);
        checkFormat(key, path);
        checkRules(key, path);
        checkSubkeys(key, *kind, path, inherited(parent, own), depth);
    }

    void checkAvailability(const Availability& own, const Availability& parent, const QString& path) {
        if (own.platforms && parent.platforms) {
            for (const QString& word : platformWords) {
                if (own.platforms->contains(word) && !parent.platforms->contains(word))
                    report(path, QStringLiteral("names the platform %1, which its parent doesn't").arg(word));
            }
        }
        for (const auto& [word, version] : own.introduced.asKeyValueRange()) {
            const bool available = !parent.platforms || parent.platforms->contains(word);
            if (available && parent.introduced.contains(word) &&
                Utilities::compareVersions(version, parent.introduced.value(word)) < 0)
                report(path, QStringLiteral("is introduced on %1 in %2, before its parent (%3)")
                                 .arg(word, version, parent.introduced.value(word)));
            if (parent.removed.contains(word) &&
                Utilities::compareVersions(version, parent.removed.value(word)) >= 0)
                report(path, QStringLiteral("is introduced on %1 in %2, after its parent's removal (%3)")
                                 .arg(word, version, parent.removed.value(word)));
        }
    }

    // The kind a value of the allowed list stands for: an array's list names
    // its items.
    static QString valueKind(const plist::Dictionary& key, const QString& kind) {
        return kind == QStringLiteral("array") ? itemKind(key) : kind;
    }

    void checkValues(const plist::Dictionary& key, const QString& kind, const QString& path) {
        const plist::Value& defaultValue = key.value(QStringLiteral("pfm_default"));
        const plist::Array* list = key.array(QStringLiteral("pfm_range_list"));
        const QString listKind = valueKind(key, kind);
        if (!defaultValue.isNull() && !hasKind(defaultValue, kind))
            report(
                path,
                QStringLiteral("has a default of another type than %1: %2").arg(kind, shown(defaultValue)));
        if (list && !listKind.isEmpty()) {
            for (const plist::Value& allowed : *list) {
                if (!hasKind(allowed, listKind))
                    report(path, QStringLiteral("allows a value of another type than %1: %2")
                                     .arg(listKind, shown(allowed)));
            }
        }
        if (!list || defaultValue.isNull() ||
            key.boolean(QStringLiteral("pfm_range_list_allow_custom_value")) == true)
            return;
        const plist::Array defaults = kind == QStringLiteral("array") && defaultValue.array()
                                          ? *defaultValue.array()
                                          : plist::Array{defaultValue};
        for (const plist::Value& value : defaults) {
            if (!listHolds(*list, value))
                report(path,
                       QStringLiteral("has a default that its allowed list lacks: %1").arg(shown(value)));
        }
    }

    void checkRange(const plist::Dictionary& key, const QString& kind, const QString& path) {
        std::optional<double> limits[2];
        const QString names[2] = {QStringLiteral("pfm_range_min"), QStringLiteral("pfm_range_max")};
        for (int i = 0; i < 2; ++i) {
            const plist::Value& limit = key.value(names[i]);
            if (!limit.isNull() && !isNumber(limit))
                report(path,
                       QStringLiteral("has a \"%1\" that isn't a number: %2").arg(names[i], shown(limit)));
            if (isNumber(limit))
                limits[i] = limit.numberAsReal();
        }
        const auto& [low, high] = limits;
        if (low && high && *low > *high)
            report(path, QStringLiteral("has a range minimum %1 above its maximum %2").arg(*low).arg(*high));
        const plist::Value& defaultValue = key.value(QStringLiteral("pfm_default"));
        if ((kind != QStringLiteral("integer") && kind != QStringLiteral("real")) || !isNumber(defaultValue))
            return;
        const double value = *defaultValue.numberAsReal();
        if ((low && value < *low) || (high && value > *high))
            report(path, QStringLiteral("has a default %1 outside its range").arg(value));
    }

    void checkFormat(const plist::Dictionary& key, const QString& path) {
        const auto format = key.string(QStringLiteral("pfm_format"));
        if (!format)
            return;
        const QRegularExpression expression(*format);
        if (!expression.isValid()) {
            report(path, QStringLiteral("has a \"pfm_format\" that doesn't compile: %1 (at %2)")
                             .arg(expression.errorString())
                             .arg(expression.patternErrorOffset()));
            return;
        }
        // An empty default stands for no value, which the pattern doesn't judge.
        const auto defaultValue = key.string(QStringLiteral("pfm_default"));
        if (defaultValue && !defaultValue->isEmpty() && !matchesOnce(expression, *defaultValue))
            report(
                path,
                QStringLiteral("has a default that doesn't match its \"pfm_format\": %1").arg(*defaultValue));
    }

    // The editor accepts a string that the pattern matches exactly once.
    static bool matchesOnce(const QRegularExpression& expression, const QString& string) {
        auto iterator = expression.globalMatch(string);
        int matches = 0;
        while (iterator.hasNext() && matches < 2) {
            iterator.next();
            ++matches;
        }
        return matches == 1;
    }

    void checkRules(const plist::Dictionary& key, const QString& path) {
        for (const QString& listKey : {QStringLiteral("pfm_conditionals"), QStringLiteral("pfm_exclude")}) {
            const plist::Array* rules = key.array(listKey);
            for (const plist::Value& rule : rules ? *rules : plist::Array{}) {
                const plist::Dictionary* fields = rule.dictionary();
                const plist::Array* conditions =
                    fields ? fields->array(QStringLiteral("pfm_target_conditions")) : nullptr;
                if (!conditions) {
                    report(path, QStringLiteral("has a rule in \"%1\" without \"pfm_target_conditions\"")
                                     .arg(listKey));
                    continue;
                }
                checkWords(*fields, path);
                for (const plist::Value& condition : *conditions)
                    checkCondition(condition.dictionary(), path);
            }
        }
    }

    void checkCondition(const plist::Dictionary* condition, const QString& path) {
        const auto target = condition ? condition->string(QStringLiteral("pfm_target")) : std::nullopt;
        if (!target) {
            report(path, QStringLiteral("has a rule condition without a \"pfm_target\""));
            return;
        }
        checkWords(*condition, path);
        if (!m_kinds.contains(*target)) {
            report(path,
                   QStringLiteral("has a rule on \"%1\", which isn't a key of this manifest").arg(*target));
            return;
        }
        const QString kind = m_kinds.value(*target);
        for (const QString& listKey : ruleListKeys) {
            const plist::Array* values = condition->array(listKey);
            const QString problem =
                values ? neverMatches(*values, listKey, kind, m_items.value(*target)) : QString();
            if (!problem.isEmpty())
                report(path,
                       QStringLiteral("has a rule on \"%1\" whose \"%2\" %3").arg(*target, listKey, problem));
        }
    }

    // Why the values of a condition can never match the target, or nothing.
    static QString neverMatches(const plist::Array& values, const QString& listKey, const QString& kind,
                                const QString& itemKind) {
        const bool contains = listKey.endsWith(QStringLiteral("contains_any"));
        if (kind == QStringLiteral("dictionary") || (!contains && kind == QStringLiteral("array")))
            return QStringLiteral("can never match a value of type %1").arg(kind);
        if (contains && kind != QStringLiteral("string") && kind != QStringLiteral("data") &&
            kind != QStringLiteral("array"))
            return QStringLiteral("can never match a value of type %1, which contains nothing").arg(kind);
        const QString wanted = kind == QStringLiteral("array") ? itemKind : kind;
        if (wanted.isEmpty())
            return QString();
        for (const plist::Value& value : values) {
            const bool fits = kind == QStringLiteral("boolean") ? isNumber(value) || value.isBoolean()
                                                                : hasKind(value, wanted);
            if (!fits)
                return QStringLiteral("holds %1, which never equals a value of type %2")
                    .arg(shown(value), wanted);
        }
        return QString();
    }

    void checkSubkeys(const plist::Dictionary& key, const QString& kind, const QString& path,
                      const Availability& availability, int depth) {
        const plist::Array* subkeys = key.array(QStringLiteral("pfm_subkeys"));
        const bool container = kind == QStringLiteral("array") || kind == QStringLiteral("dictionary");
        if (subkeys && !subkeys->isEmpty() && !container)
            report(path, QStringLiteral("has subkeys, which a key of type %1 can't hold").arg(kind));
        if (kind == QStringLiteral("array") && (!subkeys || subkeys->isEmpty()))
            report(path, QStringLiteral("is an array without an item prototype in \"pfm_subkeys\""));
        if (subkeys && container)
            lintKeys(*subkeys, path, availability, kind == QStringLiteral("array"), depth + 1);
    }

    QList<ManifestFinding>& m_findings;
    QMap<QString, QString> m_kinds;
    QMap<QString, QString> m_items;
};

} // namespace

QList<ManifestFinding> ManifestLinter::lint(const plist::Dictionary& manifest) {
    QList<ManifestFinding> findings;
    Walker(findings).lintManifest(manifest);
    return findings;
}

} // namespace quorlin
