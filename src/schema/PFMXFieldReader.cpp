#include "schema/PFMXFieldReader.h"

namespace quorlin {

PFMXFieldReader::PFMXFieldReader(const plist::Dictionary& dictionary, QString codingPath)
    : m_dictionary(dictionary)
    , m_codingPath(std::move(codingPath)) {}

void PFMXFieldReader::read(const QString& key, std::optional<QString>& field) {
    const plist::Value* value = valueToRead(key);
    if (!value)
        return;
    field = value->toString();
    if (!field)
        fail(key, QStringLiteral("expected a string"));
}

void PFMXFieldReader::read(const QString& key, std::optional<bool>& field) {
    const plist::Value* value = valueToRead(key);
    if (!value)
        return;
    field = value->toBoolean();
    if (!field)
        fail(key, QStringLiteral("expected a boolean"));
}

const plist::Value* PFMXFieldReader::valueToRead(const QString& key) const {
    if (m_error || !m_dictionary.contains(key))
        return nullptr;
    return &m_dictionary.value(key);
}

void PFMXFieldReader::fail(const QString& key, const QString& reason) {
    m_error = PFMXDecodingError{pathOf(key), reason};
}

QString PFMXFieldReader::pathOf(const QString& key) const {
    return m_codingPath.isEmpty() ? key : m_codingPath + u'.' + key;
}

} // namespace quorlin
