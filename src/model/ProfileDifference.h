#pragma once

#include "plist/Value.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// One thing that differs between two profiles, told with the words of the
// manifests: which payload, which key (titles and path), and the values on
// either side. A changed payload comes first with kind `payloadChanged`, and
// the differences of its keys follow it.
struct ProfileDifference {
    enum class Kind {
        payloadAdded,
        payloadRemoved,
        payloadChanged,
        keyAdded,
        keyRemoved,
        keyChanged,
        itemAdded,
        itemRemoved,
        itemMoved,
        signatureAdded,
        signatureRemoved,
        signerChanged
    };

    Kind kind = Kind::keyChanged;
    // The payload: its type, the title of its domain (the type when no
    // manifest knows it), and its display name when it has one.
    QString payloadType;
    QString payloadTitle;
    QString payloadName;
    // Names and item indexes from the payload's top: "Options.Proxy.Port",
    // "Apps[2]". Empty for a difference of a whole payload or the signature.
    QString keyPath;
    // The titles along the path; an array item is named by its identity
    // (a bundle identifier, say) or "Item N".
    QStringList keyTitles;
    std::optional<plist::Value> oldValue;
    std::optional<plist::Value> newValue;
    // Places of a moved, added or removed array item.
    std::optional<qsizetype> oldIndex;
    std::optional<qsizetype> newIndex;

    bool isOfPayload() const {
        return kind == Kind::payloadAdded || kind == Kind::payloadRemoved || kind == Kind::payloadChanged;
    }
    // "payload added", "key changed", "signer changed", ...: the words of
    // the text form and the JSON form.
    static QString kindName(Kind kind);

    friend bool operator==(const ProfileDifference&, const ProfileDifference&) = default;
};

} // namespace quorlin
