#pragma once

#include "plist/Expected.h"
#include "validation/ValidationSettings.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace quorlin::cli {

// The targets a check holds keys against, from the command line alone: like
// a file opened in the editor, a check starts with no target at all, and it
// never saves its targets over the choice the editor remembers.
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
};

} // namespace quorlin::cli
