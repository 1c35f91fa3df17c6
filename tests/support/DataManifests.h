#pragma once

#include "model/ModelTestSupport.h"
#include "support/DataTrees.h"

#include <gtest/gtest.h>

namespace quorlin::test {

// A domain of a fixture manifest at tests/data/<relative>.
inline std::shared_ptr<const PFMDomain> dataDomain(const QString& relative) {
    const auto domain = PFMDomain::make(dataDictionary(relative));
    EXPECT_TRUE(domain) << relative.toStdString();
    return domain;
}

// A payload of such a domain, its keys read from `values`.
inline Payload::Pointer dataPayload(const QString& relative, const plist::Dictionary& values = {}) {
    return Payload::make(dataDomain(relative), nullptr, makeTestEnvironment(), values);
}

// The domains of the build's bundled manifests, in the order of their file names.
inline Profile::DomainList bundledManifestDomains() {
    const QDir folder(QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor/Manifests"));
    Profile::DomainList domains;
    for (const QString& name : folder.entryList({QStringLiteral("*.plist")}, QDir::Files, QDir::Name)) {
        if (auto domain = PFMDomain::make(readDictionary(folder.filePath(name))))
            domains.append(std::move(domain));
    }
    return domains;
}

} // namespace quorlin::test
