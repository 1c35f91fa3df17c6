#include "cli/ParsedArguments.h"

namespace quorlin::cli {

Expected<ParsedArguments, QString> ParsedArguments::parse(const QStringList& arguments,
                                                          const QStringList& valueOptions) {
    return parse(arguments, Options(valueOptions));
}

Expected<ParsedArguments, QString> ParsedArguments::parse(const QStringList& arguments,
                                                          const Options& options) {
    ParsedArguments parsed;
    bool optionsEnded = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const bool isOption = !optionsEnded && argument.startsWith(u'-') && argument != QStringLiteral("-");
        const bool takesValue = options.values.contains(argument) || options.repeatable.contains(argument);
        if (!isOption) {
            parsed.m_operands << argument;
        } else if (argument == QStringLiteral("--")) {
            optionsEnded = true;
        } else if (options.flags.contains(argument)) {
            parsed.m_flags.insert(argument);
        } else if (!takesValue) {
            return fail(QStringLiteral("unknown option '%1'").arg(argument));
        } else if (i + 1 >= arguments.size()) {
            return fail(QStringLiteral("option '%1' needs a value").arg(argument));
        } else if (options.repeatable.contains(argument)) {
            parsed.m_repeated[argument].append(arguments[++i]);
        } else if (parsed.m_values.contains(argument)) {
            return fail(QStringLiteral("option '%1' given twice").arg(argument));
        } else {
            parsed.m_values.insert(argument, arguments[++i]);
        }
    }
    return parsed;
}

std::optional<QString> ParsedArguments::value(const QString& option) const {
    if (!m_values.contains(option))
        return std::nullopt;
    return m_values.value(option);
}

} // namespace quorlin::cli
