// Reads arbitrary bytes as an XML property list; whatever reads must survive
// a write and a second read unchanged.
#include "plist/XmlReader.h"
#include "plist/XmlWriter.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace quorlin::plist;

namespace {

// Value equality, except that NaN equals NaN: "<real>nan</real>" reads as a
// NaN every time, and that is a faithful round trip.
bool equivalent(const Value& a, const Value& b) {
    if (a.isReal() && b.isReal() && std::isnan(*a.toReal()) && std::isnan(*b.toReal()))
        return true;
    if (a.isArray() && b.isArray()) {
        const Array& x = *a.array();
        const Array& y = *b.array();
        if (x.size() != y.size())
            return false;
        for (qsizetype i = 0; i < x.size(); ++i) {
            if (!equivalent(x[i], y[i]))
                return false;
        }
        return true;
    }
    if (a.isDictionary() && b.isDictionary()) {
        const Dictionary& x = *a.dictionary();
        const Dictionary& y = *b.dictionary();
        if (x.size() != y.size())
            return false;
        for (auto i = x.begin(), j = y.begin(); i != x.end(); ++i, ++j) {
            if (i.key() != j.key() || !equivalent(i.value(), j.value()))
                return false;
        }
        return true;
    }
    return a == b;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto value = XmlReader::read(bytes);
    if (!value)
        return 0;
    const auto written = XmlWriter::write(*value);
    if (!written) {
        std::fprintf(stderr, "write failed: %s\n", qPrintable(written.error()));
        std::abort();
    }
    const auto reread = XmlReader::read(*written);
    if (!reread) {
        std::fprintf(stderr, "written plist does not read back: %s\n%s\n",
                     qPrintable(reread.error().toString()), written->constData());
        std::abort();
    }
    if (!equivalent(*reread, *value)) {
        std::fprintf(stderr, "round trip changed the value:\n%s\n%s\n", qPrintable(value->debugDescription()),
                     qPrintable(reread->debugDescription()));
        std::abort();
    }
    return 0;
}
