#include "cli/InputFile.h"

#include "documents/BoundedFileReader.h"

#include <utility>

namespace quorlin::cli {

Expected<QByteArray, InputFile::Error> InputFile::read(const QString& path) {
    const bool standardInput = path == QStringLiteral("-");
    auto bytes = standardInput ? BoundedFileReader::readStandardInput() : BoundedFileReader::read(path);
    if (!bytes)
        return fail(Error{Error::Kind::unreadable, (standardInput ? QStringLiteral("standard input") : path) +
                                                       QStringLiteral(": cannot open: ") + bytes.error()});
    return std::move(bytes).value();
}

Expected<plist::ReadResult, InputFile::Error> InputFile::readPlist(const QString& path) {
    const auto bytes = read(path);
    if (!bytes)
        return fail(bytes.error());
    auto result = plist::PlistReader::read(*bytes);
    if (!result)
        return fail(Error{Error::Kind::invalid, path + QStringLiteral(": ") + result.error().toString()});
    return std::move(result).value();
}

} // namespace quorlin::cli
