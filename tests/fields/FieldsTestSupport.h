#pragma once

#include "fields/ControlSide.h"
#include "fields/KeyValueWriter.h"
#include "validation/ValidationTestSupport.h"

#include <QStringList>

#include <optional>

namespace quorlin::test {

// A control that remembers what the binding last showed it.
class RecordingControl : public ControlSide {
public:
    void showValue(const plist::Value& value) override {
        shown = value;
        ++showCount;
    }
    void showNullPlaceholder(const std::optional<plist::Value>& placeholder) override {
        this->placeholder = placeholder;
    }
    void showContent(const plist::Array& items, bool insertsEmptyEntry) override {
        content = items;
        emptyEntry = insertsEmptyEntry;
    }
    void showEnabled(bool enabled) override { this->enabled = enabled; }

    plist::Value shown;
    int showCount = 0;
    std::optional<plist::Value> placeholder;
    plist::Array content;
    bool emptyEntry = false;
    bool enabled = false;
};

// Applies each write and keeps its identity, as an undo stack would see it.
class RecordingWriter : public KeyValueWriter {
public:
    void writeValue(const PreferenceKey::Pointer& key, const PreferenceKeyValue& value,
                    const QString& editIdentity) override {
        identities.append(editIdentity);
        key->setValue(value);
    }
    QStringList identities;
};

// A "pfm_conditionals" (or "pfm_exclude") list of one rule: the target is present.
inline plist::Array whenPresent(const QString& target, plist::Dictionary extra = {}) {
    return plist::Array{plist::Value(
        rule(plist::Array{plist::Value(condition(target, "pfm_present", true))}, std::move(extra)))};
}

inline QString placeholderText(const std::optional<plist::Value>& placeholder) {
    if (!placeholder)
        return QStringLiteral("<none>");
    return placeholder->toString().value_or(QStringLiteral("<not text>"));
}

} // namespace quorlin::test
