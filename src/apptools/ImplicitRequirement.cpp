#include "apptools/ImplicitRequirement.h"

#include "apptools/RequirementDecompiler.h"
#include "apptools/SignerCertificates.h"

#include <QCryptographicHash>
#include <QtEndian>

namespace quorlin::apptools {

namespace {

// Operations and matches of the requirement language's binary form.
enum : quint32 {
    opIdent = 2,
    opAppleAnchor = 3,
    opAnchorHash = 4,
    opAnd = 6,
    opCertField = 11,
    opCertGeneric = 14,
    opAppleGenericAnchor = 15,
};
enum : quint32 { matchExists = 0, matchEqual = 1 };
constexpr qint32 leafSlot = 0;
constexpr qint32 intermediateSlot = 1;
constexpr qint32 anchorSlot = -1;

const char* const developerIdIntermediate = "1.2.840.113635.100.6.2.6";
const char* const worldwideDeveloperIntermediate = "1.2.840.113635.100.6.2.1";
// The marker OIDs, as their DER contents; the leaf's is 1.2.840.113635.100.6.1.13.
const QByteArray developerIdIntermediateOid = QByteArray::fromHex("2a864886f76364060206");
const QByteArray developerIdLeafOid = QByteArray::fromHex("2a864886f7636406010d");
const QByteArray worldwideDeveloperOid = QByteArray::fromHex("2a864886f76364060201");

QByteArray word(quint32 value) {
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray data(const QByteArray& bytes) {
    return word(quint32(bytes.size())) + bytes + QByteArray((4 - bytes.size() % 4) % 4, '\0');
}

QByteArray both(const QList<QByteArray>& terms) {
    QByteArray expression = terms.first();
    for (qsizetype index = 1; index < terms.size(); ++index)
        expression = word(opAnd) + expression + terms.at(index);
    return expression;
}

QByteArray field(qint32 slot, const QByteArray& name, const QString& value) {
    return word(opCertField) + word(quint32(slot)) + data(name) + word(matchEqual) + data(value.toUtf8());
}

QByteArray marker(qint32 slot, const QByteArray& oid) {
    return word(opCertGeneric) + word(quint32(slot)) + data(oid) + word(matchExists);
}

QByteArray anchorHash(qint32 slot, const QByteArray& certificate) {
    return word(opAnchorHash) + word(quint32(slot)) +
           data(QCryptographicHash::hash(certificate, QCryptographicHash::Sha1));
}

} // namespace

const QList<QByteArray>& ImplicitRequirement::appleRootHashes() {
    // Apple Root CA.
    static const QList<QByteArray> hashes{QByteArray::fromHex("611e5b662c593a08ff58d14ae22452d198df6c60")};
    return hashes;
}

std::optional<QString> ImplicitRequirement::make(const QString& identifier, const QList<QByteArray>& chain,
                                                 const QList<QByteArray>& appleRoots) {
    if (chain.isEmpty())
        return std::nullopt;
    const QByteArray ident = word(opIdent) + data(identifier.toUtf8());
    const QByteArray root = QCryptographicHash::hash(chain.last(), QCryptographicHash::Sha1);
    if (!appleRoots.contains(root))
        return RequirementDecompiler::decompileExpression(both({ident, otherAnchor(chain)}));
    const auto apple = appleAnchored(chain);
    return apple ? RequirementDecompiler::decompileExpression(both({ident, *apple})) : std::nullopt;
}

std::optional<QByteArray> ImplicitRequirement::appleAnchored(const QList<QByteArray>& chain) {
    const QByteArray& leaf = chain.first();
    // Leaf, intermediate and root, as Apple issues to developers.
    const bool developerChain = chain.size() == 3;
    if (developerChain && SignerCertificates::hasExtension(chain.at(1), developerIdIntermediate)) {
        const auto team = SignerCertificates::subjectComponent(leaf, "OU");
        if (!team)
            return std::nullopt;
        return both({word(opAppleGenericAnchor), marker(intermediateSlot, developerIdIntermediateOid),
                     marker(leafSlot, developerIdLeafOid), field(leafSlot, "subject.OU", *team)});
    }
    if (developerChain && SignerCertificates::hasExtension(chain.at(1), worldwideDeveloperIntermediate)) {
        const auto name = SignerCertificates::commonName(leaf);
        if (!name)
            return std::nullopt;
        return both({word(opAppleGenericAnchor), field(leafSlot, "subject.CN", *name),
                     marker(intermediateSlot, worldwideDeveloperOid)});
    }
    return word(opAppleAnchor);
}

QByteArray ImplicitRequirement::otherAnchor(const QList<QByteArray>& chain) {
    // Up from the leaf while the issuer is of the leaf's own organisation;
    // the last of them is the authority the requirement names.
    const auto organisation = SignerCertificates::subjectComponent(chain.first(), "O");
    qsizetype slot = 0;
    while (organisation && slot + 1 < chain.size() &&
           SignerCertificates::subjectComponent(chain.at(slot + 1), "O") == organisation)
        ++slot;
    const bool isAnchor = organisation && slot == chain.size() - 1;
    return anchorHash(isAnchor ? anchorSlot : qint32(slot), chain.at(slot));
}

} // namespace quorlin::apptools
