#include "supply/SupportMerger.h"

#include "plist/Utilities.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <optional>

namespace quorlin {

namespace {

const QString subkeysKey = QStringLiteral("pfm_subkeys");
const QString nameKey = QStringLiteral("pfm_name");
const QString omitKey = QStringLiteral("pfm_quorlin_omit");
const QString omitKeysKey = QStringLiteral("pfm_quorlin_omit_keys");

// One subkey of the result being built, and which of the manifest's subkeys
// it still is untouched (none once merged or added).
struct WorkingKey {
    std::optional<qsizetype> baseIndex;
    plist::Dictionary key;
};

std::optional<qsizetype> partnerIndex(const QList<plist::Dictionary>& base, const plist::Dictionary& entry,
                                      qsizetype position, bool isArray) {
    const auto name = entry.string(nameKey);
    if (name) {
        for (qsizetype index = 0; index < base.size(); ++index)
            if (base[index].string(nameKey) == *name)
                return index;
    } else if (isArray && position < base.size()) {
        return position;
    }
    return std::nullopt;
}

plist::Array mergeSubkeys(const plist::Array& manifestSubkeys, const plist::Array& supportSubkeys,
                          bool isArray, int depth) {
    QList<plist::Dictionary> base;
    for (const plist::Value& key : manifestSubkeys)
        if (const plist::Dictionary* dictionary = key.dictionary())
            base.append(*dictionary);
    QList<WorkingKey> working;
    for (qsizetype index = 0; index < base.size(); ++index)
        working.append({index, base[index]});

    qsizetype position = 0;
    for (const plist::Value& element : supportSubkeys) {
        const plist::Dictionary* entry = element.dictionary();
        if (!entry)
            continue;
        const bool omitted = entry->boolean(omitKey) == true;
        const auto partner = partnerIndex(base, *entry, position++, isArray);
        const auto place = std::find_if(working.begin(), working.end(), [&](const WorkingKey& key) {
            return partner && key.baseIndex == partner;
        });
        if (place != working.end()) {
            const qsizetype index = place - working.begin();
            working.removeAt(index);
            if (!omitted)
                working.insert(
                    index, {std::nullopt, SupportMerger::mergeSupport(base[*partner], *entry, depth + 1)});
        } else if (!omitted && entry->contains(QStringLiteral("pfm_type")) &&
                   (entry->contains(nameKey) || isArray)) {
            working.append({std::nullopt, *entry});
        }
    }

    plist::Array merged;
    for (const WorkingKey& key : working)
        merged.append(key.key);
    return merged;
}

} // namespace

QString SupportMerger::supportFileName(const QString& domain) {
    const QString name = domain.isEmpty() ? QStringLiteral("Configuration") : domain;
    return name + QStringLiteral(" manifest-support.plist");
}

std::optional<plist::Dictionary> SupportMerger::support(const QString& domain,
                                                        const QStringList& directories) {
    // The domain becomes part of a path: it must not lead out of the folder.
    if (domain.contains(QLatin1Char('/')))
        return std::nullopt;
    for (const QString& directory : directories) {
        const QString path = QDir(directory).filePath(supportFileName(domain));
        if (!QFileInfo(path).isFile())
            continue;
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        auto parsed = Utilities::getDictionaryFromPlistBytes(file.readAll());
        if (!parsed)
            return std::nullopt;
        return std::move(*parsed);
    }
    return std::nullopt;
}

plist::Dictionary SupportMerger::mergeSupport(const plist::Dictionary& manifest,
                                              const plist::Dictionary& support, int depth) {
    plist::Dictionary result = manifest;
    if (depth >= maximumDepth)
        return result;
    const bool isArray = manifest.string(QStringLiteral("pfm_type")) == QStringLiteral("array");
    for (auto entry = support.begin(); entry != support.end(); ++entry) {
        if (entry.key() == omitKeysKey)
            continue;
        const plist::Array* manifestSubkeys = manifest.array(subkeysKey);
        if (entry.key() == subkeysKey && entry.value().isArray() && manifestSubkeys)
            result.insert(subkeysKey, mergeSubkeys(*manifestSubkeys, *entry.value().array(), isArray, depth));
        else
            result.insert(entry.key(), entry.value());
    }
    if (const plist::Array* omittedKeys = support.array(omitKeysKey))
        for (const plist::Value& omitted : *omittedKeys)
            if (const auto name = omitted.toString())
                result.remove(*name);
    return result;
}

} // namespace quorlin
