#pragma once

#include "documents/SigningServices.h"
#include "plist/Expected.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace quorlin::cli {

// The identity that "--identity" names: a common name, or the fingerprint of
// one certificate where several identities share that name.
class IdentityChoice {
public:
    struct Chosen {
        SigningIdentity identity;
        // A line to print before signing, e.g. for an expired certificate.
        std::optional<QString> warning;
    };

    // The error is the reason alone; it lists every identity a name fits.
    static Expected<Chosen, QString> choose(const SigningServices& signing, const QString& wanted,
                                            const QDateTime& now = QDateTime::currentDateTimeUtc());
};

} // namespace quorlin::cli
