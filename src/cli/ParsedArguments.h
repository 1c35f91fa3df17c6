#pragma once

#include "plist/Expected.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin::cli {

// The arguments of one command split into options and operands. Options
// may come anywhere; "--" ends them, so that a file named "-x" can be
// given; "-" alone is an operand.
class ParsedArguments {
public:
    // Options in valueOptions take the next argument as their value; any
    // other option is refused with a message.
    static Expected<ParsedArguments, QString> parse(const QStringList& arguments,
                                                    const QStringList& valueOptions);

    std::optional<QString> value(const QString& option) const;
    const QStringList& operands() const { return m_operands; }

private:
    QMap<QString, QString> m_values;
    QStringList m_operands;
};

} // namespace quorlin::cli
