#pragma once

#include "model/ModelTestSupport.h"
#include "model/Profile.h"
#include "plist/XmlWriter.h"
#include "workspace/PFMSection.h"
#include "workspace/PFMSectionCollection.h"

#include <QDir>
#include <QString>

#include <memory>

namespace quorlin::test {

// The domains of every manifest in a folder, in file-name order.
inline Profile::DomainList domainsInFolder(const QString& folder) {
    Profile::DomainList domains;
    for (const QString& file : QDir(folder).entryList({QStringLiteral("*.plist")}, QDir::Files, QDir::Name)) {
        if (auto domain = PFMDomain::make(readDictionary(folder + QLatin1Char('/') + file)))
            domains.append(domain);
    }
    return domains;
}

// The domains given, behind the general domain of the model's fixtures
// unless one of them already is a general domain.
inline Profile::DomainList withGeneralDomain(Profile::DomainList domains) {
    const bool hasGeneral = std::any_of(domains.begin(), domains.end(),
                                        [](const auto& domain) { return domain->domainString().isEmpty(); });
    if (!hasGeneral)
        domains.prepend(fixtureDomain(QStringLiteral("root")));
    return domains;
}

// The bytes a save would write, without the repairs that saving makes.
inline QByteArray profileBytes(const Profile& profile) {
    const auto bytes = plist::XmlWriter::write(plist::Value(profile.profileDictionary()));
    return bytes ? *bytes : QByteArray();
}

inline PFMSection* sectionTitled(const PFMSectionCollection& collection, const QString& title) {
    for (const auto& section : collection.sections()) {
        if (section->sectionKind() == PFMSection::Kinds::domain &&
            section->sectionProperties().title == title)
            return section.get();
    }
    return nullptr;
}

} // namespace quorlin::test
