#include "plist/XmlWriter.h"

#include "plist/XmlScalars.h"

#include <QStringEncoder>
#include <QStringList>

namespace quorlin::plist {

namespace {

constexpr char header[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                          "<plist version=\"1.0\">\n";
constexpr char footer[] = "</plist>\n";

// Writes the layout of Apple's XML writer: one element per line, tabs for
// depth, empty containers as "<array/>" and "<dict/>".
class TreeWriter {
public:
    explicit TreeWriter(QByteArray& out)
        : m_out(out) {}

    // False at the first null value or text holding U+0000, whose place
    // nullPath() then tells.
    bool write(const Value& value, int depth);
    QString nullPath() const;
    bool foundNulCharacter = false; // the failure was text, not a null value

private:
    void indent(int depth) { m_out.append(depth, '\t'); }
    bool appendEscaped(const QString& text);
    bool appendElement(const char* tag, const QString& text);
    void appendData(const QByteArray& data, int depth);
    bool writeArray(const Array& array, int depth);
    bool writeDictionary(const Dictionary& dictionary, int depth);

    QByteArray& m_out;
    QStringEncoder m_encoder{QStringEncoder::Utf8, QStringEncoder::Flag::Stateless};
    QByteArray m_utf8;      // reused for every string, to spare an allocation each
    QStringList m_nullPath; // innermost first, filled while unwinding
};

// False for text holding U+0000, which no XML document can carry: written
// as it is, it would end the file for every reader.
bool TreeWriter::appendEscaped(const QString& text) {
    m_utf8.resize(m_encoder.requiredSpace(text.size()));
    const char* begin = m_utf8.constData();
    const char* const end = m_encoder.appendToBuffer(m_utf8.data(), text);
    // Apple escapes only these three; quotes and apostrophes stay as they are.
    for (const char* c = begin; c != end; ++c) {
        const char* entity = *c == '&' ? "&amp;" : *c == '<' ? "&lt;" : *c == '>' ? "&gt;" : nullptr;
        if (!entity) {
            if (*c == '\0') {
                foundNulCharacter = true;
                return false;
            }
            continue;
        }
        m_out.append(begin, c - begin);
        m_out.append(entity);
        begin = c + 1;
    }
    m_out.append(begin, end - begin);
    return true;
}

bool TreeWriter::appendElement(const char* tag, const QString& text) {
    m_out += '<';
    m_out += tag;
    m_out += '>';
    if (!appendEscaped(text))
        return false;
    m_out += "</";
    m_out += tag;
    m_out += ">\n";
    return true;
}

// The base64 lines sit at the element's own depth, between the tags on lines of their own.
void TreeWriter::appendData(const QByteArray& data, int depth) {
    m_out += "<data>\n";
    XmlScalars::appendBase64Lines(m_out, data, depth);
    indent(depth);
    m_out += "</data>\n";
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
        m_out += *value.toBoolean() ? "<true/>\n" : "<false/>\n";
        break;
    case Value::Type::Integer:
        m_out += "<integer>";
        XmlScalars::appendInteger(m_out, value);
        m_out += "</integer>\n";
        break;
    case Value::Type::Real:
        m_out += "<real>";
        XmlScalars::appendReal(m_out, *value.toReal());
        m_out += "</real>\n";
        break;
    case Value::Type::String:
        return appendElement("string", *value.toString());
    case Value::Type::Data:
        appendData(*value.toData(), depth);
        break;
    case Value::Type::Date:
        m_out += "<date>";
        XmlScalars::appendDate(m_out, *value.toDate());
        m_out += "</date>\n";
        break;
    case Value::Type::Uid:
        // XML has no UID element; Apple writes the keyed-archiver form.
        m_out += "<dict>\n";
        indent(depth + 1);
        m_out += "<key>CF$UID</key>\n";
        indent(depth + 1);
        m_out += "<integer>";
        m_out += QByteArray::number(value.toUid()->value);
        m_out += "</integer>\n";
        indent(depth);
        m_out += "</dict>\n";
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
        m_out += "<array/>\n";
        return true;
    }
    m_out += "<array>\n";
    for (qsizetype i = 0; i < array.size(); ++i) {
        if (!write(array[i], depth + 1)) {
            m_nullPath << u'[' + QString::number(i) + u']';
            return false;
        }
    }
    indent(depth);
    m_out += "</array>\n";
    return true;
}

bool TreeWriter::writeDictionary(const Dictionary& dictionary, int depth) {
    if (dictionary.isEmpty()) {
        m_out += "<dict/>\n";
        return true;
    }
    m_out += "<dict>\n";
    // The dictionary is kept in UTF-16 order, the order of Apple's writer.
    for (auto it = dictionary.begin(); it != dictionary.end(); ++it) {
        indent(depth + 1);
        if (!appendElement("key", it.key()) || !write(it.value(), depth + 1)) {
            m_nullPath << u'/' + it.key();
            return false;
        }
    }
    indent(depth);
    m_out += "</dict>\n";
    return true;
}

} // namespace

Expected<QByteArray, QString> XmlWriter::write(const Value& root) {
    QByteArray out;
    out.reserve(4096);
    out += header;
    TreeWriter writer(out);
    if (!writer.write(root, 0))
        return fail((writer.foundNulCharacter
                         ? QStringLiteral("Text holding the character U+0000 can't be written to an XML "
                                          "property list (at %1)")
                         : QStringLiteral("A null value can't be written to a property list (at %1)"))
                        .arg(writer.nullPath()));
    out += footer;
    return out;
}

} // namespace quorlin::plist
