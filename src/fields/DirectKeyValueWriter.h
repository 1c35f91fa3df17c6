#pragma once

#include "fields/KeyValueWriter.h"

#include <memory>

namespace quorlin {

// Sets the value straight on the key: for tools and tests that keep no
// undo history, and for any instrument that is given no writer of its own.
class DirectKeyValueWriter : public KeyValueWriter {
public:
    void writeValue(const PreferenceKey::Pointer& key, const PreferenceKeyValue& value,
                    const QString& editIdentity) override;
    static const std::shared_ptr<KeyValueWriter>& shared();
};

} // namespace quorlin
