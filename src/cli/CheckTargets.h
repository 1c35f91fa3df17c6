#pragma once

#include "plist/Expected.h"
#include "validation/ValidationSettings.h"

#include <QString>
#include <QStringList>

#include <array>
#include <memory>
#include <optional>
#include <utility>

namespace quorlin::cli {

// The targets a check holds keys against: like a file opened in the editor,
// a check starts with no target at all, and it never saves its targets over
// the choice the editor remembers. A platform named without a bound takes
// the bound the editor's validation settings hold for it, as a new profile
// in the editor would.
class CheckTargets {
public:
    // `platforms`: names such as "macOS" or "ios", each may be a comma list.
    // The bounds apply to every platform named.
    static Expected<std::unique_ptr<CheckTargets>, QString> make(const QStringList& platforms,
                                                                 const std::optional<QString>& minimum,
                                                                 const std::optional<QString>& maximum);

    const ValidationSettings& settings() const { return m_settings; }
    // "macOS, iOS" words for the platforms, for help and messages.
    static QString platformNames();

private:
    CheckTargets();

    ValidationSettings m_settings;
    // The editor's bounds of each platform, before the reset.
    std::array<std::pair<QString, QString>, 4> m_editorBounds;
};

} // namespace quorlin::cli
