#pragma once

#include "plist/Expected.h"
#include "plist/Value.h"
#include "schema/PFMXDecodingError.h"

#include <QList>
#include <QString>

#include <optional>

namespace quorlin {

// Reads the fields of one "pfmx_" record with the strictness of a typed
// decoder: a missing key leaves its field absent, but a value of the wrong
// type fails the whole record. Only the first failure is kept; once there is
// one, further reads do nothing.
class PFMXFieldReader {
public:
    PFMXFieldReader(const plist::Dictionary& dictionary, QString codingPath);

    void read(const QString& key, std::optional<QString>& field);
    void read(const QString& key, std::optional<bool>& field);

    // A nested record, decoded by Record::decode(dictionary, codingPath).
    template <typename Record>
    void readRecord(const QString& key, std::optional<Record>& field);

    // One word of an enumeration, or an array of such words; an unknown word fails.
    template <typename Enum>
    void readWord(const QString& key, std::optional<Enum>& field,
                  std::optional<Enum> (*fromRawValue)(const QString&));
    template <typename Enum>
    void readWords(const QString& key, std::optional<QList<Enum>>& field,
                   std::optional<Enum> (*fromRawValue)(const QString&));

    // Fails when an earlier read of a required key left its field absent.
    template <typename T>
    void require(const QString& key, const std::optional<T>& field);

    const std::optional<PFMXDecodingError>& error() const { return m_error; }

private:
    // The value to read, or null when the key is missing or a failure came first.
    const plist::Value* valueToRead(const QString& key) const;
    void fail(const QString& key, const QString& reason);
    QString pathOf(const QString& key) const;

    const plist::Dictionary& m_dictionary;
    QString m_codingPath;
    std::optional<PFMXDecodingError> m_error;
};

template <typename Record>
void PFMXFieldReader::readRecord(const QString& key, std::optional<Record>& field) {
    const plist::Value* value = valueToRead(key);
    if (!value)
        return;
    const plist::Dictionary* dictionary = value->dictionary();
    if (!dictionary)
        return fail(key, QStringLiteral("expected a dictionary"));
    auto record = Record::decode(*dictionary, pathOf(key));
    if (!record) {
        m_error = record.error();
        return;
    }
    field = std::move(*record);
}

template <typename Enum>
void PFMXFieldReader::readWord(const QString& key, std::optional<Enum>& field,
                               std::optional<Enum> (*fromRawValue)(const QString&)) {
    const plist::Value* value = valueToRead(key);
    if (!value)
        return;
    const auto word = value->toString();
    if (!word)
        return fail(key, QStringLiteral("expected a string"));
    field = fromRawValue(*word);
    if (!field)
        fail(key, QStringLiteral("unknown word \"%1\"").arg(*word));
}

template <typename Enum>
void PFMXFieldReader::readWords(const QString& key, std::optional<QList<Enum>>& field,
                                std::optional<Enum> (*fromRawValue)(const QString&)) {
    const plist::Value* value = valueToRead(key);
    if (!value)
        return;
    const plist::Array* array = value->array();
    if (!array)
        return fail(key, QStringLiteral("expected an array"));
    QList<Enum> words;
    for (const plist::Value& element : *array) {
        const auto word = element.toString();
        const auto member = word ? fromRawValue(*word) : std::nullopt;
        if (!member)
            return fail(key, QStringLiteral("expected an array of known words"));
        words.append(*member);
    }
    field = std::move(words);
}

template <typename T>
void PFMXFieldReader::require(const QString& key, const std::optional<T>& field) {
    if (!m_error && !field)
        fail(key, QStringLiteral("required key is missing"));
}

} // namespace quorlin
