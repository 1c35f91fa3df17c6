#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// plist lint FILE...: whether each file is a readable property list.
class PlistLintCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("plist lint"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
