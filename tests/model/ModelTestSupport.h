#pragma once

#include "model/DateSource.h"
#include "model/Payload.h"
#include "model/Profile.h"
#include "model/ProfileEnvironment.h"
#include "model/UUIDSource.h"
#include "plist/PlistReader.h"
#include "schema/PFMDomain.h"
#include "schema/SchemaTrees.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QString>

#include <memory>
#include <ostream>

namespace quorlin::test {

// UUIDs counted up from 1 ("00000000-0000-4000-8000-000000000001"), so that
// identifiers in tests are predictable; `repeatFirst` answers the first UUID
// that many extra times, to force collisions.
class CountingUUIDSource : public UUIDSource {
public:
    explicit CountingUUIDSource(int repeatFirst = 0)
        : m_repeatFirst(repeatFirst) {}
    QString makeUUIDString() override {
        if (m_count == 1 && m_repeatFirst > 0) {
            --m_repeatFirst;
            return format(1);
        }
        return format(m_count++);
    }
    static QString format(int number) {
        return QStringLiteral("00000000-0000-4000-8000-%1").arg(number, 12, 10, QLatin1Char('0'));
    }

private:
    int m_count = 1;
    int m_repeatFirst;
};

class FixedDateSource : public DateSource {
public:
    explicit FixedDateSource(plist::Date date)
        : m_date(date) {}
    plist::Date now() override { return m_date; }

private:
    plist::Date m_date;
};

inline std::shared_ptr<ProfileEnvironment> makeTestEnvironment() {
    auto environment = std::make_shared<ProfileEnvironment>();
    environment->uuids = std::make_shared<CountingUUIDSource>();
    environment->dates = std::make_shared<FixedDateSource>(plist::Date{800000000});
    environment->hostName = QStringLiteral("Test Host");
    return environment;
}

inline plist::Dictionary readDictionary(const QString& path) {
    const auto read = plist::PlistReader::read(readFile(path));
    if (!read || !read->root.dictionary())
        return {};
    return *read->root.dictionary();
}

inline std::shared_ptr<const PFMDomain> fixtureDomain(const QString& name) {
    return PFMDomain::make(
        readDictionary(testDataPath(QStringLiteral("model/manifests/%1.plist").arg(name))));
}

// The root, the removal password and the every-kind domain of our fixtures.
inline Profile::DomainList fixtureDomains() {
    return {fixtureDomain(QStringLiteral("root")), fixtureDomain(QStringLiteral("removal-password")),
            fixtureDomain(QStringLiteral("everything"))};
}

// A domain with the given top-level keys, made in code.
inline std::shared_ptr<const PFMDomain>
domainWithKeys(const plist::Array& keys, const QString& domain = QStringLiteral("com.example.test")) {
    return PFMDomain::make(manifestTree(domain, keys));
}

inline plist::Dictionary rule(const plist::Array& conditions, plist::Dictionary extra = {}) {
    extra.insert(QStringLiteral("pfm_target_conditions"), conditions);
    return extra;
}

inline plist::Dictionary condition(const QString& target, const QString& test, const plist::Value& value) {
    return {{QStringLiteral("pfm_target"), target}, {test, value}};
}

} // namespace quorlin::test

namespace quorlin {
inline void PrintTo(const Profile::ValidationError& error, std::ostream* out) {
    *out << "{kind " << int(error.kind) << ", payload "
         << error.payload->stringValue(QStringLiteral("PayloadUUID"))
                .value_or(QStringLiteral("?"))
                .toStdString()
         << "}";
}
} // namespace quorlin
