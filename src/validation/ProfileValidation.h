#pragma once

#include "model/Payload.h"
#include "model/Profile.h"
#include "validation/ValidationSettings.h"

#include <QList>
#include <QString>

namespace quorlin {

// Every field fault of a whole profile, for the side-bar's badges and the
// command-line check: the root payload first, then the others in order;
// within a payload, keys depth-first in the domain's order.
class ProfileValidation {
public:
    struct FieldError {
        Payload::Pointer payload;
        // Key names joined with "."; the items of an array speak through it.
        QString keyPath;
        // The text the form shows for the field.
        QString message;
        friend bool operator==(const FieldError&, const FieldError&) = default;
    };

    // Without settings, only the values are judged.
    static QList<FieldError> validate(const Profile& profile, const ValidationSettings* settings);
    static QList<FieldError> validatePayload(const Payload::Pointer& payload,
                                             const ValidationSettings* settings);
};

} // namespace quorlin
