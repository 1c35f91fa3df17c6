#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// export-payload FILE --uuid UUID -o OUT.plist: one payload of a profile as
// a property list of its own.
class ExportPayloadCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("export-payload"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
