#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// sign FILE --identity NAME -o OUT: the profile as a signed message.
class SignCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("sign"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
