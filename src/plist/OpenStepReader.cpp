#include "plist/OpenStepReader.h"

#include "plist/HexDigit.h"

#include <QStringDecoder>

#include <array>
#include <optional>

namespace quorlin::plist {

namespace {

// Octal escapes name bytes of the NeXTSTEP encoding, whose upper half differs
// from Latin-1; the last two bytes are unassigned.
constexpr std::array<char16_t, 128> nextStepUpperHalf{
    0x00A0, 0x00C0, 0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C7, 0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC,
    0x00CD, 0x00CE, 0x00CF, 0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D9, 0x00DA, 0x00DB,
    0x00DC, 0x00DD, 0x00DE, 0x00B5, 0x00D7, 0x00F7, 0x00A9, 0x00A1, 0x00A2, 0x00A3, 0x2044, 0x00A5, 0x0192,
    0x00A7, 0x00A4, 0x2019, 0x201C, 0x00AB, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x00AE, 0x2013, 0x2020, 0x2021,
    0x00B7, 0x00A6, 0x00B6, 0x2022, 0x201A, 0x201E, 0x201D, 0x00BB, 0x2026, 0x2030, 0x00AC, 0x00BF, 0x00B9,
    0x02CB, 0x00B4, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x00A8, 0x00B2, 0x02DA, 0x00B8, 0x00B3, 0x02DD,
    0x02DB, 0x02C7, 0x2014, 0x00B1, 0x00BC, 0x00BD, 0x00BE, 0x00E0, 0x00E1, 0x00E2, 0x00E3, 0x00E4, 0x00E5,
    0x00E7, 0x00E8, 0x00E9, 0x00EA, 0x00EB, 0x00EC, 0x00C6, 0x00ED, 0x00AA, 0x00EE, 0x00EF, 0x00F0, 0x00F1,
    0x0141, 0x00D8, 0x0152, 0x00BA, 0x00F2, 0x00F3, 0x00F4, 0x00F5, 0x00F6, 0x00E6, 0x00F9, 0x00FA, 0x00FB,
    0x0131, 0x00FC, 0x00FD, 0x0142, 0x00F8, 0x0153, 0x00DF, 0x00FE, 0x00FF, 0xFFFD, 0xFFFD};

char16_t fromNextStep(uchar byte) {
    return byte < 0x80 ? char16_t(byte) : nextStepUpperHalf[byte - 0x80];
}

bool isUnquotedCharacter(char16_t c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '$' || c == '+' || c == '/' || c == ':' || c == '.' || c == '-';
}

bool isOctalDigit(char16_t c) {
    return c >= '0' && c <= '7';
}

// Lines as an editor counts them: "\n", "\r\n" and a lone "\r" each end one.
qint64 lineAt(const QString& text, qsizetype position) {
    qint64 line = 1;
    for (qsizetype i = 0; i < position && i < text.size(); ++i) {
        if (text[i] == u'\n' || (text[i] == u'\r' && (i + 1 >= text.size() || text[i + 1] != u'\n')))
            ++line;
    }
    return line;
}

ParseError errorOnLine(const QString& reason, qint64 line) {
    return ParseError{reason, line, -1};
}

// UTF-8 unless a byte-order mark says UTF-16; splitting at newlines is safe
// in UTF-8, so a bad sequence is reported on its own line.
Expected<QString, ParseError> decodeText(const QByteArray& bytes) {
    if (bytes.startsWith("\xFE\xFF") || bytes.startsWith("\xFF\xFE")) {
        auto decoder = QStringDecoder(QStringDecoder::Utf16, QStringDecoder::Flag::Stateless);
        QString text = decoder.decode(bytes);
        if (decoder.hasError())
            return fail(errorOnLine(QStringLiteral("text is not valid UTF-16"), 1));
        return text;
    }
    auto decoder = QStringDecoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (!decoder.hasError())
        return text;
    const QList<QByteArray> lines = bytes.split('\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        auto lineDecoder = QStringDecoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString decodedLine = lineDecoder.decode(lines[i]); // decoding happens on conversion
        if (lineDecoder.hasError())
            return fail(errorOnLine(QStringLiteral("text is not valid UTF-8"), i + 1));
    }
    return fail(errorOnLine(QStringLiteral("text is not valid UTF-8"), lines.size()));
}

// A recursive-descent reader over the decoded text. Steps that fail return
// nothing after recording the first error; a step that finds no value where
// one is optional returns nothing without an error.
class Parser {
public:
    Parser(QString text, const ReadLimits& limits)
        : m_text(std::move(text))
        , m_maxDepth(limits.maxDepth) {
        if (m_text.startsWith(QChar(0xFEFF)))
            m_position = 1;
    }

