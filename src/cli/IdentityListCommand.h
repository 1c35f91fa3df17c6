#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// identity list: the signing identities in the user's store.
class IdentityListCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("identity list"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
