#pragma once

#include "plist/Expected.h"
#include "plist/Value.h"
#include "schema/PFMXDecodingError.h"

#include <QList>
#include <QString>

#include <optional>

namespace quorlin {

// How a payload behaves on a Shared iPad ("pfmx_shared_ipad").
struct PFMXSharedIPad {
    // Also the modes of "pfmx_user_enrollment".
    enum class Mode { allowed, required, forbidden, ignored };
    enum class Scope { system, user, local };

    Mode mode = Mode::allowed;
    std::optional<bool> deviceChannel;
    std::optional<bool> userChannel;
    std::optional<QList<Scope>> allowedScopes;

    static QString rawValue(Mode mode);
    static std::optional<Mode> modeFromRawValue(const QString& rawValue);
    static QString rawValue(Scope scope);
    static std::optional<Scope> scopeFromRawValue(const QString& rawValue);

    // "pfmx_mode" is required; any value of the wrong type fails the record.
    static Expected<PFMXSharedIPad, PFMXDecodingError> decode(const plist::Dictionary& dictionary,
                                                              const QString& codingPath = {});

    friend bool operator==(const PFMXSharedIPad&, const PFMXSharedIPad&) = default;
};

} // namespace quorlin
