#include "cli/IdentityChoice.h"

#include <QStringList>

namespace quorlin::cli {

namespace {

QString bareFingerprint(QString fingerprint) {
    return fingerprint.remove(u':').toUpper();
}

std::optional<QString> warningFor(const SigningServices::CertificateFacts& facts, const QString& name,
                                  const QDateTime& now) {
    if (facts.notAfter.isValid() && facts.notAfter < now)
        return QStringLiteral("warning: the certificate of “%1” expired on %2; the signature will not be "
                              "trusted")
            .arg(name, facts.notAfter.toString(Qt::ISODate));
    if (facts.notBefore.isValid() && facts.notBefore > now)
        return QStringLiteral("warning: the certificate of “%1” is not valid before %2")
            .arg(name, facts.notBefore.toString(Qt::ISODate));
    return std::nullopt;
}

} // namespace

Expected<IdentityChoice::Chosen, QString>
IdentityChoice::choose(const SigningServices& signing, const QString& wanted, const QDateTime& now) {
    const auto identities = signing.listIdentities();
    if (!identities)
        return fail(QStringLiteral("cannot read the identities in %1").arg(signing.identitiesFolder()));
    QList<std::pair<SigningIdentity, SigningServices::CertificateFacts>> matches;
    for (const SigningIdentity& identity : *identities) {
        const auto facts = signing.certificateFacts(identity);
        const bool byFingerprint = facts && bareFingerprint(facts->fingerprint) == bareFingerprint(wanted);
        if (identity.name == wanted || byFingerprint)
            matches.append({identity, facts.value_or(SigningServices::CertificateFacts{})});
    }
    if (matches.isEmpty())
        return fail(QStringLiteral("no signing identity named “%1” (see 'quorlin-profile identity list')")
                        .arg(wanted));
    if (matches.size() > 1) {
        QStringList listed;
        for (const auto& [identity, facts] : matches)
            listed << QStringLiteral("%1 (%2)").arg(facts.fingerprint, identity.secIdentity.filePath);
        return fail(QStringLiteral("%1 signing identities are named “%2”; give --identity the fingerprint of "
                                   "the one to use: %3")
                        .arg(matches.size())
                        .arg(wanted, listed.join(QStringLiteral(", "))));
    }
    const auto& [identity, facts] = matches.first();
    return Chosen{identity, warningFor(facts, identity.name, now)};
}

} // namespace quorlin::cli
