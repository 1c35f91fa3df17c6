#pragma once

// Reading a folder of standard-form manifests into domains, for the
// benchmarks that build profiles from whatever manifests are at hand.
#include "model/Profile.h"
#include "plist/PlistReader.h"
#include "schema/PFMDomain.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

namespace quorlin::bench {

inline std::shared_ptr<const PFMDomain> readDomain(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    const auto read = plist::PlistReader::read(file.readAll());
    if (!read || !read->root.dictionary())
        return nullptr;
    return PFMDomain::make(*read->root.dictionary());
}

// Every domain below the folder, in the order of the files' paths.
inline Profile::DomainList readDomains(const QString& folder) {
    Profile::DomainList domains;
    QStringList paths;
    QDirIterator files(folder, {QStringLiteral("*.plist")}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.append(files.next());
    paths.sort();
    for (const QString& path : paths) {
        if (auto domain = readDomain(path))
            domains.append(std::move(domain));
    }
    return domains;
}

} // namespace quorlin::bench
