#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// identity import FILE.p12: a signing identity into the user's store.
class IdentityImportCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("identity import"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
