#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// show FILE: a profile as stable, readable text, section by section; also
// the text conversion that lets git diff profiles.
class ShowCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("show"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
