#include "plist/PlistReader.h"

#include "plist/BinaryReader.h"
#include "plist/OpenStepReader.h"
#include "plist/XmlReader.h"
#include "plist/XmlTextDecoder.h"

namespace quorlin::plist {

Format PlistReader::detectFormat(const QByteArray& bytes) {
    if (bytes.startsWith("bplist"))
        return Format::Binary;
    // Byte-order marks of UTF-16 and UTF-32 only ever introduce XML here.
    if (bytes.startsWith("\xFE\xFF") || bytes.startsWith("\xFF\xFE"))
        return Format::Xml;
    qsizetype start = bytes.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (start < bytes.size() && QChar::isSpace(uchar(bytes[start])))
        ++start;
    const QByteArray head = bytes.mid(start, 16);
    // "<" alone is not enough: "<0fbd>" is OpenStep data.
    if (head.startsWith("<?xml") || head.startsWith("<!") || head.startsWith("<plist"))
        return Format::Xml;
    return Format::OpenStep;
}

Expected<ReadResult, ParseError> PlistReader::read(const QByteArray& bytes, const ReadLimits& limits) {
    const Format format = detectFormat(bytes);
    if (format == Format::Xml) {
        const auto text = XmlTextDecoder::toUtf8(bytes);
        if (!text)
            return fail(text.error());
        return readXml(*text, limits);
    }
    auto result =
        format == Format::Binary ? BinaryReader::read(bytes, limits) : OpenStepReader::read(bytes, limits);
    if (!result)
        return fail(result.error());
    return ReadResult{std::move(result).value(), format};
}

Expected<ReadResult, ParseError> PlistReader::readXml(const QByteArray& utf8, const ReadLimits& limits) {
    auto result = XmlReader::read(utf8, limits);
    if (!result)
        return fail(result.error());
    return ReadResult{std::move(result).value(), Format::Xml};
}

} // namespace quorlin::plist
