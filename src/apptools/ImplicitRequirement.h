#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace quorlin::apptools {

// The designated requirement that the system makes up for a signature that
// states none, from its identifier and its signer's chain:
// - under Apple's root, a Developer ID chain gives the identifier, "anchor
//   apple generic", the Developer ID markers of the intermediate and the
//   leaf, and the leaf's team (its subject's OU);
// - under Apple's root, a development or distribution chain gives the
//   identifier, "anchor apple generic", the leaf's common name and the
//   marker of the worldwide developer intermediate;
// - any other chain under Apple's root is Apple's own: "anchor apple";
// - under another root, the hash of the highest certificate that still
//   belongs to the leaf's organisation ("root" when that is the anchor).
// A signature with no certificates has none: an ad hoc one is known by its
// code directory's hash alone.
class ImplicitRequirement {
public:
    // SHA-1 hashes of the roots taken for Apple's.
    static const QList<QByteArray>& appleRootHashes();

    // The text form, as the requirement decompiler writes it; nothing for
    // an empty chain or a Developer ID leaf without a team.
    static std::optional<QString> make(const QString& identifier, const QList<QByteArray>& chain,
                                       const QList<QByteArray>& appleRoots = appleRootHashes());

private:
    static std::optional<QByteArray> appleAnchored(const QList<QByteArray>& chain);
    static QByteArray otherAnchor(const QList<QByteArray>& chain);
};

} // namespace quorlin::apptools
