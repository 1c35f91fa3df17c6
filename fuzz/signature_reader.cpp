// Reads one input as an embedded code signature, and the same bytes as a
// requirement set, a requirement expression and DER entitlements, each of
// which the signature reader hands hostile bytes to.
#include "apptools/CodeSignature.h"
#include "apptools/DerEntitlements.h"
#include "apptools/RequirementDecompiler.h"

#include <cstddef>
#include <cstdint>

using namespace quorlin::apptools;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    if (const auto signature = CodeSignature::parse(bytes)) {
        (void)signature->designatedRequirement();
        (void)signature->developerName();
    }
    (void)RequirementDecompiler::designatedRequirement(bytes);
    (void)RequirementDecompiler::decompileExpression(bytes);
    (void)DerEntitlements::decode(bytes);
    return 0;
}
