#include "plist/XmlScalars.h"

#include "plist/HexDigit.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace quorlin::plist {

namespace {

// Days from 1970-01-01 to 2001-01-01, Apple's reference date.
constexpr qint64 referenceDateDays = 11323;
constexpr qint64 secondsPerDay = 86400;
// Years are kept to nine digits so that seconds never leave qint64.
constexpr qint64 maxYear = 999'999'999;

// Proleptic Gregorian calendar, astronomical year numbering (year 0 exists),
// after Howard Hinnant's civil-calendar algorithms: exact for any year,
// independent of time_t and of the time zone database.
qint64 daysFromCivil(qint64 year, int month, int day) {
    year -= month <= 2;
    const qint64 era = (year >= 0 ? year : year - 399) / 400;
    const qint64 yearOfEra = year - era * 400;
    const qint64 dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const qint64 dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

struct CivilDate {
    qint64 year;
    int month;
    int day;
};

CivilDate civilFromDays(qint64 days) {
    days += 719468;
    const qint64 era = (days >= 0 ? days : days - 146096) / 146097;
    const qint64 dayOfEra = days - era * 146097;
    const qint64 yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const qint64 dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const qint64 monthIndex = (5 * dayOfYear + 2) / 153;
    const int day = int(dayOfYear - (153 * monthIndex + 2) / 5 + 1);
    const int month = int(monthIndex < 10 ? monthIndex + 3 : monthIndex - 9);
    return {yearOfEra + era * 400 + (month <= 2), month, day};
}

bool isLeapYear(qint64 year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int daysInMonth(qint64 year, int month) {
    static constexpr std::array<int, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : days[month - 1];
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads exactly two digits at `pos` and the separator after them, if any.
bool readTwoDigits(std::string_view text, size_t& pos, int& value, char separator) {
    if (pos + 2 > text.size() || !isDigit(text[pos]) || !isDigit(text[pos + 1]))
        return false;
    value = (text[pos] - '0') * 10 + (text[pos + 1] - '0');
    pos += 2;
    if (separator == '\0')
        return true;
    if (pos >= text.size() || text[pos] != separator)
        return false;
    ++pos;
    return true;
}

constexpr char base64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<qint8, 256> makeBase64DecodeTable() {
    std::array<qint8, 256> table{};
    for (auto& entry : table)
        entry = -1;
    for (int i = 0; i < 64; ++i)
        table[uchar(base64Alphabet[i])] = qint8(i);
    return table;
}

constexpr std::array<qint8, 256> base64DecodeTable = makeBase64DecodeTable();

} // namespace

std::string_view XmlScalars::trimmed(std::string_view text) {
    while (!text.empty() && isXmlWhitespace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isXmlWhitespace(text.back()))
        text.remove_suffix(1);
    return text;
}

std::optional<Value> XmlScalars::parseInteger(std::string_view text) {
    text = trimmed(text);
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    if (text.empty())
        return std::nullopt;
    quint64 magnitude = 0;
    for (const char c : text) {
        const int digit = base == 16 ? hexDigitValue(c) : (isDigit(c) ? c - '0' : -1);
        if (digit < 0)
            return std::nullopt;
        if (magnitude > (std::numeric_limits<quint64>::max() - quint64(digit)) / quint64(base))
            return std::nullopt;
        magnitude = magnitude * quint64(base) + quint64(digit);
    }
    constexpr quint64 signedLimit = quint64(std::numeric_limits<qint64>::max());
    if (!negative)
        return magnitude > signedLimit ? Value::fromUnsigned(magnitude) : Value(qint64(magnitude));
    if (magnitude > signedLimit + 1)
        return std::nullopt;
    // Negating in unsigned arithmetic reaches INT64_MIN without overflow.
    return Value(qint64(~magnitude + 1));
}

std::optional<double> XmlScalars::parseReal(std::string_view text) {
    text = trimmed(text);
    // from_chars takes a leading minus only; Apple also writes "+infinity".
    if (text.size() > 1 && text.front() == '+' && text[1] != '-' && text[1] != '+')
        text.remove_prefix(1);
    if (text.empty())
        return std::nullopt;
    double real = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), real);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return real;
}

std::optional<Date> XmlScalars::parseDate(std::string_view text) {
    text = trimmed(text);
    size_t pos = 0;
    const bool negativeYear = !text.empty() && text.front() == '-';
    if (negativeYear)
        ++pos;
    const size_t yearStart = pos;
    qint64 year = 0;
    while (pos < text.size() && isDigit(text[pos])) {
        year = year * 10 + (text[pos] - '0');
        if (year > maxYear)
            return std::nullopt;
        ++pos;
    }
    if (pos == yearStart || pos >= text.size() || text[pos] != '-')
        return std::nullopt;
    ++pos;
    if (negativeYear)
        year = -year;
    int month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (!readTwoDigits(text, pos, month, '-') || !readTwoDigits(text, pos, day, 'T') ||
        !readTwoDigits(text, pos, hour, ':') || !readTwoDigits(text, pos, minute, ':') ||
        !readTwoDigits(text, pos, second, 'Z') || pos != text.size())
        return std::nullopt;
    if (month < 1 || month > 12 || day < 1 || day > daysInMonth(year, month) || hour > 23 || minute > 59 ||
        second > 59)
        return std::nullopt;
    const qint64 days = daysFromCivil(year, month, day) - referenceDateDays;
    const qint64 seconds = days * secondsPerDay + hour * 3600 + minute * 60 + second;
    return Date{double(seconds)};
}

std::optional<QByteArray> XmlScalars::decodeBase64(std::string_view text) {
    QByteArray bytes(qsizetype(text.size() / 4 * 3 + 3), Qt::Uninitialized);
    char* out = bytes.data();
    quint32 accumulator = 0;
    int pending = 0; // sextets in the accumulator
    qsizetype digits = 0;
    int padding = 0;
    for (const char c : text) {
        if (isXmlWhitespace(c))
            continue;
        if (c == '=') {
            ++padding;
            continue;
        }
        const int sextet = base64DecodeTable[uchar(c)];
        if (sextet < 0 || padding > 0)
            return std::nullopt;
        accumulator = (accumulator << 6) | quint32(sextet);
        ++digits;
        if (++pending == 4) {
            *out++ = char(accumulator >> 16);
            *out++ = char(accumulator >> 8);
            *out++ = char(accumulator);
            accumulator = 0;
            pending = 0;
        }
    }
    // One leftover sextet holds less than a byte; padding, when present, must complete the group.
    if (pending == 1 || padding > 2 || (padding > 0 && (digits + padding) % 4 != 0))
        return std::nullopt;
    if (pending == 2) {
        *out++ = char(accumulator >> 4);
    } else if (pending == 3) {
        *out++ = char(accumulator >> 10);
        *out++ = char(accumulator >> 2);
    }
    bytes.truncate(out - bytes.constData());
    return bytes;
}

void XmlScalars::appendInteger(QByteArray& out, const Value& integer) {
    if (integer.isUnsignedInteger())
        out += QByteArray::number(*integer.toUnsigned());
    else
        out += QByteArray::number(integer.toInteger().value_or(0));
}

void XmlScalars::appendReal(QByteArray& out, double real) {
    if (std::isnan(real)) {
        out += "nan";
        return;
    }
    if (std::isinf(real)) {
        out += real > 0 ? "+infinity" : "-infinity";
        return;
    }
    if (real == 0) {
        // Apple writes "0.0"; a negative zero keeps its sign so that it reads back as it was.
        out += std::signbit(real) ? "-0.0" : "0.0";
        return;
    }
    // %g at 15 significant digits (Apple's form, "1" for 1.0), widened only as far as needed to round-trip.
    char buffer[32];
    for (int precision = 15; precision <= 17; ++precision) {
        const auto result =
            std::to_chars(buffer, buffer + sizeof buffer, real, std::chars_format::general, precision);
        double check = 0;
        std::from_chars(buffer, result.ptr, check);
        if (check == real || precision == 17) {
            out.append(buffer, result.ptr - buffer);
            return;
        }
    }
}

void XmlScalars::appendDate(QByteArray& out, Date date) {
    // Outside what the reader accepts (or NaN) can't be written faithfully; keep to the readable range.
    const double limit = double(daysFromCivil(maxYear, 12, 31) - referenceDateDays) * secondsPerDay;
    double seconds = std::floor(date.secondsSinceReferenceDate);
    if (std::isnan(seconds))
        seconds = 0;
    seconds = std::clamp(seconds, -limit, limit);
    const qint64 total = qint64(seconds);
    qint64 days = total / secondsPerDay;
    qint64 secondOfDay = total % secondsPerDay;
    if (secondOfDay < 0) {
        secondOfDay += secondsPerDay;
        --days;
    }
    const CivilDate civil = civilFromDays(days + referenceDateDays);
    char buffer[48];
    const int length = std::snprintf(
        buffer, sizeof buffer, "%04lld-%02d-%02dT%02d:%02d:%02dZ", static_cast<long long>(civil.year),
        civil.month, civil.day, int(secondOfDay / 3600), int(secondOfDay / 60 % 60), int(secondOfDay % 60));
    out.append(buffer, length);
}

void XmlScalars::appendBase64Lines(QByteArray& out, const QByteArray& data, int depth) {
    // Apple's writer caps the indentation of base64 lines at eight tabs and
    // lets every tab take eight characters from a 76-character line.
    const int tabs = std::min(depth, 8);
    const qsizetype lineLength = 76 - 8 * tabs;
    const QByteArray encoded = data.toBase64();
    out.reserve(out.size() + encoded.size() + (encoded.size() / lineLength + 1) * (tabs + 1));
    for (qsizetype start = 0; start < encoded.size(); start += lineLength) {
        out.append(tabs, '\t');
        out.append(encoded.constData() + start, std::min(lineLength, encoded.size() - start));
        out.append('\n');
    }
}

} // namespace quorlin::plist
