#pragma once

#include <QString>

namespace quorlin {

// Where an identity's certificates and key live: its PEM file in the store.
struct IdentityReference {
    QString filePath;

    bool operator==(const IdentityReference&) const = default;
};

// One signing identity of the store, named by its certificate's common name.
struct SigningIdentity {
    QString name;
    IdentityReference secIdentity;
    bool isTrusted = false;

    bool operator==(const SigningIdentity&) const = default;
};

} // namespace quorlin
