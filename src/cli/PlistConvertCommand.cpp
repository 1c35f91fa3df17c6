#include "cli/PlistConvertCommand.h"

#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/InputFile.h"
#include "cli/ParsedArguments.h"
#include "plist/BinaryWriter.h"
#include "plist/XmlWriter.h"

namespace quorlin::cli {

namespace {

const QString kFormatOption = QStringLiteral("-f");
const QString kXmlFormat = QStringLiteral("xml1");
const QString kBinaryFormat = QStringLiteral("binary1");

} // namespace

QString PlistConvertCommand::summary() const {
    return QStringLiteral("Convert a property list to XML or binary form");
}

QString PlistConvertCommand::help() const {
    return QStringLiteral("Usage: quorlin-profile plist convert -f xml1|binary1 FILE [-o OUT]\n"
                          "\n"
                          "Reads FILE as a property list (XML, binary or OpenStep) and writes it in\n"
                          "the chosen form: xml1 for XML, binary1 for binary.\n"
                          "\n"
                          "  -f FORMAT   xml1 or binary1 (required)\n"
                          "  -o OUT      where to write; \"-\" for standard output. Without it FILE\n"
                          "              itself is replaced. Files are replaced whole or not at all.\n"
                          "\n"
                          "Exit status: 0 when converted, 2 for a usage error or a file that can't\n"
                          "be read, converted or written.");
}

int PlistConvertCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(arguments, {kFormatOption, kOutputOption});
    if (!parsed)
        return usageError(streams, parsed.error());
    const QString format = parsed->value(kFormatOption).value_or(QString());
    if (format.isEmpty())
        return usageError(streams, QStringLiteral("no format given (-f xml1 or -f binary1)"));
    if (format != kXmlFormat && format != kBinaryFormat)
        return usageError(streams, QStringLiteral("unknown format '%1' (use xml1 or binary1)").arg(format));
    if (parsed->operands().size() != 1)
        return usageError(streams, QStringLiteral("give exactly one file"));

    const QString input = parsed->operands().first();
    const auto read = InputFile::readPlist(input);
    if (!read) {
        streams.printError(read.error().message);
        return ExitCode::usageOrInputError;
    }
    const auto bytes = encode(read->root, format);
    if (!bytes) {
        streams.printError(input + QStringLiteral(": cannot convert: ") + bytes.error());
        return ExitCode::usageOrInputError;
    }

    const QString output = parsed->value(kOutputOption).value_or(input);
    return writeOutputFile(streams, output, *bytes);
}

Expected<QByteArray, QString> PlistConvertCommand::encode(const plist::Value& root, const QString& format) {
    return format == kBinaryFormat ? plist::BinaryWriter::write(root) : plist::XmlWriter::write(root);
}

} // namespace quorlin::cli
