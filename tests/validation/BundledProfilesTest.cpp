#include "model/Profile.h"
#include "model/ProfileEnvironment.h"
#include "plist/PlistReader.h"
#include "plist/UserDefaults.h"
#include "plist/XmlWriter.h"
#include "schema/PFMDomain.h"
#include "support/DataManifests.h"
#include "support/TestSupport.h"
#include "validation/ProfileValidation.h"
#include "validation/ValidationSettings.h"

#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using plist::Array;
using plist::Dictionary;
using plist::Value;

Dictionary readDictionary(const QByteArray& bytes) {
    const auto read = plist::PlistReader::read(bytes);
    return read && read->root.dictionary() ? *read->root.dictionary() : Dictionary();
}

bool matchesExactlyOnce(const QString& format, const QString& candidate) {
    auto matches = QRegularExpression(format).globalMatch(candidate);
    int count = 0;
    while (matches.hasNext() && count < 2) {
        matches.next();
        ++count;
    }
    return count == 1;
}

// A string an administrator might type that the key's format accepts.
QString sampleString(const PFMKeyPrototype& key) {
    QStringList candidates{"com.example.app",
                           "https://example.com/path",
                           "example.com",
                           "user@example.com",
                           "A1B2C3D4-1111-2222-3333-444455556666",
                           "00:11:22:33:44:55",
                           "ABCDE12345",
                           "192.168.1.1",
                           "example",
                           "1.0",
                           "12345"};
    if (key.valuePlaceholder())
        candidates.prepend(*key.valuePlaceholder());
    if (!key.format())
        return candidates.first();
    for (const QString& candidate : candidates) {
        if (matchesExactlyOnce(*key.format(), candidate))
            return candidate;
    }
    return candidates.first();
}

// Systems of today, for which every key of today's manifests is meant.
QString currentRelease(PFMSupportedPlatforms::Model model) {
    using Model = PFMSupportedPlatforms::Model;
    switch (model) {
    case Model::macOS:
        return QStringLiteral("15.0");
    case Model::watchOS:
        return QStringLiteral("11.0");
    default:
        return QStringLiteral("18.0");
    }
}

// Whether Apple still offers the payload type there: a window targeting a
// platform that withdrew it rightly reports every key.
bool isWithdrawn(const SupportedPlatform& platform) {
    using Stage = PFMSupportedPlatforms::LifeCycleStage;
    return platform.versions &&
           (platform.versions->count(Stage::removal) || platform.versions->count(Stage::deprecation));
}

// A valid value of the key's own making: its default, its first allowed
// value, or one within its range, with required subkeys filled in.
Value sampleValue(const PFMKeyPrototype& key) {
    using Kind = PFMKeyPrototype::Kind;
    if (key.defaultValue())
        return *key.defaultValue();
    if (key.rangeList() && !key.rangeList()->isEmpty())
        return key.rangeList()->first();
    switch (key.kind()) {
    case Kind::boolean:
        return true;
    case Kind::integer:
        return key.rangeMin().value_or(std::min<qint64>(1, key.rangeMax().value_or(1)));
    case Kind::real:
        return double(key.rangeMin().value_or(1));
    case Kind::string:
        return sampleString(key);
    case Kind::data:
        return QByteArray("sample data");
    case Kind::date:
        return plist::Date{700000000.0};
    case Kind::array: {
        if (key.subkeys().isEmpty())
            return Array{};
        const PFMKeyPrototype& item = *key.subkeys().first();
        const qint64 count = std::max<qint64>(1, item.repetitionMin().value_or(1));
        // Two strings exactly are an X.500 attribute: its type, then its value.
        if (item.kind() == Kind::string && count == 2 && item.repetitionMax() == 2)
            return Array{"CN", "device.example.com"};
        Array items;
        for (qint64 i = 0; i < count; ++i)
            items.append(sampleValue(item));
        return items;
    }
    case Kind::dictionary: {
        Dictionary dictionary;
        // A dictionary of free keys gets one entry, so that it holds a value.
        if (key.representedDictionary() == PFMKeyPrototype::RepresentableDictionary::customDictionary) {
            for (const auto& subkey : key.subkeys()) {
                if (subkey->name() == QStringLiteral("{{value}}"))
                    dictionary.insert(QStringLiteral("sample"), sampleValue(*subkey));
            }
            return dictionary;
        }
        for (const auto& subkey : key.subkeys()) {
            if (subkey->required() && subkey->name())
                dictionary.insert(*subkey->name(), sampleValue(*subkey));
        }
        return dictionary;
    }
    }
    return {};
}

