// Every bundled domain, with every key set and then spoilt at random places
// (a fixed seed) by what real files hold: values of the wrong class, keys no
// manifest describes inside dictionaries it does, items of the wrong class in
// arrays, and the values that rules leave out once every key is set. Opening
// and saving must give back the tree as it was read.

#include "ModelTestSupport.h"
#include "support/DataManifests.h"

#include "plist/XmlWriter.h"

#include <gtest/gtest.h>

#include <random>

namespace quorlin {
namespace {

using test::makeTestEnvironment;
using Kind = PFMKeyPrototype::Kind;

// Fixed, so that a failure repeats; QUORLIN_HELD_SEED tries another.
const unsigned baseSeed = qEnvironmentVariableIsSet("QUORLIN_HELD_SEED")
                              ? unsigned(qEnvironmentVariableIntValue("QUORLIN_HELD_SEED"))
                              : 19u;

// A value of the prototype's class, then spoilt with these odds.
class SpoiltPayloadMaker {
public:
    explicit SpoiltPayloadMaker(unsigned seed)
        : m_random(seed) {}

    plist::Dictionary payload(const PFMDomain& domain) {
        plist::Dictionary payload = dictionaryOf(domain.keyPrototypes(), domain.domainString());
        payload.insert("PayloadType", domain.domainString());
        payload.insert("PayloadUUID", "0000DEAD-0000-4000-8000-000000000001");
        payload.insert("PayloadIdentifier", "org.example.spoilt." + domain.domainString());
        payload.insert("PayloadVersion", 1);
        return payload;
    }
    const QStringList& spoilt() const { return m_spoilt; }

private:
    bool chance(double odds) { return std::bernoulli_distribution(odds)(m_random); }

    plist::Value valueOf(const PFMKeyPrototype& prototype, const QString& path) {
        if (chance(0.08)) {
            m_spoilt << path + " (wrong class)";
            return wrongClassFor(prototype.kind());
        }
        switch (prototype.kind()) {
        case Kind::boolean:
            return true;
        case Kind::integer:
            return 7;
        case Kind::real:
            return 2.5;
        case Kind::string:
            return "text of " + path;
        case Kind::data:
            return QByteArray("\x00\x01\x02", 3);
        case Kind::date:
            return plist::Date{700000000};
        case Kind::array:
            return arrayOf(prototype, path);
        case Kind::dictionary:
            if (prototype.representedDictionary() ==
                PFMKeyPrototype::RepresentableDictionary::customDictionary)
                return plist::Dictionary{{"free", "value"}};
            return dictionaryOf(prototype.subkeys(), path);
        }
        return {};
    }

    static plist::Value wrongClassFor(Kind kind) {
        switch (kind) {
        case Kind::string:
        case Kind::data:
            return 42;
        case Kind::array:
            return plist::Dictionary{{"not", "an array"}};
        default:
            return "not of this class";
        }
    }

    plist::Value arrayOf(const PFMKeyPrototype& prototype, const QString& path) {
        plist::Array items;
        for (const auto& item : prototype.subkeys())
            items.append(valueOf(*item, path + QStringLiteral("[%1]").arg(items.size())));
        if (items.isEmpty())
            items.append("raw item");
        if (!prototype.subkeys().isEmpty() && chance(0.3)) {
            const auto at = std::uniform_int_distribution<qsizetype>(0, items.size())(m_random);
            m_spoilt << path + QStringLiteral("[%1] (misfit item)").arg(at);
            items.insert(at, wrongClassFor(prototype.subkeys().first()->kind()));
        }
        return items;
    }

    plist::Dictionary dictionaryOf(const PFMKeyPrototypeList& subkeys, const QString& path) {
        plist::Dictionary dictionary;
        for (const auto& subkey : subkeys) {
            if (subkey->name())
                dictionary.insert(*subkey->name(), valueOf(*subkey, path + "." + *subkey->name()));
        }
        if (chance(0.3)) {
            m_spoilt << path + ".XUndescribed (undescribed)";
            dictionary.insert("XUndescribed", plist::Array{"kept", 1});
        }
        return dictionary;
    }

    std::mt19937 m_random;
    QStringList m_spoilt;
};

// The first place where two trees differ, or nothing.
std::optional<QString> firstDifference(const plist::Value& read, const plist::Value& saved,
                                       const QString& path) {
    if (read.type() != saved.type())
        return path + ": " + read.debugDescription() + " became " + saved.debugDescription();
    if (const plist::Dictionary* dictionary = read.dictionary()) {
        const plist::Dictionary& other = *saved.dictionary();
        for (const QString& key : dictionary->keys() + other.keys()) {
            if (auto difference = firstDifference(dictionary->value(key), other.value(key), path + "." + key))
                return difference;
        }
        return std::nullopt;
    }
    if (const plist::Array* array = read.array()) {
        const plist::Array& other = *saved.array();
        for (qsizetype index = 0; index < std::max(array->size(), other.size()); ++index) {
            const auto at = [&](const plist::Array& list) {
                return index < list.size() ? list[index] : plist::Value();
            };
            if (auto difference =
                    firstDifference(at(*array), at(other), path + QStringLiteral("[%1]").arg(index)))
                return difference;
        }
        return std::nullopt;
    }
    if (read == saved)
        return std::nullopt;
    return path + ": " + read.debugDescription() + " became " + saved.debugDescription();
}

TEST(HeldValuesRoundTrip, EveryBundledDomainKeepsWhatItCantBind) {
    const Profile::DomainList domains = test::bundledManifestDomains();
    ASSERT_GE(domains.size(), 35);
    qsizetype spoiltTotal = 0;
    qsizetype excludedTotal = 0;
    for (qsizetype index = 0; index < domains.size(); ++index) {
        const auto& domain = domains[index];
        if (!domain || domain->domainString().isEmpty())
            continue;
        const unsigned seed = baseSeed + unsigned(index);
        SpoiltPayloadMaker maker(seed);
        const plist::Dictionary root{{"PayloadType", "Configuration"},
                                     {"PayloadVersion", 1},
                                     {"PayloadUUID", "0000BEEF-0000-4000-8000-000000000001"},
                                     {"PayloadIdentifier", "org.example.spoilt"},
                                     {"PayloadContent", plist::Array{maker.payload(*domain)}}};
        spoiltTotal += maker.spoilt().size();
        const auto bytes = plist::XmlWriter::write(plist::Value(root));
        ASSERT_TRUE(bytes);
        const auto profile = Profile::parseProfile(*bytes, domains, makeTestEnvironment());
        ASSERT_TRUE(profile) << domain->domainString().toStdString();
        for (const auto& place : (*profile)->configurationPayloads().first()->heldValuePlaces()) {
            for (const auto& entry : place.key->heldEntries())
                excludedTotal += entry.reason == HeldValues::Reason::excluded ? 1 : 0;
        }
        const auto saved = (*profile)->profileData();
        ASSERT_TRUE(saved);
        const auto reread = plist::PlistReader::read(*saved);
        ASSERT_TRUE(reread);
        const auto difference = firstDifference(plist::Value(root), reread->root, QString());
        EXPECT_FALSE(difference) << "seed " << seed << ", domain " << domain->domainString().toStdString()
                                 << ": " << difference.value_or(QString()).toStdString()
                                 << "\n  spoilt: " << maker.spoilt().join(", ").toStdString();
    }
    EXPECT_GT(spoiltTotal, 50) << "the odds spoil too little to prove anything";
    EXPECT_GT(excludedTotal, 10) << "with every key set, rules leave some out";
}

} // namespace
} // namespace quorlin
