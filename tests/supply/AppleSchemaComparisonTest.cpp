#include "plist/PlistReader.h"
#include "plist/Utilities.h"
#include "schema/PFMDomain.h"
#include "schema/PFMKeyPrototype.h"
#include "schema/SupportedPlatforms.h"
#include "support/DataTrees.h"
#include "support/YamlSubsetReader.h"

#include <QDir>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

#include <iostream>

namespace quorlin {
namespace {

using Model = PFMSupportedPlatforms::Model;
using Stage = PFMSupportedPlatforms::LifeCycleStage;

const QString appleFolder = QStringLiteral(QUORLIN_CORPUS_DIR "/../apple-device-management/mdm/profiles");
const QString bundledFolder = QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor/Manifests");

// Where our manifests differ from Apple's schema on purpose: a pattern of
// "type path: difference" ("*" for any text), and why, from the data file.
QList<std::pair<QString, QString>> readExceptions() {
    QList<std::pair<QString, QString>> read;
    for (const plist::Dictionary& entry :
         test::dataCases(QStringLiteral("supply/apple-schema-exceptions.plist")))
        read.append(
            {entry.string("difference").value_or(QString()), entry.string("reason").value_or(QString())});
    return read;
}

const QList<std::pair<QString, QString>>& exceptions() {
    static const QList<std::pair<QString, QString>> read = readExceptions();
    return read;
}

// The exceptions that matched, so that one the manifests outgrew is noticed.
QSet<QString> usedExceptions;

bool isException(const QString& difference) {
    for (const auto& [text, reason] : exceptions()) {
        const QString pattern =
            QRegularExpression::escape(text).replace(QStringLiteral("\\*"), QStringLiteral(".*"));
        if (QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(difference).hasMatch()) {
            usedExceptions.insert(text);
            return true;
        }
    }
    return false;
}

// One of Apple's keys with the availability of the payload it belongs to,
// since schema files of one payload type may describe it for different OSes.
struct AppleKey {
    plist::Dictionary key;
    SupportedPlatforms parent;
};

struct Tally {
    int topLevel = 0, topLevelFound = 0, nested = 0, nestedFound = 0;
    QStringList differences;
};

QString kindName(PFMKeyPrototype::Kind kind) {
    static const QStringList names{"boolean", "integer", "real",  "string",
                                   "data",    "date",    "array", "dictionary"};
    return names.value(int(kind));
}

// Apple's record of one OS narrowing its parent's availability, the way a
// key's own record narrows its payload's.
SupportedPlatforms appleAvailability(const plist::Dictionary* record, const SupportedPlatforms& parent,
                                     bool isPayload) {
    std::set<SupportedPlatform> platforms;
    for (Model model : PFMSupportedPlatforms::allModels) {
        const plist::Dictionary* os =
            record ? record->dictionary(PFMSupportedPlatforms::displayName(model)) : nullptr;
        const auto parentVersions = parent.versions(model);
        if (!isPayload && !parent.contains(model))
            continue;
        if (!os) {
            if (!isPayload)
                platforms.insert({model, parentVersions});
            continue;
        }
        const auto introduced = os->string(QStringLiteral("introduced"));
        if (introduced == QStringLiteral("n/a"))
            continue;
        auto versions = parentVersions.value_or(PFMSupportedPlatforms::StageVersions{});
        // A key can't come before the payload or key that holds it.
        const QString inherited =
            versions.count(Stage::introduction) ? versions[Stage::introduction] : QString();
        if (introduced && Utilities::compareVersions(*introduced, inherited) > 0)
            versions[Stage::introduction] = *introduced;
        platforms.insert({model, versions.empty() ? std::nullopt : std::optional(versions)});
    }
    return SupportedPlatforms(platforms);
}

SupportedPlatforms ourAvailability(const PFMKeyPrototype& key, const SupportedPlatforms& parent) {
    if (key.supportedOSes())
        return SupportedPlatforms::combinedWithParent(*key.supportedOSes(), parent);
    return SupportedPlatforms::combinedWithParent(key.supportedModels(), key.lifeCycleVersions(), parent);
}

QString availabilityDifference(const SupportedPlatforms& apple, const SupportedPlatforms& ours) {
    QStringList differences;
    for (Model model : PFMSupportedPlatforms::allModels) {
        const QString name = PFMSupportedPlatforms::displayName(model);
        if (apple.contains(model) != ours.contains(model)) {
            differences << QStringLiteral("%1 %2").arg(name, apple.contains(model) ? "missing" : "extra");
            continue;
        }
        const QString a = apple.versionOfStage(Stage::introduction, model).value_or(QString());
        const QString o = ours.versionOfStage(Stage::introduction, model).value_or(QString());
        if (apple.contains(model) && Utilities::compareVersions(a, o) != 0)
            differences << QStringLiteral("%1 from %2, ours %3").arg(name, a, o.isEmpty() ? "unset" : o);
    }
    if (differences.isEmpty())
        return {};
    QStringList whole;
    for (Model model : PFMSupportedPlatforms::allModels) {
        if (apple.contains(model))
            whole << PFMSupportedPlatforms::displayName(model) + u' ' +
                         apple.versionOfStage(Stage::introduction, model).value_or(QStringLiteral("any"));
    }
    return differences.join(QStringLiteral(", ")) + QStringLiteral("; Apple: ") +
           whole.join(QStringLiteral(", "));
}

// A type described by several files exists wherever one of them says, from
// the earliest version any of them gives.
SupportedPlatforms earliest(const SupportedPlatforms& a, const SupportedPlatforms& b) {
    std::set<SupportedPlatform> platforms;
    for (Model model : PFMSupportedPlatforms::allModels) {
        const QString first = a.versionOfStage(Stage::introduction, model).value_or(QString());
        const QString second = b.versionOfStage(Stage::introduction, model).value_or(QString());
        if (a.contains(model) && (!b.contains(model) || Utilities::compareVersions(first, second) <= 0))
            platforms.insert({model, a.versions(model)});
        else if (b.contains(model))
            platforms.insert({model, b.versions(model)});
    }
    return SupportedPlatforms(platforms);
}

bool sameValues(const plist::Array& a, const plist::Array& b) {
    const auto holds = [](const plist::Array& list, const plist::Value& value) {
        return std::any_of(list.begin(), list.end(), [&](const plist::Value& item) {
            return item == value || (item.numberAsReal() && item.numberAsReal() == value.numberAsReal()) ||
                   item.debugDescription() == value.debugDescription();
        });
    };
    return std::all_of(a.begin(), a.end(), [&](const auto& v) { return holds(b, v); }) &&
           std::all_of(b.begin(), b.end(), [&](const auto& v) { return holds(a, v); });
}

class Comparison {
public:
    Comparison(const QString& type, Tally& tally)
        : m_type(type)
        , m_tally(tally) {}