// Sets a sample at a dotted path through dictionaries; false when the path
// leads elsewhere (into an array's items).
bool fillPath(Dictionary& values, const PFMKeyPrototypeList& keys, const QStringList& path) {
    for (const auto& key : keys) {
        if (key->name() != path.first())
            continue;
        if (path.size() == 1) {
            values.insert(path.first(), sampleValue(*key));
            return true;
        }
        Value* nested = values.find(path.first());
        if (!nested || !nested->dictionary())
            values.insert(path.first(), Dictionary());
        return fillPath(*values.find(path.first())->mutableDictionary(), key->subkeys(), path.mid(1));
    }
    return false;
}

// The profile's only payload, as the file holds it.
Dictionary& payloadDictionary(Dictionary& root) {
    return *(*root.find("PayloadContent")->mutableArray())[0].mutableDictionary();
}

TEST(BundledProfiles, APayloadOfEachDomainWithItsRequiredKeysFilledIsValidAndReadsBackEqual) {
    const Profile::DomainList domains = test::bundledManifestDomains();
    ASSERT_GE(domains.size(), 35);
    const auto environment = ProfileEnvironment::makeSystem();
    for (const auto& domain : domains) {
        if (domain->domainString().isEmpty())
            continue;
        SCOPED_TRACE(domain->domainString().toStdString());
        const auto made = Profile::makeNewProfile(domains, environment);
        ASSERT_TRUE(made);
        made->addPayload(domain);
        Dictionary root = readDictionary(*made->profileData());

        // Each round fills what the last validation found missing or wrong,
        // as an administrator would, until nothing is left.
        QList<ProfileValidation::FieldError> errors;
        std::shared_ptr<Profile> profile;
        for (int round = 0; round < 8; ++round) {
            auto parsed = Profile::parseProfile(*plist::XmlWriter::write(root), domains, environment);
            ASSERT_TRUE(parsed);
            profile = *parsed;
            errors = ProfileValidation::validate(*profile, nullptr);
            if (errors.isEmpty())
                break;
            for (const auto& error : errors) {
                const bool isRoot = error.payload == profile->rootPayload();
                Dictionary& values = isRoot ? root : payloadDictionary(root);
                ASSERT_TRUE(fillPath(values, error.payload->domainPrototype().keyPrototypes(),
                                     error.keyPath.split(u'.')))
                    << error.keyPath.toStdString() << ": " << error.message.toStdString();
            }
        }
        for (const auto& error : errors)
            ADD_FAILURE() << error.keyPath.toStdString() << ": " << error.message.toStdString();

        // Judged against the platforms the domain is for, as a window targeting them would.
        QTemporaryDir folder;
        UserDefaults defaults(folder.filePath("defaults.plist"));
        ValidationSettings targets(defaults);
        targets.resetWithoutSaving();
        ASSERT_TRUE(domain->supportedPlatforms());
        for (const SupportedPlatform& platform : domain->supportedPlatforms()->platforms()) {
            if (isWithdrawn(platform))
                continue;
            targets.setTargeting(platform.model, true);
            targets.setMinimumVersion(platform.model, currentRelease(platform.model));
        }
        for (const auto& error : ProfileValidation::validate(*profile, &targets))
            ADD_FAILURE() << "for its platforms, " << error.keyPath.toStdString() << ": "
                          << error.message.toStdString();

        const auto data = profile->profileData();
        ASSERT_TRUE(data);
        const auto reread = Profile::parseProfile(*data, domains, environment);
        ASSERT_TRUE(reread);
        EXPECT_EQ((*reread)->profileData(), data);
        EXPECT_TRUE(ProfileValidation::validate(**reread, nullptr).isEmpty());
    }
}

} // namespace
} // namespace quorlin
