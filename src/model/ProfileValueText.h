#pragma once

#include "plist/Value.h"

#include <QString>

namespace quorlin {

// A value in a line of text, the same for the same value however the file
// wrote it: strings quoted, dates in ISO 8601 (UTC), data by size and digest
// rather than by its base64, containers inline with keys in order.
class ProfileValueText {
public:
    static QString describe(const plist::Value& value);

private:
    static QString quoted(const QString& string);
    static QString number(const plist::Value& value);
    static QString data(const QByteArray& bytes);
    static QString array(const plist::Array& items);
    static QString dictionary(const plist::Dictionary& entries);
};

} // namespace quorlin