    void keys(const QList<AppleKey>& apple, const PFMKeyPrototypeList& ours, const QString& path,
              const SupportedPlatforms& ourParent, int depth) {
        for (const AppleKey& entry : apple) {
            const QString name = entry.key.string(QStringLiteral("key")).value_or(QString());
            const QString keyPath = path.isEmpty() ? name : path + u'.' + name;
            const PFMKeyPrototype* found = counterpart(name, apple.size() == 1, ours);
            (depth == 0 ? m_tally.topLevel : m_tally.nested)++;
            // Apple's stand-in for free keys matches a dictionary of free keys.
            const bool open = name == QStringLiteral("ANY") && ours.empty() && depth > 0;
            if (!found && !open) {
                differ(keyPath, QStringLiteral("missing"), {});
                continue;
            }
            (depth == 0 ? m_tally.topLevelFound : m_tally.nestedFound)++;
            if (found)
                key(entry, *found, keyPath, ourParent, depth);
        }
    }

    void differ(const QString& path, const QString& what, const QString& detail) {
        const QString id =
            QStringLiteral("%1 %2: %3").arg(m_type.isEmpty() ? "(general)" : m_type, path, what);
        if (!isException(id))
            m_tally.differences << (detail.isEmpty() ? id : id + QStringLiteral(" (") + detail + u')');
    }

private:
    // Ours by name, or the value prototype of a dictionary of free keys
    // where Apple names a stand-in.
    static const PFMKeyPrototype* counterpart(const QString& name, bool alone,
                                              const PFMKeyPrototypeList& ours) {
        const auto named = [&](const QString& wanted) {
            const auto it =
                std::find_if(ours.begin(), ours.end(), [&](const auto& p) { return p->name() == wanted; });
            return it == ours.end() ? nullptr : it->get();
        };
        if (const PFMKeyPrototype* found = named(name))
            return found;
        return name == QStringLiteral("ANY") || alone ? named(QStringLiteral("{{value}}")) : nullptr;
    }

