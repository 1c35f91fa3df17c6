#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// diff OLD NEW: what changed between two profiles in effect, payload by
// payload and key by key, with the manifests' titles.
class DiffCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("diff"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
