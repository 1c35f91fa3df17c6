#include "fields/AppNeighbourKeys.h"

#include "model/Payload.h"
#include "schema/PFMKeyPrototype.h"

namespace quorlin {

namespace {

const QString identifierSuffix = QStringLiteral("Identifier");
const QString bundleIdType = QStringLiteral("bundleID");
const QString pathType = QStringLiteral("path");

bool holds(const PreferenceKey& key, const QString& text) {
    const plist::Value* stored = key.value().plistValue();
    return stored && stored->toString() == text;
}

// A neighbour takes only a string the manifest allows it.
bool accepts(const PreferenceKey& key, const QString& text) {
    if (key.prototype().kind() != PFMKeyPrototype::Kind::string)
        return false;
    const auto& range = key.prototype().rangeList();
    return !range || range->contains(plist::Value(text));
}

} // namespace

QList<KeyValueWriter::Change> AppNeighbourKeys::changes(const PreferenceKey::Pointer& appKey,
                                                        const apptools::ChosenApp& app) {
    QList<KeyValueWriter::Change> result;
    if (!appKey || app.bundleId.isEmpty())
        return result;
    result.append({appKey, PreferenceKeyValue(plist::Value(app.bundleId))});
    const QString name = appKey->name();
    if (!name.endsWith(identifierSuffix))
        return result;
    const QString prefix = name.chopped(identifierSuffix.size());
    const auto requirement = sibling(*appKey, prefix + QStringLiteral("CodeRequirement"));
    const auto add = [&](const PreferenceKey::Pointer& key, const std::optional<QString>& text) {
        if (key && text && !text->isEmpty() && !holds(*key, *text) && accepts(*key, *text))
            result.append({key, PreferenceKeyValue(plist::Value(*text))});
    };
    // A typed text that is a path names a program by where it lies.
    const bool isPath = app.bundleId.startsWith(QLatin1Char('/'));
    add(sibling(*appKey, prefix + QStringLiteral("IdentifierType")), isPath ? pathType : bundleIdType);
    add(requirement, app.codeRequirement);
    if (prefix.isEmpty() || !requirement)
        add(sibling(*appKey, QStringLiteral("TeamIdentifier")), app.teamIdentifier);
    return result;
}

PreferenceKey::Pointer AppNeighbourKeys::sibling(const PreferenceKey& key, const QString& name) {
    if (const auto parent = key.parentKey()) {
        const auto* siblings = parent->value().keyMap();
        return siblings ? siblings->value(name) : nullptr;
    }
    const auto payload = key.parentPayload();
    return payload ? payload->keyAtPath(name) : nullptr;
}

} // namespace quorlin
