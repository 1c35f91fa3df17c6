#pragma once

#include "model/Profile.h"
#include "plist/Expected.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace quorlin::cli {

// The certificate files of --recipient and --encrypt-for, and the profile
// whose payloads they are to seal.
class RecipientCertificates {
public:
    // DER, in the order given; the error names the file.
    static Expected<QList<QByteArray>, QString> read(const QStringList& files);
    // Seals the profile's payloads for the certificates on its next save. An
    // error, starting with `path`, when they are sealed already.
    static Expected<bool, QString> apply(Profile& profile, const QList<QByteArray>& certificates,
                                         const QString& path);
};

} // namespace quorlin::cli
