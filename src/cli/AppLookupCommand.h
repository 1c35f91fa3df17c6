#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// app lookup TERM [--json]: the apps whose name or bundle identifier matches,
// among the operating system's own and in the App Store, as the app sheet
// of the editor lists them.
class AppLookupCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("app lookup"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
