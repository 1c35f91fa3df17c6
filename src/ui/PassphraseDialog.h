#pragma once

#include "documents/PassphraseProvider.h"

namespace quorlin {

// Asks for the passphrase of a signing identity's key when a save signs,
// over the window in front, without echoing what is typed.
class PassphraseDialog : public PassphraseProvider {
public:
    static inline const QString dialogObjectName = QStringLiteral("passphraseDialog");

    std::optional<QString> passphraseFor(const QString& identityName) override;
};

} // namespace quorlin
