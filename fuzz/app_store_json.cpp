// Reads one input as an answer of the App Store's search service: the store
// rows, and the whole list the result rules make of it for a fixed term.
#include "apptools/AppSearchResults.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace quorlin::apptools;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray body(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto store = AppSearchResults::storeResults(body);
    const auto rows =
        AppSearchResults::build(QStringLiteral("maps"), SearchResponse{200, std::nullopt, body});
    // Any body is a usable answer; its list always holds the system's Maps.
    if (!body.isEmpty() && (!rows || rows->isEmpty()))
        std::abort();
    if (rows && store && rows->size() > store->size() + AppSearchResults::systemApps().size() + 1)
        std::abort();
    return 0;
}
