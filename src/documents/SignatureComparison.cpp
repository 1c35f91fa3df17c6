#include "documents/SignatureComparison.h"

#include "documents/SigningServices.h"

#include <algorithm>

namespace quorlin {

std::optional<ProfileDifference>
SignatureComparison::compare(const std::optional<SignedMessage>& oldSignature,
                             const std::optional<SignedMessage>& newSignature) {
    if (!oldSignature && !newSignature)
        return std::nullopt;
    ProfileDifference difference;
    difference.payloadTitle = QStringLiteral("Signature");
    if (oldSignature)
        difference.oldValue = signerNames(*oldSignature);
    if (newSignature)
        difference.newValue = signerNames(*newSignature);
    if (difference.oldValue == difference.newValue)
        return std::nullopt;
    using Kind = ProfileDifference::Kind;
    difference.kind = !oldSignature   ? Kind::signatureAdded
                      : !newSignature ? Kind::signatureRemoved
                                      : Kind::signerChanged;
    return difference;
}

// A signer without a readable name still counts, under the name the
// verification shows for it.
plist::Value SignatureComparison::signerNames(const SignedMessage& signature) {
    QStringList names;
    for (const SignerVerification& signer : signature.signers)
        names << (signer.commonName.isEmpty() ? SigningServices::unknownName() : signer.commonName);
    if (signature.signers.isEmpty())
        names = signature.signerCommonNames;
    std::sort(names.begin(), names.end());
    plist::Array values;
    for (const QString& name : names)
        values << plist::Value(name);
    return plist::Value(values);
}

} // namespace quorlin
