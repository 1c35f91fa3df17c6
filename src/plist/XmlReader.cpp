#include "plist/XmlReader.h"

#include "plist/XmlScalars.h"

#include <QStringDecoder>

#include <pugixml.hpp>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quorlin::plist {

namespace {

// Whitespace-only text is kept when it is an element's only content, so that
// "<string> </string>" is a space. Line ends are kept as they are, as Apple's
// parser keeps them: its writer puts a carriage return into text unescaped,
// and it must read back as one. Comments and processing instructions are
// dropped. No escapes are expanded by pugixml: TreeConverter does that itself
// so that an unknown entity is an error rather than literal text. Parsing as
// a fragment makes pugixml keep text outside the root element, which is
// trailing garbage and must not be dropped silently.
constexpr unsigned parseOptions =
    pugi::parse_cdata | pugi::parse_ws_pcdata_single | pugi::parse_doctype | pugi::parse_fragment;

// Compares a null-terminated name with a literal, never reading past either end.
template <size_t N>
bool nameIs(const char* name, const char (&literal)[N]) {
    for (size_t i = 0; i < N; ++i) {
        if (name[i] != literal[i])
            return false;
    }
    return true;
}

bool isWhitespace(std::string_view text) {
    return std::all_of(text.begin(), text.end(), XmlScalars::isXmlWhitespace);
}

bool startsWith(std::string_view text, size_t pos, std::string_view prefix) {
    return pos <= text.size() && text.substr(pos, prefix.size()) == prefix;
}

QString quoted(std::string_view text) {
    return u'"' + QString::fromUtf8(text.data(), qsizetype(std::min<size_t>(text.size(), 60))) + u'"';
}

qint64 lineAt(std::string_view text, size_t offset) {
    offset = std::min(offset, text.size());
    qint64 line = 1;
    for (size_t i = 0; i < offset; ++i) {
        if (text[i] == '\n' || (text[i] == '\r' && (i + 1 >= text.size() || text[i + 1] != '\n')))
            ++line;
    }
    return line;
}

void appendUtf8(std::string& out, char32_t codePoint) {
    if (codePoint < 0x80) {
        out += char(codePoint);
    } else if (codePoint < 0x800) {
        out += char(0xC0 | (codePoint >> 6));
        out += char(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        out += char(0xE0 | (codePoint >> 12));
        out += char(0x80 | ((codePoint >> 6) & 0x3F));
        out += char(0x80 | (codePoint & 0x3F));
    } else {
        out += char(0xF0 | (codePoint >> 18));
        out += char(0x80 | ((codePoint >> 12) & 0x3F));
        out += char(0x80 | ((codePoint >> 6) & 0x3F));
        out += char(0x80 | (codePoint & 0x3F));
    }
}

// "&#65;", "&#x1F600;": nothing for a malformed reference or a code point
// that no XML text can hold.
std::optional<char32_t> characterReference(std::string_view digits) {
    int base = 10;
    if (!digits.empty() && digits.front() == 'x') {
        base = 16;
        digits.remove_prefix(1);
    }
    if (digits.empty() || digits.size() > 8)
        return std::nullopt;
    char32_t codePoint = 0;
    for (const char c : digits) {
        int digit = -1;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (base == 16 && c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else if (base == 16 && c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        if (digit < 0)
            return std::nullopt;
        codePoint = codePoint * char32_t(base) + char32_t(digit);
    }
    if (codePoint == 0 || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
        return std::nullopt;
    return codePoint;
}

// Appends text with the five predefined entities and character references
// expanded; false at the first other use of "&".
bool appendUnescaped(std::string& out, std::string_view text) {
    size_t pos = 0;
    while (pos < text.size()) {
        const size_t amp = text.find('&', pos);
        out.append(text.substr(pos, amp - pos));
        if (amp == std::string_view::npos)
            break;
        const size_t semicolon = text.find(';', amp);
        if (semicolon == std::string_view::npos)
            return false;
        const std::string_view name = text.substr(amp + 1, semicolon - amp - 1);
        if (name == "amp")
            out += '&';
        else if (name == "lt")
            out += '<';
        else if (name == "gt")
            out += '>';
        else if (name == "quot")
            out += '"';
        else if (name == "apos")
            out += '\'';
        else if (const auto codePoint =
                     name.starts_with('#') ? characterReference(name.substr(1)) : std::nullopt)
            appendUtf8(out, *codePoint);
        else
            return false;
        pos = semicolon + 1;
    }
    return true;
}

// An internal DTD subset is where entities are declared; refusing it before
// pugixml sees the document means no declared entity can ever be expanded.
std::optional<size_t> documentTypeSubsetOffset(std::string_view text) {
    size_t pos = 0;
    while (true) {
        while (pos < text.size() && XmlScalars::isXmlWhitespace(text[pos]))
            ++pos;
        if (startsWith(text, pos, "<?") || startsWith(text, pos, "<!--")) {
            const std::string_view end = text[pos + 1] == '?' ? "?>" : "-->";
            const size_t close = text.find(end, pos + 2);
            if (close == std::string_view::npos)
                return std::nullopt; // pugixml reports the unterminated construct
            pos = close + end.size();
        } else if (startsWith(text, pos, "<!DOCTYPE")) {
            char quote = 0;
            for (pos += 9; pos < text.size(); ++pos) {
                const char c = text[pos];
                if (quote) {
                    quote = c == quote ? 0 : quote;
                } else if (c == '"' || c == '\'') {
                    quote = c;
                } else if (c == '[') {
                    return pos;
                } else if (c == '>') {
                    break;
                }
            }
            ++pos;
        } else if (startsWith(text, pos, "<!ENTITY")) {
            return pos;
        } else {
            return std::nullopt;
        }
    }
}

// Turns a pugixml tree into values, checking on the way every rule of the
// property-list vocabulary. Recursion is bounded by the depth limit.
class TreeConverter {
public:
    TreeConverter(std::string_view text, int maxDepth)
        : m_text(text)
        , m_maxDepth(maxDepth) {}

    bool convertDocument(const pugi::xml_document& document, Value& root);
    const ParseError& error() const { return m_error; }

private:
    bool convert(pugi::xml_node element, int depth, Value& out);
    bool convertArray(pugi::xml_node element, int depth, Value& out);
    bool convertDictionary(pugi::xml_node element, int depth, Value& out);
    bool convertPlist(pugi::xml_node element, Value& out);
    bool text(pugi::xml_node element, std::string_view& out);
    bool string(pugi::xml_node element, QString& out, size_t maxShared);
    bool checkEmpty(pugi::xml_node element);
    pugi::xml_node nextElement(pugi::xml_node node);
    bool fail(pugi::xml_node node, const QString& reason);
    QString elementName(pugi::xml_node element) const { return QString::fromUtf8(element.name()); }

    std::string_view m_text;
    int m_maxDepth;
    std::string m_scratch;
    // Keys and short strings recur throughout a document; sharing one QString
    // for a recurring text spares a conversion and an allocation each time.
    // Direct-mapped: a miss just replaces the slot, so a lookup never allocates.
    struct CachedString {
        std::string_view utf8;
        QString string;
    };
    std::array<CachedString, 256> m_strings;
    bool m_childFailed = false; // set by nextElement when it meets text that doesn't belong
    ParseError m_error;
};

bool TreeConverter::fail(pugi::xml_node node, const QString& reason) {
    m_error = ParseError{reason, node ? lineAt(m_text, size_t(node.offset_debug())) : -1};
    return false;
}

// The next element among node and its following siblings; text between
// elements may only be whitespace.
pugi::xml_node TreeConverter::nextElement(pugi::xml_node node) {
    for (; node; node = node.next_sibling()) {
        if (node.type() == pugi::node_element)
            return node;
        if (node.type() == pugi::node_doctype || !isWhitespace(node.value())) {
            m_childFailed = true;
            fail(node, node.type() == pugi::node_doctype
                           ? QStringLiteral("Document type declaration inside an element")
                           : QStringLiteral("Unexpected text \"%1\" between elements")
                                 .arg(QString::fromUtf8(node.value()).left(40)));
            return {};
        }
    }
    return {};
}

bool TreeConverter::convertDocument(const pugi::xml_document& document, Value& root) {
    pugi::xml_node rootElement;
    for (pugi::xml_node node = document.first_child(); node; node = node.next_sibling()) {
        if (node.type() == pugi::node_doctype) {
            if (rootElement)
                return fail(node, QStringLiteral("Document type declaration after the root element"));
        } else if (node.type() == pugi::node_element) {
            if (rootElement)
                return fail(node, QStringLiteral("More than one root element: <%1>").arg(elementName(node)));
            rootElement = node;
        } else if (!isWhitespace(node.value())) {
            return fail(node, rootElement ? QStringLiteral("Unexpected content after the root element")
                                          : QStringLiteral("Unexpected content before the root element"));
        }
    }
    if (!rootElement) {
        m_error = ParseError{QStringLiteral("No root element"), lineAt(m_text, m_text.size())};
        return false;
    }
    if (nameIs(rootElement.name(), "plist"))
        return convertPlist(rootElement, root);
    return convert(rootElement, 0, root);
}

bool TreeConverter::convertPlist(pugi::xml_node element, Value& out) {
    const pugi::xml_node value = nextElement(element.first_child());
    if (m_childFailed)
        return false;
    if (!value)
        return fail(element, QStringLiteral("Empty <plist> element"));
    if (const pugi::xml_node second = nextElement(value.next_sibling()))
        return fail(second, QStringLiteral("More than one value in <plist>"));
    return !m_childFailed && convert(value, 0, out);
}

bool TreeConverter::convert(pugi::xml_node element, int depth, Value& out) {
    const char* name = element.name();
    switch (name[0]) {
    case 'a':
        if (nameIs(name, "array"))
            return convertArray(element, depth + 1, out);
        break;
    case 'd':
        if (nameIs(name, "dict"))
            return convertDictionary(element, depth + 1, out);
        if (nameIs(name, "date")) {
            std::string_view content;
            if (!text(element, content))
                return false;
            const auto date = XmlScalars::parseDate(content);
            if (!date)
                return fail(element, QStringLiteral("Invalid <date>: %1").arg(quoted(content)));
            out = *date;
            return true;
        }
        if (nameIs(name, "data")) {
            std::string_view content;
            if (!text(element, content))
                return false;
            auto data = XmlScalars::decodeBase64(content);
            if (!data)
                return fail(element, QStringLiteral("Invalid base64 in <data>"));
            out = *data;
            return true;
        }
        break;
    case 's':
        if (nameIs(name, "string")) {
            QString string;
            if (!this->string(element, string, 16))
                return false;
            out = string;
            return true;
        }
        break;
    case 'i':
        if (nameIs(name, "integer")) {
            std::string_view content;
            if (!text(element, content))
                return false;
            auto integer = XmlScalars::parseInteger(content);
            if (!integer)
                return fail(element, QStringLiteral("Invalid <integer>: %1").arg(quoted(content)));
            out = *integer;
            return true;
        }
        break;
    case 'r':
        if (nameIs(name, "real")) {
            std::string_view content;
            if (!text(element, content))
                return false;
            const auto real = XmlScalars::parseReal(content);
            if (!real)
                return fail(element, QStringLiteral("Invalid <real>: %1").arg(quoted(content)));
            out = *real;
            return true;
        }
        break;
    case 't':
        if (nameIs(name, "true")) {
            out = true;
            return checkEmpty(element);
        }
        break;
    case 'f':
        if (nameIs(name, "false")) {
            out = false;
            return checkEmpty(element);
        }
        break;
    case 'k':
        if (nameIs(name, "key"))
            return fail(element, QStringLiteral("<key> outside a <dict>"));
        break;
    default:
        break;
    }
    return fail(element, QStringLiteral("Unknown element <%1>").arg(elementName(element)));
}

bool TreeConverter::checkEmpty(pugi::xml_node element) {
    const pugi::xml_node child = element.first_child();
    if (child && (child.type() != pugi::node_pcdata || !isWhitespace(child.value()) || child.next_sibling()))
        return fail(child, QStringLiteral("<%1> must be empty").arg(elementName(element)));
    return true;
}

bool TreeConverter::convertArray(pugi::xml_node element, int depth, Value& out) {
    if (depth > m_maxDepth)
        return fail(element, QStringLiteral("Nesting deeper than %1 levels").arg(m_maxDepth));
    Array array;
    qsizetype count = 0;
    for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling())
        ++count;
    array.reserve(count);
    for (pugi::xml_node child = nextElement(element.first_child()); child;
         child = nextElement(child.next_sibling())) {
        Value item;
        if (!convert(child, depth, item))
            return false;
        array.append(std::move(item));
    }
    if (m_childFailed)
        return false;
    out = Value(std::move(array));
    return true;
}

bool TreeConverter::convertDictionary(pugi::xml_node element, int depth, Value& out) {
    if (depth > m_maxDepth)
        return fail(element, QStringLiteral("Nesting deeper than %1 levels").arg(m_maxDepth));
    // Built as a std::map and handed over whole: entries are moved in, not copied.
    std::map<QString, Value> entries;
    for (pugi::xml_node keyElement = nextElement(element.first_child()); keyElement;
         keyElement = nextElement(keyElement.next_sibling())) {
        if (!nameIs(keyElement.name(), "key"))
            return fail(keyElement,
                        QStringLiteral("<%1> without a <key> in <dict>").arg(elementName(keyElement)));
        QString key;
        if (!string(keyElement, key, 48))
            return false;
        const pugi::xml_node valueElement = nextElement(keyElement.next_sibling());
        if (m_childFailed)
            return false;
        if (!valueElement || nameIs(valueElement.name(), "key"))
            return fail(valueElement ? valueElement : keyElement,
                        QStringLiteral("<key> \"%1\" without a value").arg(key.left(80)));
        Value value;
        if (!convert(valueElement, depth, value))
            return false;
        // Keys mostly come sorted, so the hint makes insertion constant time;
        // a repeated key replaces the earlier value, as Apple's parser does.
        entries.insert_or_assign(entries.end(), std::move(key), std::move(value));
        keyElement = valueElement;
    }
    if (m_childFailed)
        return false;
    Dictionary dictionary;
    if (!entries.empty())
        dictionary.map() = Dictionary::Map(std::move(entries));
    out = Value(std::move(dictionary));
    return true;
}

// The character content of a scalar element: text and CDATA sections joined,
// escapes expanded. Points into the document when no joining is needed.
bool TreeConverter::text(pugi::xml_node element, std::string_view& out) {
    const pugi::xml_node first = element.first_child();
    if (!first) {
        out = {};
        return true;
    }
    if (!first.next_sibling() && first.type() != pugi::node_element) {
        const std::string_view value = first.value();
        if (first.type() == pugi::node_cdata || value.find('&') == std::string_view::npos) {
            out = value;
            return true;
        }
    }
    m_scratch.clear();
    for (pugi::xml_node child = first; child; child = child.next_sibling()) {
        if (child.type() == pugi::node_cdata) {
            m_scratch += child.value();
        } else if (child.type() == pugi::node_pcdata) {
            if (!appendUnescaped(m_scratch, child.value()))
                return fail(child, QStringLiteral("Unknown or malformed entity reference in <%1>")
                                       .arg(elementName(element)));
        } else {
            return fail(
                child,
                QStringLiteral("Unexpected <%1> inside <%2>").arg(elementName(child), elementName(element)));
        }
    }
    out = m_scratch;
    return true;
}

bool TreeConverter::string(pugi::xml_node element, QString& out, size_t maxShared) {
    std::string_view content;
    if (!text(element, content))
        return false;
    // Text joined in the scratch buffer is about to change, so it can't be a cache key.
    if (content.data() == m_scratch.data() || content.size() > maxShared) {
        out = QString::fromUtf8(content.data(), qsizetype(content.size()));
        return true;
    }
    if (content.empty()) {
        out = QString();
        return true;
    }
    // A cheap hash is enough: a collision costs a conversion, never a wrong string.
    const size_t size = content.size();
    const size_t hash = size * 131 + uchar(content[size - 1]) * 31 + uchar(content[size / 2]) * 7 +
                        uchar(content[(size - 1) * 3 / 4]);
    CachedString& slot = m_strings[hash % m_strings.size()];
    if (slot.utf8 != content || slot.string.isNull()) {
        slot.utf8 = content;
        slot.string = QString::fromUtf8(content.data(), qsizetype(content.size()));
    }
    out = slot.string;
    return true;
}

// pugixml is given UTF-8 only, so that byte offsets (and so line numbers)
// refer to text we hold.
Expected<QByteArray, ParseError> utf8Text(const QByteArray& bytes) {
    const bool littleEndian = bytes.startsWith("\xFF\xFE") || bytes.startsWith(QByteArrayView("<\0?\0", 4));
    const bool bigEndian = bytes.startsWith("\xFE\xFF") || bytes.startsWith(QByteArrayView("\0<\0?", 4));
    if (!littleEndian && !bigEndian)
        return bytes.startsWith("\xEF\xBB\xBF") ? bytes.sliced(3) : bytes;
    if (bytes.size() % 2 != 0)
        return fail(ParseError{QStringLiteral("UTF-16 text with an odd number of bytes")});
    QStringDecoder decoder(littleEndian ? QStringDecoder::Utf16LE : QStringDecoder::Utf16BE);
    const QString text = decoder(bytes);
    if (decoder.hasError())
        return fail(ParseError{QStringLiteral("Invalid UTF-16 text")});
    return text.toUtf8();
}

} // namespace

Expected<Value, ParseError> XmlReader::read(const QByteArray& bytes, const ReadLimits& limits) {
    if (const auto tooLarge = sizeRefusal(bytes.size(), limits))
        return fail(*tooLarge);
    auto utf8 = utf8Text(bytes);
    if (!utf8)
        return fail(utf8.error());
    const std::string_view text(utf8->constData(), size_t(utf8->size()));

    if (const auto subset = documentTypeSubsetOffset(text))
        return fail(
            ParseError{QStringLiteral("Document type definitions and entity declarations are not allowed"),
                       lineAt(text, *subset)});

    pugi::xml_document document;
    const pugi::xml_parse_result parsed =
        document.load_buffer(text.data(), text.size(), parseOptions, pugi::encoding_utf8);
    if (!parsed)
        return fail(ParseError{QString::fromUtf8(parsed.description()), lineAt(text, size_t(parsed.offset))});

    TreeConverter converter(text, limits.maxDepth);
    Value root;
    if (!converter.convertDocument(document, root))
        return fail(converter.error());
    return root;
}

} // namespace quorlin::plist
