// Converts any property list with a dictionary root from the third-party
// manifest form, then builds a domain of the result: neither step may fail
// in any way but by dropping what it can't use.
#include "plist/PlistReader.h"
#include "schema/PFMDomain.h"
#include "supply/ThirdPartyManifest.h"

#include <cstddef>
#include <cstdint>

using namespace quorlin;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto read = plist::PlistReader::read(bytes);
    if (!read || !read->root.isDictionary())
        return 0;
    ThirdPartyManifest::isThirdParty(*read->root.dictionary());
    const plist::Dictionary converted = ThirdPartyManifest::convert(*read->root.dictionary());
    PFMDomain::make(converted);
    return 0;
}
