#include "model/PreferenceKeyValue.h"

namespace quorlin {

PreferenceKeyValue::PreferenceKeyValue(const plist::Value& value) {
    if (!value.isNull())
        m_storage = value;
}

} // namespace quorlin
