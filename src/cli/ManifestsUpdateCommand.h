#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// manifests update [--address URL] [--branch NAME] [--json]: checks the
// online manifest repository and downloads what changed into the store the
// editor reads, with progress on standard error.
class ManifestsUpdateCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("manifests update"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
