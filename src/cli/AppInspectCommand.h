#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// app inspect PATH... [--json]: what the app inspector shows of applications
// and program files, for scripts that fill code requirements.
class AppInspectCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("app inspect"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
