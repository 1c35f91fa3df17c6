#pragma once

#include "plist/Value.h"

#include <QString>

#include <array>
#include <optional>

namespace quorlin {

// The entries of one key's dictionary that a prototype reads, found in one
// pass over the dictionary. A key holds a handful of entries while a
// prototype asks for some thirty names, most of them absent; looked up one
// by one in the sorted map, each name was compared several times along the
// long prefix all of them share, which was most of the cost of building a domain.
class PFMKeyFields {
public:
    enum class Field {
        type,
        name,
        title,
        description,
        format,
        rangeMin,
        rangeMax,
        rangeList,
        suggestions,
        conditionals,
        exclude,
        require,
        defaultValue,
        userVisible,
        userEditable,
        sortingIndex,
        defaultGenerate,
        ghostKey,
        prettyRangeList,
        valuePlaceholder,
        indentationLevel,
        controlType,
        typeAdapter,
        supportedOSes,
        supervisionRequired,
        documentationURL,
        repetitionMin,
        repetitionMax,
        subkeys,
        note,
        allowedFileExtensions,
        allowedDataSignatures,
        platforms,
        count
    };

    // Points into the dictionary, which must outlive it.
    explicit PFMKeyFields(const plist::Dictionary& dictionary);

    // The manifest's name of a field, as the dictionary spells it.
    static QString keyName(Field field);

    // The value under the field's name, or a null value.
    const plist::Value& value(Field field) const;
    std::optional<QString> string(Field field) const { return value(field).toString(); }
    std::optional<bool> boolean(Field field) const { return value(field).toBoolean(); }
    std::optional<qint64> integer(Field field) const { return value(field).toInteger(); }
    const plist::Array* array(Field field) const { return value(field).array(); }
    const plist::Dictionary* dictionary(Field field) const { return value(field).dictionary(); }

private:
    std::array<const plist::Value*, std::size_t(Field::count)> m_values{};
};

} // namespace quorlin
