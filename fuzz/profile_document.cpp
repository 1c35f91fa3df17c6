// Opens any bytes as the document layer opens a profile file: a plain
// property list in any form, else a signed message around one. What opens
// must give the bytes of a save, and those bytes must open again.
#include "documents/ProfileDocument.h"
#include "documents/ProfileSigningBridge.h"
#include "plist/PlistReader.h"
#include "schema/PFMDomain.h"

#include <QDir>
#include <QFile>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace quorlin;

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

// The model tests' fixture domains: the general payload, the removal
// password and one key of every kind, so that payloads bind and repair.
Profile::DomainList fixtureDomains() {
    Profile::DomainList domains;
    for (const char* name : {"root", "removal-password", "everything"}) {
        QFile file(QStringLiteral(QUORLIN_FUZZ_MANIFESTS "/%1.plist").arg(QLatin1String(name)));
        require(file.open(QIODevice::ReadOnly));
        const auto read = plist::PlistReader::read(file.readAll());
        require(read && read->root.isDictionary());
        domains.append(PFMDomain::make(*read->root.dictionary()));
    }
    return domains;
}

std::shared_ptr<const ProfileEnvironment> signingEnvironment() {
    auto environment = std::make_shared<ProfileEnvironment>(*ProfileEnvironment::makeSystem());
    // A data folder that holds no identity and no extra anchor.
    environment->signingServices = std::make_shared<ProfileSigningBridge>(
        SigningServices(nullptr, QDir::temp().filePath(QStringLiteral("quorlin-fuzz-no-identities"))));
    return environment;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Profile::DomainList domains = fixtureDomains();
    static const std::shared_ptr<const ProfileEnvironment> environment = signingEnvironment();
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto opened = ProfileDocument::makeProfile(bytes, domains, environment);
    if (!opened)
        return 0;
    const auto saved = (*opened)->profileData();
    if (saved)
        require(ProfileDocument::makeProfile(*saved, domains, environment).hasValue());
    return 0;
}
