#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// verify FILE...: who signed each profile, and whether the signature and the
// signer's certificate hold.
class VerifyCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("verify"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
