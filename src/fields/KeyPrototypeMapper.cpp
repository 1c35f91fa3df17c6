#include "fields/KeyPrototypeMapper.h"

#include <algorithm>

namespace quorlin {

namespace {

bool isConventional(const PFMKeyPrototype& prototype) {
    return prototype.representedDictionary() ==
           PFMKeyPrototype::RepresentableDictionary::conventionalDictionary;
}

} // namespace

QList<KeyPrototypeMapper> KeyPrototypeMapper::collect(const std::shared_ptr<const PFMKeyPrototype>& prototype,
                                                      const QString& prefix, int depth) {
    if (!isConventional(*prototype)) {
        if (!prototype->name())
            return {};
        return {KeyPrototypeMapper(prototype, *prototype->name())};
    }
    QList<KeyPrototypeMapper> collected;
    for (const auto& subkey : prototype->subkeys()) {
        for (KeyPrototypeMapper mapper : collect(subkey, prefix, depth + 1)) {
            // The outermost dictionary is the row itself and adds nothing to the path.
            if (depth > 0)
                mapper.m_bindingName = prototype->name().value_or(QString()) + QLatin1Char('.') + prefix +
                                       QLatin1Char('.') + mapper.m_bindingName;
            collected.append(mapper);
        }
    }
    return collected;
}

QList<KeyPrototypeMapper>
KeyPrototypeMapper::mappers(const std::shared_ptr<const PFMKeyPrototype>& prototype) {
    QList<KeyPrototypeMapper> result = collect(prototype, QStringLiteral("value"), 0);
    std::stable_sort(result.begin(), result.end(), [](const auto& a, const auto& b) {
        const auto first = a.keyPrototype()->sortingIndex();
        const auto second = b.keyPrototype()->sortingIndex();
        if (first && second)
            return *first < *second;
        return first.has_value() && !second.has_value();
    });
    return result;
}

} // namespace quorlin