    void key(const AppleKey& entry, const PFMKeyPrototype& ours, const QString& path,
             const SupportedPlatforms& ourParent, int depth) {
        const plist::Dictionary& apple = entry.key;
        const QString type =
            apple.string(QStringLiteral("type")).value_or(QString()).remove(u'<').remove(u'>');
        if (type != QStringLiteral("any") && type != kindName(ours.kind()))
            differ(path, QStringLiteral("type"),
                   QStringLiteral("Apple %1, ours %2").arg(type, kindName(ours.kind())));
        values(apple, ours, path);
        const SupportedPlatforms appleHere =
            appleAvailability(apple.dictionary(QStringLiteral("supportedOS")), entry.parent, false);
        const SupportedPlatforms oursHere = ourAvailability(ours, ourParent);
        if (const QString difference = availabilityDifference(appleHere, oursHere); !difference.isEmpty())
            differ(path, QStringLiteral("availability"), difference);
        children(apple, ours, path, appleHere, oursHere, depth);
    }

    void values(const plist::Dictionary& apple, const PFMKeyPrototype& ours, const QString& path) {
        const plist::Array* list = apple.array(QStringLiteral("rangelist"));
        if (list && (!ours.rangeList() || !sameValues(*list, *ours.rangeList())))
            differ(path, QStringLiteral("allowed values"),
                   plist::Value(*list).debugDescription() + QStringLiteral(" vs ") +
                       (ours.rangeList() ? plist::Value(*ours.rangeList()).debugDescription()
                                         : QStringLiteral("none")));
        const plist::Dictionary* range = apple.dictionary(QStringLiteral("range"));
        const auto limit = [&](const char* word) {
            return range ? range->value(QString::fromLatin1(word)).numberAsInteger() : std::nullopt;
        };
        // Limits of our own where Apple gives none narrow nothing Apple allows.
        if ((limit("min") && limit("min") != ours.rangeMin()) ||
            (limit("max") && limit("max") != ours.rangeMax()))
            differ(path, QStringLiteral("range"),
                   QStringLiteral("Apple %1..%2, ours %3..%4")
                       .arg(limit("min").value_or(-1))
                       .arg(limit("max").value_or(-1))
                       .arg(ours.rangeMin().value_or(-1))
                       .arg(ours.rangeMax().value_or(-1)));
    }

    void children(const plist::Dictionary& apple, const PFMKeyPrototype& ours, const QString& path,
                  const SupportedPlatforms& appleHere, const SupportedPlatforms& oursHere, int depth) {
        const plist::Array* subkeys = apple.array(QStringLiteral("subkeys"));
        if (!subkeys || subkeys->isEmpty())
            return;
        QList<AppleKey> nested;
        for (const plist::Value& subkey : *subkeys)
            nested.append({subkey.dictionary() ? *subkey.dictionary() : plist::Dictionary(), appleHere});
        if (ours.kind() != PFMKeyPrototype::Kind::array) {
            keys(nested, ours.subkeys(), path, oursHere, depth + 1);
            return;
        }
        // An array's one item: compared by type and contents, not by its name.
        if (ours.subkeys().empty()) {
            differ(path + QStringLiteral("[]"), QStringLiteral("missing"), {});
            return;
        }
        const PFMKeyPrototype& item = *ours.subkeys().front();
        AppleKey appleItem = nested.first();
        appleItem.key.insert(QStringLiteral("key"), QString());
        key(appleItem, item, path + QStringLiteral("[]"), oursHere, depth);
    }

