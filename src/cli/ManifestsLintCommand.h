#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// manifests lint PATH... [--json]: contradictions and likely mistakes in
// manifests of any form, with the file, the key path and the reason.
class ManifestsLintCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("manifests lint"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
