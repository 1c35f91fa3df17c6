#pragma once

#include "cli/Command.h"
#include "plist/Expected.h"
#include "plist/Value.h"

namespace quorlin::cli {

// plist convert -f xml1|binary1 FILE [-o OUT]: rewrites a property list in
// another encoding.
class PlistConvertCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("plist convert"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;

private:
    static Expected<QByteArray, QString> encode(const plist::Value& root, const QString& format);
};

} // namespace quorlin::cli