    QString m_type;
    Tally& m_tally;
};

// Apple's payload types, each with its keys from every schema file of it.
QMap<QString, QList<AppleKey>> applePayloads(QMap<QString, SupportedPlatforms>& availability) {
    QMap<QString, QList<AppleKey>> payloads;
    // A type's main file first, so that its keys win over those of its variants.
    QStringList names = QDir(appleFolder).entryList({"*.yaml"}, QDir::Files);
    std::stable_partition(names.begin(), names.end(),
                          [](const QString& name) { return !name.contains(u'('); });
    for (const QString& name : names) {
        const plist::Value root = test::readYamlSubset(test::readFile(QDir(appleFolder).filePath(name)));
        const plist::Dictionary* payload =
            root.dictionary() ? root.dictionary()->dictionary("payload") : nullptr;
        const auto type = payload ? payload->string(QStringLiteral("payloadtype")) : std::nullopt;
        if (!type || *type == QStringLiteral("CommonPayloadKeys"))
            continue;
        const QString domain = *type == QStringLiteral("TopLevel") ? QString() : *type;
        const SupportedPlatforms os = appleAvailability(payload->dictionary("supportedOS"), {}, true);
        availability.insert(domain,
                            availability.contains(domain) ? earliest(availability.value(domain), os) : os);
        const plist::Array* keys = root.dictionary()->array(QStringLiteral("payloadkeys"));
        for (const plist::Value& key : keys ? *keys : plist::Array{}) {
            const QString keyName = key.dictionary() ? key.dictionary()->string("key").value_or("") : "";
            const auto& known = payloads[domain];
            if (std::none_of(known.begin(), known.end(),
                             [&](const AppleKey& k) { return k.key.string("key") == keyName; }))
                payloads[domain].append({key.dictionary() ? *key.dictionary() : plist::Dictionary(), os});
        }
    }
    return payloads;
}

QMap<QString, std::shared_ptr<const PFMDomain>> bundledDomains() {
    QMap<QString, std::shared_ptr<const PFMDomain>> domains;
    for (const QString& name : QDir(bundledFolder).entryList({"*.plist"}, QDir::Files)) {
        const auto read = plist::PlistReader::read(test::readFile(QDir(bundledFolder).filePath(name)));
        if (read && read->root.dictionary())
            if (auto domain = PFMDomain::make(*read->root.dictionary()))
                domains.insert(domain->domainString(), domain);
    }
    return domains;
}

QString percent(int part, int whole) {
    return QString::number(whole ? 100.0 * part / whole : 100.0, 'f', 1) + u'%';
}

TEST(AppleSchema, TheYamlReaderReadsWhatSchemaFilesUse) {
    using plist::Dictionary;
    const plist::Value root =
        test::readYamlSubset(test::readFile(test::testDataPath("supply/yaml-subset.yaml")));
    ASSERT_TRUE(root.dictionary());
    const Dictionary expected = test::dataDictionary(QStringLiteral("supply/yaml-subset.plist"));
    ASSERT_FALSE(expected.isEmpty());
    EXPECT_EQ(*root.dictionary(), expected);
}

TEST(AppleSchema, BundledManifestsAgreeWithAppleOnKeysTypesValuesAndAvailability) {
    QMap<QString, SupportedPlatforms> appleOS;
    const auto apple = applePayloads(appleOS);
    const auto ours = bundledDomains();
    ASSERT_GT(apple.size(), 100) << "Apple's schema files didn't read";
    ASSERT_GT(ours.size(), 100);
    Tally tally;
    for (const auto& [type, keys] : apple.asKeyValueRange()) {
        Comparison comparison(type, tally);
        const auto domain = ours.value(type);
        if (!domain) {
            comparison.differ(QStringLiteral("(payload)"), QStringLiteral("missing"), {});
            continue;
        }
        const SupportedPlatforms ourOS = domain->supportedPlatforms().value_or(SupportedPlatforms());
        if (const QString difference = availabilityDifference(appleOS.value(type), ourOS);
            !difference.isEmpty())
            comparison.differ(QStringLiteral("(payload)"), QStringLiteral("availability"), difference);
        comparison.keys(keys, domain->keyPrototypes(), QString(), ourOS, 0);
    }
    for (const QString& difference : tally.differences)
        std::cout << "  " << difference.toStdString() << '\n';
    std::cout << "  top-level keys: " << tally.topLevelFound << " of " << tally.topLevel << " ("
              << percent(tally.topLevelFound, tally.topLevel).toStdString()
              << "); nested keys: " << tally.nestedFound << " of " << tally.nested << " ("
              << percent(tally.nestedFound, tally.nested).toStdString() << ")\n";
    EXPECT_TRUE(tally.differences.isEmpty()) << tally.differences.size() << " differences, listed above";
    for (const auto& [text, reason] : exceptions())
        EXPECT_TRUE(usedExceptions.contains(text)) << "no longer needed: " << text.toStdString();
}

} // namespace
} // namespace quorlin
