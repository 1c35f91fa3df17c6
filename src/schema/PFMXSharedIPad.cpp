#include "schema/PFMXSharedIPad.h"

#include "schema/PFMXFieldReader.h"

#include <array>

namespace quorlin {

namespace {

constexpr std::array allModes{PFMXSharedIPad::Mode::allowed, PFMXSharedIPad::Mode::required,
                              PFMXSharedIPad::Mode::forbidden, PFMXSharedIPad::Mode::ignored};
constexpr std::array allScopes{PFMXSharedIPad::Scope::system, PFMXSharedIPad::Scope::user,
                               PFMXSharedIPad::Scope::local};

} // namespace

QString PFMXSharedIPad::rawValue(Mode mode) {
    switch (mode) {
    case Mode::allowed:
        return QStringLiteral("allowed");
    case Mode::required:
        return QStringLiteral("required");
    case Mode::forbidden:
        return QStringLiteral("forbidden");
    case Mode::ignored:
        return QStringLiteral("ignored");
    }
    return {};
}

std::optional<PFMXSharedIPad::Mode> PFMXSharedIPad::modeFromRawValue(const QString& rawValue) {
    for (const Mode mode : allModes) {
        if (PFMXSharedIPad::rawValue(mode) == rawValue)
            return mode;
    }
    return std::nullopt;
}

QString PFMXSharedIPad::rawValue(Scope scope) {
    switch (scope) {
    case Scope::system:
        return QStringLiteral("system");
    case Scope::user:
        return QStringLiteral("user");
    case Scope::local:
        return QStringLiteral("local");
    }
    return {};
}

std::optional<PFMXSharedIPad::Scope> PFMXSharedIPad::scopeFromRawValue(const QString& rawValue) {
    for (const Scope scope : allScopes) {
        if (PFMXSharedIPad::rawValue(scope) == rawValue)
            return scope;
    }
    return std::nullopt;
}

Expected<PFMXSharedIPad, PFMXDecodingError> PFMXSharedIPad::decode(const plist::Dictionary& dictionary,
                                                                   const QString& codingPath) {
    PFMXFieldReader reader(dictionary, codingPath);
    std::optional<Mode> mode;
    PFMXSharedIPad sharedIPad;
    reader.readWord(QStringLiteral("pfmx_mode"), mode, &modeFromRawValue);
    reader.require(QStringLiteral("pfmx_mode"), mode);
    reader.read(QStringLiteral("pfmx_device_channel"), sharedIPad.deviceChannel);
    reader.read(QStringLiteral("pfmx_user_channel"), sharedIPad.userChannel);
    reader.readWords(QStringLiteral("pfmx_allowed_scopes"), sharedIPad.allowedScopes, &scopeFromRawValue);
    if (reader.error())
        return fail(*reader.error());
    sharedIPad.mode = *mode;
    return sharedIPad;
}

} // namespace quorlin
