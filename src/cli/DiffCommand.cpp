#include "cli/DiffCommand.h"

#include "cli/CommonOptions.h"
#include "cli/ExitCode.h"
#include "cli/ParsedArguments.h"
#include "cli/ProfileOpener.h"
#include "cli/ProfileRoot.h"
#include "documents/SignatureComparison.h"
#include "model/ProfileComparison.h"
#include "model/ProfileDifferenceText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorlin::cli {

namespace {

const QString kIgnoreIdentifiersFlag = QStringLiteral("--ignore-identifiers");

QJsonValue jsonValue(const plist::Value& value) {
    switch (value.type()) {
    case plist::Value::Type::Boolean:
        return *value.toBoolean();
    case plist::Value::Type::Integer:
    case plist::Value::Type::Real:
        return *value.numberAsReal();
    case plist::Value::Type::String:
        return *value.toString();
    case plist::Value::Type::Data:
        return QString::fromLatin1(value.toData()->toBase64());
    case plist::Value::Type::Date:
        return value.toDate()->toDateTime().toString(Qt::ISODate);
    case plist::Value::Type::Array: {
        QJsonArray items;
        for (const plist::Value& item : *value.array())
            items.append(jsonValue(item));
        return items;
    }
    case plist::Value::Type::Dictionary: {
        QJsonObject entries;
        for (auto entry = value.dictionary()->begin(); entry != value.dictionary()->end(); ++entry)
            entries.insert(entry.key(), jsonValue(entry.value()));
        return entries;
    }
    default:
        return QJsonValue::Null;
    }
}

QJsonObject jsonDifference(const ProfileDifference& difference) {
    QJsonObject object{{QStringLiteral("kind"), ProfileDifference::kindName(difference.kind)}};
    if (!difference.keyPath.isEmpty()) {
        object.insert(QStringLiteral("path"), difference.keyPath);
        object.insert(QStringLiteral("titles"), QJsonArray::fromStringList(difference.keyTitles));
    }
    if (difference.oldValue)
        object.insert(QStringLiteral("old"), jsonValue(*difference.oldValue));
    if (difference.newValue)
        object.insert(QStringLiteral("new"), jsonValue(*difference.newValue));
    if (difference.oldIndex)
        object.insert(QStringLiteral("oldIndex"), double(*difference.oldIndex));
    if (difference.newIndex)
        object.insert(QStringLiteral("newIndex"), double(*difference.newIndex));
    return object;
}

QJsonObject jsonPayload(const ProfileDifference& heading) {
    return QJsonObject{{QStringLiteral("kind"), ProfileDifference::kindName(heading.kind)},
                       {QStringLiteral("type"), heading.payloadType},
                       {QStringLiteral("title"), heading.payloadTitle},
                       {QStringLiteral("name"), heading.payloadName},
                       {QStringLiteral("differences"), QJsonArray()}};
}

// The payloads with the differences of their keys inside, and the signature.
QByteArray jsonReport(const QList<ProfileDifference>& differences,
                      const std::optional<ProfileDifference>& signature) {
    QJsonArray payloads;
    QJsonObject current;
    for (const ProfileDifference& difference : differences) {
        if (difference.isOfPayload()) {
            if (!current.isEmpty())
                payloads.append(current);
            current = jsonPayload(difference);
            continue;
        }
        QJsonArray keys = current.value(QStringLiteral("differences")).toArray();
        keys.append(jsonDifference(difference));
        current.insert(QStringLiteral("differences"), keys);
    }
    if (!current.isEmpty())
        payloads.append(current);
    const QJsonObject report{
        {QStringLiteral("same"), differences.isEmpty() && !signature},
        {QStringLiteral("payloads"), payloads},
        {QStringLiteral("signature"), signature ? QJsonValue(jsonDifference(*signature)) : QJsonValue()}};
    return QJsonDocument(report).toJson(QJsonDocument::Indented);
}

} // namespace

QString DiffCommand::summary() const {
    return QStringLiteral("Show what changed between two profiles in effect");
}

QString DiffCommand::help() const {
    return QStringLiteral(
        "Usage: quorlin-profile diff OLD NEW [--json] [--ignore-identifiers] [--manifests DIR]\n"
        "\n"
        "Compares two profiles, plain or signed, as a device would see them: payloads\n"
        "are paired by type and identifier, then by type and display name, then by\n"
        "likeness of content, and compared key by key along their manifests. New\n"
        "UUIDs, the order of keys, the wrapping of data and the way a date is written\n"
        "make no difference; list items with an identity (a bundle identifier, say)\n"
        "are paired by it, so a reordered list shows moves.\n"
        "\n"
        "Prints one heading per payload that was added, removed or changed (title,\n"
        "display name, type), and under it one line per key: \"+\" added, \"-\" removed,\n"
        "\"~\" changed, \">\" moved, then the key's titles, its path in parentheses, and\n"
        "the values. A change of signer ends the list.\n"
        "\n"
        "  --json                print a JSON object instead: same, payloads (kind, type,\n"
        "                        title, name, differences: kind, path, titles, old, new,\n"
        "                        oldIndex, newIndex) and signature\n"
        "  --ignore-identifiers  leave changes of PayloadIdentifier out\n"
        "  --manifests DIR       take the domains from the manifests in DIR\n"
        "\n"
        "Exit status: 0 when the profiles are the same in effect, 1 when they differ,\n"
        "2 for a usage error or a file that can't be opened as a profile.");
}

int DiffCommand::run(const QStringList& arguments, CommandStreams& streams) const {
    const auto parsed = ParsedArguments::parse(
        arguments, ParsedArguments::Options({kManifestsOption}, {kJsonFlag, kIgnoreIdentifiersFlag}));
    if (!parsed)
        return usageError(streams, parsed.error());
    if (parsed->operands().size() != 2)
        return usageError(streams, QStringLiteral("give two files, the old and the new"));

    const auto context = ProfileContext::make(parsed->value(kManifestsOption));
    if (!context)
        return commandError(streams, context.error());
    const ProfileOpener opener(*context);
    const auto oldProfile = opener.open(parsed->operands()[0]);
    if (!oldProfile)
        return inputError(streams, oldProfile.error().message);
    const auto newProfile = opener.open(parsed->operands()[1]);
    if (!newProfile)
        return inputError(streams, newProfile.error().message);

    const ProfileComparison comparison(context->domains, {parsed->hasFlag(kIgnoreIdentifiersFlag)});
    QList<ProfileDifference> differences =
        comparison.compare(ProfileRoot::of(*oldProfile), ProfileRoot::of(*newProfile));
    const auto signature = SignatureComparison::compare(oldProfile->signature, newProfile->signature);
    if (parsed->hasFlag(kJsonFlag)) {
        streams.writeOutput(jsonReport(differences, signature));
    } else {
        if (signature)
            differences << *signature;
        streams.writeOutput(ProfileDifferenceText::report(differences).toUtf8());
    }
    return differences.isEmpty() && !signature ? ExitCode::success : ExitCode::findings;
}

} // namespace quorlin::cli
