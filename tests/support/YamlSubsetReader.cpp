#include "support/YamlSubsetReader.h"

#include <QMap>
#include <QRegularExpression>
#include <QStringList>

namespace quorlin::test {

namespace {

struct Line {
    int indent = 0;
    QString text; // without indentation; empty for a blank line
};

class Reader {
public:
    explicit Reader(const QByteArray& text) {
        for (const QString& raw : QString::fromUtf8(text).split(u'\n')) {
            const QString trimmed = raw.trimmed();
            if (trimmed.startsWith(u'#') || trimmed == QStringLiteral("---"))
                continue;
            const int indent = int(raw.size() - QString(raw).remove(QRegularExpression("^ +")).size());
            m_lines.append({indent, trimmed});
        }
    }

    plist::Value node() {
        skipBlank();
        if (atEnd())
            return {};
        const Line& line = m_lines[m_pos];
        return isItem(line.text) ? sequence(line.indent) : mapping(line.indent);
    }

private:
    bool atEnd() const { return m_pos >= m_lines.size(); }
    void skipBlank() {
        while (!atEnd() && m_lines[m_pos].text.isEmpty())
            ++m_pos;
    }
    static bool isItem(const QString& text) { return text == u'-' || text.startsWith(QStringLiteral("- ")); }
    static qsizetype keyEnd(const QString& text) {
        static const QRegularExpression entry(QStringLiteral("^[^-'\"\\s#][^:'\"]*:( |$)"));
        const auto match = entry.match(text);
        return match.hasMatch() ? text.indexOf(u':') : -1;
    }
    // The next non-blank line, if it lies deeper than the given indentation.
    bool deeperFollows(int indent) {
        qsizetype next = m_pos;
        while (next < m_lines.size() && m_lines[next].text.isEmpty())
            ++next;
        return next < m_lines.size() && m_lines[next].indent > indent;
    }

    plist::Value sequence(int indent) {
        plist::Array items;
        for (skipBlank(); !atEnd() && m_lines[m_pos].indent == indent && isItem(m_lines[m_pos].text);
             skipBlank()) {
            Line& line = m_lines[m_pos];
            const QString rest = line.text.mid(2).trimmed();
            if (rest.isEmpty()) {
                ++m_pos;
                items.append(node());
            } else if (keyEnd(rest) >= 0) {
                line = {indent + 2, rest}; // the item's first entry, read as a mapping of its own
                items.append(mapping(indent + 2));
            } else {
                ++m_pos;
                items.append(value(rest, indent));
            }
        }
        return items;
    }

    plist::Value mapping(int indent) {
        plist::Dictionary entries;
        for (skipBlank(); !atEnd() && m_lines[m_pos].indent == indent && !isItem(m_lines[m_pos].text);
             skipBlank()) {
            const QString text = m_lines[m_pos++].text;
            const qsizetype colon = keyEnd(text);
            if (colon < 0)
                continue;
            entries.insert(text.left(colon).trimmed(), value(text.mid(colon + 1).trimmed(), indent));
        }
        return entries;
    }

    plist::Value value(QString rest, int indent) {
        if (rest.startsWith(u'&')) {
            const qsizetype space = rest.indexOf(u' ');
            const QString name = rest.mid(1, space < 0 ? -1 : space - 1);
            const plist::Value anchored =
                value(space < 0 ? QString() : rest.mid(space + 1).trimmed(), indent);
            m_anchors.insert(name, anchored);
            return anchored;
        }
        if (rest.startsWith(u'*'))
            return m_anchors.value(rest.mid(1));
        if (rest.isEmpty()) {
            skipBlank();
            const bool sameLevelList =
                !atEnd() && m_lines[m_pos].indent == indent && isItem(m_lines[m_pos].text);
            return deeperFollows(indent) || sameLevelList ? node() : plist::Value(QString());
        }
        if (rest.startsWith(u'|') || rest.startsWith(u'>'))
            return block(indent, rest.startsWith(u'>'));
        while (deeperFollows(indent)) {
            skipBlank();
            rest += u' ' + m_lines[m_pos++].text;
        }
        return scalar(rest);
    }

    plist::Value block(int indent, bool folded) {
        QStringList parts;
        int inner = -1;
        while (!atEnd() && (m_lines[m_pos].text.isEmpty() || m_lines[m_pos].indent > indent)) {
            const Line& line = m_lines[m_pos++];
            if (inner < 0 && !line.text.isEmpty())
                inner = line.indent;
            parts.append(line.text.isEmpty() ? QString() : QString(line.indent - inner, u' ') + line.text);
        }
        while (!parts.isEmpty() && parts.last().isEmpty())
            parts.removeLast();
        return parts.join(folded ? u' ' : u'\n');
    }

    static plist::Value scalar(const QString& text) {
        if (text.size() >= 2 && text.startsWith(u'\'') && text.endsWith(u'\''))
            return text.mid(1, text.size() - 2).replace(QStringLiteral("''"), QStringLiteral("'"));
        if (text.size() >= 2 && text.startsWith(u'"') && text.endsWith(u'"'))
            return text.mid(1, text.size() - 2).replace(QStringLiteral("\\\""), QStringLiteral("\""));
        if (text == QStringLiteral("true") || text == QStringLiteral("false"))
            return text == QStringLiteral("true");
        static const QRegularExpression integer(QStringLiteral("^-?[0-9]+$"));
        static const QRegularExpression real(QStringLiteral("^-?[0-9]+\\.[0-9]+$"));
        if (integer.match(text).hasMatch())
            return text.toLongLong();
        if (real.match(text).hasMatch())
            return text.toDouble();
        return text;
    }

    QList<Line> m_lines;
    qsizetype m_pos = 0;
    QMap<QString, plist::Value> m_anchors;
};

} // namespace

plist::Value readYamlSubset(const QByteArray& text) {
    return Reader(text).node();
}

} // namespace quorlin::test