    // One value; or, when the text opens with a string followed by more, the
    // "key = value;" entries of a strings file as one dictionary.
    Expected<Value, ParseError> parseDocument() {
        const qsizetype start = m_position;
        if (!skipSpace())
            return fail(*m_error);
        if (atEnd())
            return Value(Dictionary()); // nothing but space and comments: an empty strings file
        const auto root = parseValue(0);
        if (!root)
            return fail(*m_error);
        if (!skipSpace())
            return fail(*m_error);
        if (atEnd())
            return *root;
        if (!root->isString())
            return fail(errorHere(QStringLiteral("unexpected content after the property list")));
        m_position = start;
        return parseStringsFile();
    }

private:
    Expected<Value, ParseError> parseStringsFile() {
        auto dictionary = parseEntries(0);
        if (!dictionary)
            return fail(*m_error);
        if (!atEnd())
            return fail(errorHere(QStringLiteral("expected a key")));
        return Value(std::move(*dictionary));
    }

    std::optional<Value> parseValue(int depth) {
        const auto value = parseOptionalValue(depth);
        if (!value && !m_error)
            return failHere(atEnd() ? QStringLiteral("unexpected end of text, expected a value")
                                    : QStringLiteral("unexpected character, expected a value"));
        return value;
    }

    std::optional<Value> parseOptionalValue(int depth) {
        if (!skipSpace() || atEnd())
            return std::nullopt;
        const char16_t c = current();
        if (c == '{')
            return parseDictionary(depth);
        if (c == '(')
            return parseArray(depth);
        if (c == '<')
            return parseData();
        if (c == '"' || c == '\'' || isUnquotedCharacter(c))
            return parseString();
        return std::nullopt;
    }

    std::optional<Value> parseDictionary(int depth) {
        if (!enterContainer(depth))
            return std::nullopt;
        const qsizetype opening = m_position;
        ++m_position;
        auto dictionary = parseEntries(depth + 1);
        if (!dictionary)
            return std::nullopt;
        if (atEnd() || current() != '}')
            return failHere(QStringLiteral("expected a key or '}' to close the dictionary opened on line %1")
                                .arg(lineAt(m_text, opening)));
        ++m_position;
        return Value(std::move(*dictionary));
    }

    // "key = value;" entries up to the first thing that cannot start a key.
    // A bare "key;" stands for "key = key;".
    std::optional<Dictionary> parseEntries(int depth) {
        Dictionary dictionary;
        while (skipSpace() && !atEnd() && startsString(current())) {
            const auto key = parseString();
            if (!key || !skipSpace())
                return std::nullopt;
            const QString name = *key->toString();
            Value value = *key;
            if (!atEnd() && current() == '=') {
                ++m_position;
                auto parsed = parseValue(depth);
                if (!parsed || !skipSpace())
                    return std::nullopt;
                value = std::move(*parsed);
            } else if (atEnd() || current() != ';') {
                return failHere(QStringLiteral("expected '=' after the key \"%1\"").arg(name.left(64)));
            }
            if (atEnd() || current() != ';')
                return failHere(QStringLiteral("missing ';' after the value of \"%1\"").arg(name.left(64)));
            ++m_position;
            dictionary.insert(name, value);
        }
        if (m_error)
            return std::nullopt;
        return dictionary;
    }

    std::optional<Value> parseArray(int depth) {
        if (!enterContainer(depth))
            return std::nullopt;
        const qsizetype opening = m_position;
        ++m_position;
        Array array;
        auto element = parseOptionalValue(depth + 1);
        while (element) {
            array.append(std::move(*element));
            if (!skipSpace())
                return std::nullopt;
            if (atEnd() || current() != ',')
                break;
            ++m_position;
            element = parseOptionalValue(depth + 1); // nothing after the last comma is fine
        }
        if (m_error || !skipSpace())
            return std::nullopt;
        if (atEnd() || current() != ')')
            return failHere(QStringLiteral("expected ',' or ')' to close the array opened on line %1")
                                .arg(lineAt(m_text, opening)));
        ++m_position;
        return Value(std::move(array));
    }

    // Pairs of hex digits; space may separate pairs but not split one.
    std::optional<Value> parseData() {
        const qsizetype opening = m_position;
        ++m_position;
        QByteArray data;
        while (!atEnd() && current() != '>') {
            const char16_t c = current();
            if (QChar::isSpace(c)) {
                ++m_position;
                continue;
            }
            const int high = hexDigitValue(c);
            const int low =
                m_position + 1 < m_text.size() ? hexDigitValue(m_text[m_position + 1].unicode()) : -1;
            if (high < 0 || low < 0)
                return failHere(QStringLiteral("data holds something other than pairs of hex digits"));
            data.append(char(high << 4 | low));
            m_position += 2;
        }
        if (atEnd())
            return failHere(
                QStringLiteral("data opened on line %1 has no closing '>'").arg(lineAt(m_text, opening)));
        ++m_position;
        return Value(data);
    }

