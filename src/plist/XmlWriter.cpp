#include "plist/XmlWriter.h"

#include "plist/XmlScalars.h"

#include <QStringEncoder>
#include <QStringList>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace quorlin::plist {

namespace {

constexpr char header[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                          "<plist version=\"1.0\">\n";
constexpr char footer[] = "</plist>\n";

// One output buffer written through a cursor: growing geometrically and
// copying with memcpy costs a fraction of QByteArray's append per piece.
class Sink {
public:
    // Room for n more bytes; the cursor is advanced with advance().
    char* room(qsizetype n) {
        if (m_size + n > m_buffer.size())
            grow(n);
        return m_data + m_size;
    }
    void advance(qsizetype n) { m_size += n; }
    void append(const char* bytes, qsizetype n) {
        std::memcpy(room(n), bytes, size_t(n));
        m_size += n;
    }
    template <size_t N>
    void append(const char (&literal)[N]) {
        append(literal, qsizetype(N - 1));
    }
    void append(const QByteArray& bytes) { append(bytes.constData(), bytes.size()); }
    void append(qsizetype count, char c) {
        std::memset(room(count), c, size_t(count));
        m_size += count;
    }
    qsizetype size() const { return m_size; }
    void truncate(qsizetype size) { m_size = size; }
    QByteArray take() {
        m_buffer.truncate(m_size);
        return std::move(m_buffer);
    }

private:
    void grow(qsizetype n) {
        m_buffer.resize(std::max(2 * m_buffer.size(), m_size + n + 4096));
        m_data = m_buffer.data();
    }

    QByteArray m_buffer;
    char* m_data = nullptr;
    qsizetype m_size = 0;
};

// Writes the layout of Apple's XML writer: one element per line, tabs for
// depth, empty containers as "<array/>" and "<dict/>".
class TreeWriter {
public:
    explicit TreeWriter(Sink& out)
        : m_out(out) {}

    // False at the first null value or text holding U+0000, whose place
    // nullPath() then tells.
    bool write(const Value& value, int depth);
    QString nullPath() const;
    bool foundNulCharacter = false; // the failure was text, not a null value

private:
    void indent(int depth) { m_out.append(depth, '\t'); }
    bool appendEscaped(const QString& text);
    bool appendEscapedAscii(const QString& text, bool& ascii);
    template <typename Number>
    void appendNumber(Number number);
    template <size_t Open, size_t Close>
    bool appendElement(const char (&open)[Open], const QString& text, const char (&close)[Close]);
    void appendData(const QByteArray& data, int depth);
    bool writeArray(const Array& array, int depth);
    bool writeDictionary(const Dictionary& dictionary, int depth);

    Sink& m_out;
    QByteArray m_scalar; // the text of a real, date or data element
    QStringEncoder m_encoder{QStringEncoder::Utf8, QStringEncoder::Flag::Stateless};
    QByteArray m_utf8;      // reused for every string, to spare an allocation each
    QStringList m_nullPath; // innermost first, filled while unwinding
};

// Apple escapes only these three; quotes and apostrophes stay as they are.
const char* entityFor(char16_t c) {
    return c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : nullptr;
}

// ASCII units that can't be copied as they are: the escaped three and U+0000.
constexpr std::array<bool, 128> asciiNeedingCare = [] {
    std::array<bool, 128> table{};
    table[0] = table['&'] = table['<'] = table['>'] = true;
    return table;
}();

// Text that is all ASCII, as nearly every key and string is, goes straight
// from UTF-16 units to bytes; `ascii` turns false, with nothing written, at
// the first unit that isn't.
bool TreeWriter::appendEscapedAscii(const QString& text, bool& ascii) {
    const QChar* units = text.constData();
    const qsizetype count = text.size();
    char* const begin = m_out.room(5 * count); // "&amp;" is the longest a unit becomes
    char* out = begin;
    for (qsizetype i = 0; i < count; ++i) {
        const char16_t c = units[i].unicode();
        if (c < 0x80 && !asciiNeedingCare[c]) {
            *out++ = char(c);
            continue;
        }
        if (c >= 0x80) {
            ascii = false;
            return true;
        }
        if (c == 0) {
            foundNulCharacter = true;
            return false;
        }
        const char* entity = entityFor(c);
        const size_t length = std::strlen(entity);
        std::memcpy(out, entity, length);
        out += length;
    }
    m_out.advance(out - begin);
    return true;
}

// False for text holding U+0000, which no XML document can carry: written
// as it is, it would end the file for every reader.
bool TreeWriter::appendEscaped(const QString& text) {
    bool ascii = true;
    if (!appendEscapedAscii(text, ascii) || ascii)
        return !foundNulCharacter;
    m_utf8.resize(m_encoder.requiredSpace(text.size()));
    const char* begin = m_utf8.constData();
    const char* const end = m_encoder.appendToBuffer(m_utf8.data(), text);
    for (const char* c = begin; c != end; ++c) {
        const char* entity = entityFor(char16_t(uchar(*c)));
        if (!entity) {
            if (*c == '\0') {
                foundNulCharacter = true;
                return false;
            }
            continue;
        }
        m_out.append(begin, c - begin);
        m_out.append(entity, qsizetype(std::strlen(entity)));
        begin = c + 1;
    }
    m_out.append(begin, end - begin);
    return true;
}

template <typename Number>
void TreeWriter::appendNumber(Number number) {
    char* const begin = m_out.room(24);
    m_out.advance(std::to_chars(begin, begin + 24, number).ptr - begin);
}

template <size_t Open, size_t Close>
bool TreeWriter::appendElement(const char (&open)[Open], const QString& text, const char (&close)[Close]) {
    m_out.append(open);
    if (!appendEscaped(text))
        return false;
    m_out.append(close);
    return true;
}

// The base64 lines sit at the element's own depth, between the tags on lines of their own.
void TreeWriter::appendData(const QByteArray& data, int depth) {
    m_out.append("<data>\n");
    m_scalar.clear();
    XmlScalars::appendBase64Lines(m_scalar, data, depth);
    m_out.append(m_scalar);
    indent(depth);
    m_out.append("</data>\n");
}

QString TreeWriter::nullPath() const {
    if (m_nullPath.isEmpty())
        return QStringLiteral("the root");
    QString path;
    for (auto it = m_nullPath.crbegin(); it != m_nullPath.crend(); ++it)
        path += *it;
    return path;
}

bool TreeWriter::write(const Value& value, int depth) {
    indent(depth);
    switch (value.type()) {
    case Value::Type::Null:
        return false;
    case Value::Type::Boolean:
        if (*value.toBoolean())
            m_out.append("<true/>\n");
        else
            m_out.append("<false/>\n");
        break;
    case Value::Type::Integer:
        m_out.append("<integer>");
        if (value.isUnsignedInteger())
            appendNumber(*value.toUnsigned());
        else
            appendNumber(*value.toInteger());
        m_out.append("</integer>\n");
        break;
    case Value::Type::Real:
        m_out.append("<real>");
        m_scalar.clear();
        XmlScalars::appendReal(m_scalar, *value.toReal());
        m_out.append(m_scalar);
        m_out.append("</real>\n");
        break;
    case Value::Type::String:
        return appendElement("<string>", *value.toString(), "</string>\n");
    case Value::Type::Data:
        appendData(*value.toData(), depth);
        break;
    case Value::Type::Date:
        m_out.append("<date>");
        m_scalar.clear();
        XmlScalars::appendDate(m_scalar, *value.toDate());
        m_out.append(m_scalar);
        m_out.append("</date>\n");
        break;
    case Value::Type::Uid:
        // XML has no UID element; Apple writes the keyed-archiver form.
        m_out.append("<dict>\n");
        indent(depth + 1);
        m_out.append("<key>CF$UID</key>\n");
        indent(depth + 1);
        m_out.append("<integer>");
        appendNumber(value.toUid()->value);
        m_out.append("</integer>\n");
        indent(depth);
        m_out.append("</dict>\n");
        break;
    case Value::Type::Array:
        return writeArray(*value.array(), depth);
    case Value::Type::Dictionary:
        return writeDictionary(*value.dictionary(), depth);
    }
    return true;
}

bool TreeWriter::writeArray(const Array& array, int depth) {
    if (array.isEmpty()) {
        m_out.append("<array/>\n");
        return true;
    }
    m_out.append("<array>\n");
    for (qsizetype i = 0; i < array.size(); ++i) {
        if (!write(array[i], depth + 1)) {
            m_nullPath << u'[' + QString::number(i) + u']';
            return false;
        }
    }
    indent(depth);
    m_out.append("</array>\n");
    return true;
}

bool TreeWriter::writeDictionary(const Dictionary& dictionary, int depth) {
    if (dictionary.isEmpty()) {
        m_out.append("<dict/>\n");
        return true;
    }
    m_out.append("<dict>\n");
    // The dictionary is kept in UTF-16 order, the order of Apple's writer.
    for (auto it = dictionary.begin(); it != dictionary.end(); ++it) {
        indent(depth + 1);
        if (!appendElement("<key>", it.key(), "</key>\n") || !write(it.value(), depth + 1)) {
            m_nullPath << u'/' + it.key();
            return false;
        }
    }
    indent(depth);
    m_out.append("</dict>\n");
    return true;
}

} // namespace

Expected<QByteArray, QString> XmlWriter::write(const Value& root) {
    Sink out;
    out.append(header);
    TreeWriter writer(out);
    if (!writer.write(root, 0))
        return fail((writer.foundNulCharacter
                         ? QStringLiteral("Text holding the character U+0000 can't be written to an XML "
                                          "property list (at %1)")
                         : QStringLiteral("A null value can't be written to a property list (at %1)"))
                        .arg(writer.nullPath()));
    out.append(footer);
    return out.take();
}

} // namespace quorlin::plist
