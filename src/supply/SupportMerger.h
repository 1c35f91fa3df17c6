#pragma once

#include "plist/Value.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// Overlays a hand-written support file on a finished manifest. A support file
// corrects keys by name, removes a key ("pfm_quorlin_omit"), removes
// properties ("pfm_quorlin_omit_keys") or adds keys; what it says wins.
class SupportMerger {
public:
    static constexpr int maximumDepth = 64;

    // "<domain> manifest-support.plist"; the general payload's is named after "Configuration".
    static QString supportFileName(const QString& domain);
    // The support file of the first directory that has one, parsed; nothing
    // when none exists or it isn't a readable dictionary.
    static std::optional<plist::Dictionary> support(const QString& domain, const QStringList& directories);
    static plist::Dictionary mergeSupport(const plist::Dictionary& manifest, const plist::Dictionary& support,
                                          int depth = 0);
};

} // namespace quorlin
