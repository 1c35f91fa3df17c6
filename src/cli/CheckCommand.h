#pragma once

#include "cli/Command.h"
#include "cli/ProfileContext.h"
#include "validation/ValidationSettings.h"

namespace quorlin::cli {

// check FILE... : opens each profile as the editor does and reports what
// the editor would mark as wrong in it.
class CheckCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("check"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;

    // What follows start-up: the files and folders checked and reported.
    struct Request {
        const ProfileContext& context;
        const ValidationSettings& targets;
        QStringList operands;
        bool asJson = false;
    };
    static int check(const Request& request, CommandStreams& streams);
};

} // namespace quorlin::cli
