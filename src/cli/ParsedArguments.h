#pragma once

#include "plist/Expected.h"

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin::cli {

// The arguments of one command split into options and operands. Options
// may come anywhere; "--" ends them, so that a file named "-x" can be
// given; "-" alone is an operand.
class ParsedArguments {
public:
    // What a command accepts besides operands. Explicit, so that a braced
    // list of names always means the value options of the other parse().
    struct Options {
        explicit Options(QStringList values, QStringList flags = {}, QStringList repeatable = {})
            : values(std::move(values))
            , flags(std::move(flags))
            , repeatable(std::move(repeatable)) {}

        // Take the next argument as their value, once.
        QStringList values;
        // Stand alone: "--json".
        QStringList flags;
        // Take a value and may be given again: "--platform iOS --platform macOS".
        QStringList repeatable;
    };

    // Options in valueOptions take the next argument as their value; any
    // other option is refused with a message.
    static Expected<ParsedArguments, QString> parse(const QStringList& arguments,
                                                    const QStringList& valueOptions);
    static Expected<ParsedArguments, QString> parse(const QStringList& arguments, const Options& options);

    std::optional<QString> value(const QString& option) const;
    // Every value of a repeatable option, in the order given.
    QStringList values(const QString& option) const { return m_repeated.value(option); }
    bool hasFlag(const QString& flag) const { return m_flags.contains(flag); }
    const QStringList& operands() const { return m_operands; }

private:
    QMap<QString, QString> m_values;
    QMap<QString, QStringList> m_repeated;
    QSet<QString> m_flags;
    QStringList m_operands;
};

} // namespace quorlin::cli
