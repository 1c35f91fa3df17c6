#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// new DOMAIN... -o FILE: a new profile as the editor makes one, with one
// payload of each domain given.
class NewCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("new"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
