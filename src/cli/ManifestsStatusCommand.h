#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// manifests status [--json]: which manifests the editor uses, where their
// store lies and what the last update brought, without touching the network.
class ManifestsStatusCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("manifests status"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
