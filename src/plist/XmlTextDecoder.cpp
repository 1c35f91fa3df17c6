#include "plist/XmlTextDecoder.h"

#include <QByteArrayView>
#include <QRegularExpression>
#include <QStringDecoder>

#include <optional>

namespace quorlin::plist {

namespace {

qint64 lineAt(const QByteArray& bytes, qsizetype offset) {
    return QByteArrayView(bytes).first(offset).count('\n') + 1;
}

qsizetype sequenceLength(uchar lead) {
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    if (lead >= 0xF0 && lead <= 0xF4)
        return 4;
    return 0;
}

// The offset of the first byte that doesn't begin a well-formed sequence:
// no overlong forms, no surrogates, nothing above U+10FFFF.
std::optional<qsizetype> firstInvalidUtf8(const QByteArray& bytes) {
    const auto* data = reinterpret_cast<const uchar*>(bytes.constData());
    const qsizetype size = bytes.size();
    for (qsizetype at = 0; at < size;) {
        const qsizetype length = sequenceLength(data[at]);
        if (length == 0 || at + length > size)
            return at;
        for (qsizetype next = 1; next < length; ++next) {
            if ((data[at + next] & 0xC0) != 0x80)
                return at;
        }
        const uchar lead = data[at];
        const uchar second = length > 1 ? data[at + 1] : 0x80;
        const bool overlongOrOutside = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                                       (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
        if (overlongOrOutside)
            return at;
        at += length;
    }
    return std::nullopt;
}

Expected<QByteArray, ParseError> validUtf8(const QByteArray& bytes) {
    if (const auto bad = firstInvalidUtf8(bytes))
        return fail(
            ParseError{QStringLiteral("Invalid UTF-8 text at byte %1").arg(*bad), lineAt(bytes, *bad)});
    return bytes;
}

Expected<QByteArray, ParseError> decoded(const QByteArray& bytes, QStringDecoder decoder,
                                         const QString& name) {
    const QString text = decoder(bytes);
    if (decoder.hasError())
        return fail(ParseError{QStringLiteral("Invalid %1 text").arg(name)});
    return text.toUtf8();
}

// The name in `<?xml ... encoding="NAME"?>`, if the text starts with one.
QString declaredEncoding(const QByteArray& bytes) {
    static const QRegularExpression declaration(
        QStringLiteral(R"(^\s*<\?xml[^>]*?\sencoding\s*=\s*["']([A-Za-z0-9._:-]+)["'])"));
    const auto match =
        declaration.match(QString::fromLatin1(bytes.first(std::min<qsizetype>(bytes.size(), 256))));
    return match.hasMatch() ? match.captured(1) : QString();
}

} // namespace

Expected<QByteArray, ParseError> XmlTextDecoder::toUtf8(const QByteArray& bytes) {
    const bool littleEndian = bytes.startsWith("\xFF\xFE") || bytes.startsWith(QByteArrayView("<\0?\0", 4));
    const bool bigEndian = bytes.startsWith("\xFE\xFF") || bytes.startsWith(QByteArrayView("\0<\0?", 4));
    if (littleEndian || bigEndian) {
        if (bytes.size() % 2 != 0)
            return fail(ParseError{QStringLiteral("UTF-16 text with an odd number of bytes")});
        return decoded(bytes,
                       QStringDecoder(littleEndian ? QStringDecoder::Utf16LE : QStringDecoder::Utf16BE),
                       QStringLiteral("UTF-16"));
    }
    if (bytes.startsWith("\xEF\xBB\xBF"))
        return validUtf8(bytes.sliced(3));

    const QString encoding = declaredEncoding(bytes);
    const QString normalised = encoding.toLower().remove(u'-').remove(u'_');
    // Without a byte-order mark, a declared UTF-16 can only be a mislabelled 8-bit text.
    if (encoding.isEmpty() || normalised == QStringLiteral("utf8") ||
        normalised.startsWith(QStringLiteral("utf16")))
        return validUtf8(bytes);
    QStringDecoder decoder(encoding.toLatin1().constData(), QStringDecoder::Flag::Stateless);
    if (!decoder.isValid())
        return fail(ParseError{QStringLiteral("Unsupported text encoding “%1”").arg(encoding), 1});
    return decoded(bytes, std::move(decoder), encoding);
}

} // namespace quorlin::plist
