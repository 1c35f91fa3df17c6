#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// unsign FILE -o OUT: the property list inside a signed profile.
class UnsignCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("unsign"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