    std::optional<Value> parseString() {
        const char16_t c = current();
        if (c == '"' || c == '\'')
            return parseQuotedString(c);
        const qsizetype start = m_position;
        while (!atEnd() && isUnquotedCharacter(current()))
            ++m_position;
        return Value(m_text.mid(start, m_position - start));
    }

    std::optional<Value> parseQuotedString(char16_t quote) {
        const qsizetype opening = m_position;
        ++m_position;
        QString string;
        while (!atEnd() && current() != quote) {
            if (current() == '\\') {
                ++m_position;
                if (atEnd())
                    break;
                string.append(parseEscape());
            } else {
                string.append(QChar(current()));
                ++m_position;
            }
        }
        if (atEnd())
            return failHere(
                QStringLiteral("string opened on line %1 has no closing quote").arg(lineAt(m_text, opening)));
        ++m_position;
        return Value(string);
    }

    // The character after a backslash; unknown escapes stand for themselves.
    char16_t parseEscape() {
        const char16_t c = current();
        ++m_position;
        switch (c) {
        case 'a':
            return '\a';
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        case 'v':
            return '\v';
        case 'U':
            return parseUnicodeEscape();
        default:
            return isOctalDigit(c) ? parseOctalEscape(c) : c;
        }
    }

    // Up to three octal digits, so "\0005" is a NUL and a "5".
    char16_t parseOctalEscape(char16_t first) {
        unsigned value = first - '0';
        for (int digits = 1; digits < 3 && !atEnd() && isOctalDigit(current()); ++digits, ++m_position)
            value = value * 8 + (current() - '0');
        return fromNextStep(uchar(value & 0xFF));
    }

    // Up to four hex digits naming one UTF-16 unit; surrogate pairs take two escapes.
    char16_t parseUnicodeEscape() {
        unsigned value = 0;
        for (int digits = 0; digits < 4 && !atEnd() && hexDigitValue(current()) >= 0; ++digits, ++m_position)
            value = value * 16 + unsigned(hexDigitValue(current()));
        return char16_t(value);
    }

    // Space and comments; false, with the error recorded, for an unclosed comment.
    bool skipSpace() {
        while (!atEnd()) {
            const char16_t c = current();
            if (QChar::isSpace(c)) {
                ++m_position;
            } else if (c == '/' && next() == '/') {
                while (!atEnd() && current() != '\n' && current() != '\r')
                    ++m_position;
            } else if (c == '/' && next() == '*') {
                const qsizetype end = m_text.indexOf(QStringLiteral("*/"), m_position + 2);
                if (end < 0) {
                    failHere(QStringLiteral("comment has no closing '*/'"));
                    return false;
                }
                m_position = end + 2;
            } else {
                return true;
            }
        }
        return true;
    }

    bool enterContainer(int depth) {
        if (depth < m_maxDepth)
            return true;
        failHere(QStringLiteral("arrays and dictionaries are nested more than %1 deep").arg(m_maxDepth));
        return false;
    }

    static bool startsString(char16_t c) { return c == '"' || c == '\'' || isUnquotedCharacter(c); }

    bool atEnd() const { return m_position >= m_text.size(); }
    char16_t current() const { return m_text[m_position].unicode(); }
    char16_t next() const { return m_position + 1 < m_text.size() ? m_text[m_position + 1].unicode() : 0; }

    ParseError errorHere(const QString& reason) const {
        return errorOnLine(reason, lineAt(m_text, m_position));
    }

    std::nullopt_t failHere(const QString& reason) {
        if (!m_error)
            m_error = errorHere(reason);
        return std::nullopt;
    }

    const QString m_text;
    const int m_maxDepth;
    qsizetype m_position = 0;
    std::optional<ParseError> m_error;
};

} // namespace

Expected<Value, ParseError> OpenStepReader::read(const QByteArray& bytes, const ReadLimits& limits) {
    if (bytes.isEmpty())
        return fail(errorOnLine(QStringLiteral("no property list in empty input"), 1));
    if (const auto tooLarge = sizeRefusal(bytes.size(), limits))
        return fail(*tooLarge);
    auto text = decodeText(bytes);
    if (!text)
        return fail(text.error());
    return Parser(std::move(text).value(), limits).parseDocument();
}

} // namespace quorlin::plist
