#include "fields/DirectKeyValueWriter.h"

namespace quorlin {

void DirectKeyValueWriter::writeValue(const PreferenceKey::Pointer& key, const PreferenceKeyValue& value,
                                      const QString&) {
    if (key)
        key->setValue(value);
}

const std::shared_ptr<KeyValueWriter>& DirectKeyValueWriter::shared() {
    static const std::shared_ptr<KeyValueWriter> writer = std::make_shared<DirectKeyValueWriter>();
    return writer;
}

} // namespace quorlin
