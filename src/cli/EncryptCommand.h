#pragma once

#include "cli/Command.h"

namespace quorlin::cli {

// encrypt FILE --recipient CERT... -o OUT: the payloads sealed for devices.
class EncryptCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("encrypt"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;
};

} // namespace quorlin::cli
