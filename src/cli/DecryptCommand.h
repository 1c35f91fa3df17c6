#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// decrypt FILE --identity NAME -o OUT: the sealed payloads opened.
class DecryptCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("decrypt"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
