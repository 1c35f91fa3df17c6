#pragma once

#include "plist/Expected.h"
#include "plist/ParseError.h"
#include "plist/PlistFormat.h"
#include "plist/Value.h"

#include <QByteArray>

namespace quorlin::plist {

struct ReadResult {
    Value root;
    Format format = Format::Xml;
};

// The one entry point for reading a property list of unknown encoding: it
// recognises binary ("bplist00"), XML (with or without a byte-order mark) and
// the old OpenStep text form, and hands the bytes to that reader.
class PlistReader {
public:
    static Expected<ReadResult, ParseError> read(const QByteArray& bytes, const ReadLimits& limits = {});
    static Format detectFormat(const QByteArray& bytes);

private:
    static Expected<ReadResult, ParseError> readXml(const QByteArray& utf8, const ReadLimits& limits);
};

} // namespace quorlin::plist
