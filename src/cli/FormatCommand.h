#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// format FILE... [--check]: rewrites profiles as the editor saves them.
class FormatCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("format"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
