#include "schema/SupportedPlatform.h"

#include <tuple>

namespace quorlin {

bool operator<(const SupportedPlatform& a, const SupportedPlatform& b) {
    return std::tie(a.model, a.versions) < std::tie(b.model, b.versions);
}

} // namespace quorlin
