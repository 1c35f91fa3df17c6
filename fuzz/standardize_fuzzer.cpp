// Runs one manifest through the dictionary transformations of the
// standardization: third-party conversion, merging with itself, a support
// overlay with itself and the generic finishing. Whatever the tree holds,
// each step must return, and the results must keep their basic shape.
#include "plist/PlistReader.h"
#include "supply/DomainMerger.h"
#include "supply/GenericSupport.h"
#include "supply/SupportMerger.h"
#include "supply/ThirdPartyManifest.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace quorlin;

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

void checkConverted(const plist::Dictionary& converted) {
    require(!converted.contains(QStringLiteral("pfm_platforms")));
    const plist::Value& subkeys = converted.value(QStringLiteral("pfm_subkeys"));
    require(subkeys.isNull() || subkeys.isArray());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto result = plist::PlistReader::read(bytes);
    if (!result || !result->root.isDictionary())
        return 0;
    const plist::Dictionary& manifest = *result->root.dictionary();

    const plist::Dictionary converted = ThirdPartyManifest::convert(manifest);
    checkConverted(converted);

    const plist::Dictionary merged = DomainMerger::merge({manifest, manifest});
    require(merged.array(QStringLiteral("pfm_platforms")) && merged.array(QStringLiteral("pfm_subkeys")));

    plist::Dictionary overlaid = SupportMerger::mergeSupport(converted, manifest);
    GenericSupport(std::nullopt, true, true, QStringList{QString()}).apply(overlaid);
    return 0;
}
