#include "apptools/DerEntitlements.h"

namespace quorlin::apptools {

namespace {

constexpr uchar tagBoolean = 0x01;
constexpr uchar tagInteger = 0x02;
constexpr uchar tagUtf8String = 0x0C;
constexpr uchar tagSequence = 0x30;
constexpr uchar tagDictionary = 0xB0; // context-specific, constructed, 16
constexpr uchar tagWrapper = 0x70;    // application, constructed, 16
constexpr int maximumDepth = 32;

struct Element {
    uchar tag = 0;
    QByteArrayView content;
};

class DerReader {
public:
    explicit DerReader(QByteArrayView bytes)
        : m_bytes(bytes) {}

    bool atEnd() const { return m_at == m_bytes.size(); }

    // One element; only single-byte tags occur in entitlements.
    std::optional<Element> next() {
        if (m_bytes.size() - m_at < 2)
            return std::nullopt;
        const uchar tag = uchar(m_bytes[m_at]);
        qsizetype length = uchar(m_bytes[m_at + 1]);
        m_at += 2;
        if (length & 0x80) {
            const int lengthBytes = length & 0x7F;
            if (lengthBytes == 0 || lengthBytes > 4 || m_bytes.size() - m_at < lengthBytes)
                return std::nullopt;
            length = 0;
            for (int index = 0; index < lengthBytes; ++index)
                length = (length << 8) | uchar(m_bytes[m_at++]);
        }
        if (length > m_bytes.size() - m_at)
            return std::nullopt;
        const Element element{tag, m_bytes.sliced(m_at, length)};
        m_at += length;
        return element;
    }

private:
    QByteArrayView m_bytes;
    qsizetype m_at = 0;
};

std::optional<plist::Value> value(const Element& element, int depth);

std::optional<plist::Dictionary> dictionary(QByteArrayView content, int depth) {
    if (depth > maximumDepth)
        return std::nullopt;
    plist::Dictionary result;
    DerReader reader(content);
    while (!reader.atEnd()) {
        const auto pair = reader.next();
        if (!pair || pair->tag != tagSequence)
            return std::nullopt;
        DerReader inner(pair->content);
        const auto key = inner.next();
        const auto item = key ? inner.next() : std::nullopt;
        if (!item || key->tag != tagUtf8String || !inner.atEnd())
            return std::nullopt;
        auto converted = value(*item, depth + 1);
        if (!converted)
            return std::nullopt;
        result.insert(QString::fromUtf8(key->content), *converted);
    }
    return result;
}

std::optional<plist::Value> integer(QByteArrayView content) {
    if (content.isEmpty() || content.size() > 8)
        return std::nullopt;
    qint64 number = qint8(content[0]);
    for (qsizetype index = 1; index < content.size(); ++index)
        number = qint64(quint64(number) << 8) | uchar(content[index]);
    return plist::Value(number);
}

std::optional<plist::Value> value(const Element& element, int depth) {
    if (depth > maximumDepth)
        return std::nullopt;
    switch (element.tag) {
    case tagBoolean:
        if (element.content.size() != 1)
            return std::nullopt;
        return plist::Value(element.content[0] != 0);
    case tagInteger:
        return integer(element.content);
    case tagUtf8String:
        return plist::Value(QString::fromUtf8(element.content));
    case tagSequence: {
        plist::Array array;
        DerReader reader(element.content);
        while (!reader.atEnd()) {
            const auto item = reader.next();
            auto converted = item ? value(*item, depth + 1) : std::nullopt;
            if (!converted)
                return std::nullopt;
            array.append(*converted);
        }
        return plist::Value(array);
    }
    case tagDictionary: {
        auto nested = dictionary(element.content, depth + 1);
        return nested ? std::optional<plist::Value>(plist::Value(*nested)) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<plist::Dictionary> DerEntitlements::decode(const QByteArray& der) {
    DerReader outer(der);
    const auto wrapper = outer.next();
    if (!wrapper || wrapper->tag != tagWrapper || !outer.atEnd())
        return std::nullopt;
    DerReader inner(wrapper->content);
    const auto version = inner.next();
    const auto entries = version ? inner.next() : std::nullopt;
    if (!entries || version->tag != tagInteger || entries->tag != tagDictionary || !inner.atEnd())
        return std::nullopt;
    return dictionary(entries->content, 0);
}

} // namespace quorlin::apptools
