#pragma once

#include "plist/Value.h"

#include <QByteArray>

#include <optional>
#include <string_view>

namespace quorlin::plist {

// The text forms of the scalar elements of an XML property list, read the
// way Apple's parser accepts them and written the way its writer emits them.
// Everything here is locale-independent: a German locale must not turn
// "1.5" into "1,5".
class XmlScalars {
public:
    // Decimal or "0x" hexadecimal, optional sign, surrounding whitespace
    // allowed. Values above INT64_MAX up to UINT64_MAX stay unsigned.
    static std::optional<Value> parseInteger(std::string_view text);
    // Decimal with optional exponent, or "nan", "inf", "+infinity" and kin.
    static std::optional<double> parseReal(std::string_view text);
    // "YYYY-MM-DDTHH:MM:SSZ" in UTC; the year may be negative or wider than four digits.
    static std::optional<Date> parseDate(std::string_view text);
    // Standard base64; whitespace anywhere is ignored, padding is optional.
    static std::optional<QByteArray> decodeBase64(std::string_view text);

    static void appendInteger(QByteArray& out, const Value& integer);
    static void appendReal(QByteArray& out, double real);
    static void appendDate(QByteArray& out, Date date);
    // Base64 in lines of 76 characters less 8 per level of indentation, each
    // line indented by `depth` tabs (at most 8) and ended by a newline.
    static void appendBase64Lines(QByteArray& out, const QByteArray& data, int depth);

    static bool isXmlWhitespace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
    static std::string_view trimmed(std::string_view text);
};

} // namespace quorlin::plist
