#pragma once

#include "documents/PassphraseProvider.h"
#include "plist/Expected.h"

#include <QString>

#include <optional>

namespace quorlin::cli {

// A password or passphrase for the command-line tool: the first line of a
// file given with an option, or else typed at the terminal with echo off.
// Never an argument itself, which any user of the machine could read in the
// process list.
class SecretSource : public PassphraseProvider {
public:
    // `prompt` is shown at the terminal; "%1" in it becomes the identity's name.
    SecretSource(std::optional<QString> file, QString prompt)
        : m_file(std::move(file))
        , m_prompt(std::move(prompt)) {}

    // The error names the file and the reason, or says that no terminal was there to ask.
    Expected<QString, QString> secret(const QString& identityName = {});
    std::optional<QString> passphraseFor(const QString& identityName) override;

    // Why the last secret() failed, for a command to report after signing gave nothing.
    const std::optional<QString>& lastError() const { return m_lastError; }

private:
    Expected<QString, QString> fromFile() const;
    Expected<QString, QString> fromTerminal(const QString& identityName) const;

    std::optional<QString> m_file;
    QString m_prompt;
    std::optional<QString> m_lastError;
};

} // namespace quorlin::cli
