#pragma once

#include <QString>

#include <optional>

namespace quorlin {

// Asked for the passphrase of an identity's key when signing needs it: the
// editor asks in a dialog, the command-line tool at the terminal or from a file.
class PassphraseProvider {
public:
    virtual ~PassphraseProvider() = default;
    // Nothing when the user declines.
    virtual std::optional<QString> passphraseFor(const QString& identityName) = 0;
};

} // namespace quorlin
