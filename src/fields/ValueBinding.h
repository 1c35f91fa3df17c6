#pragma once

#include "fields/BindingOptions.h"
#include "fields/ControlSide.h"
#include "fields/KeyPath.h"
#include "fields/KeyValueWriter.h"
#include "model/PreferenceKey.h"
#include "model/PreferenceKeyObserver.h"

#include <memory>

namespace quorlin {

// A live link between one control and a key path on a preference key.
// Forward, each change of the key (or of any key below it) is read through
// the path and the transformer and pushed to the control. Backward, the
// control's edit is reverse-transformed and handed to the writer, never set
// on the key directly, so the editing layer can record it. A content
// binding (lists of a pop-up or combo box) only pushes.
//
// `unbind` cuts the link; it must run before the bound object changes so
// that a control never writes into a key it no longer shows. Destroying the
// binding unbinds it.
class ValueBinding : public PreferenceKeyObserver, public std::enable_shared_from_this<ValueBinding> {
public:
    enum class Role { value, content };

    static std::shared_ptr<ValueBinding> make(Role role, ControlSide& control,
                                              const PreferenceKey::Pointer& key, const KeyPath& path,
                                              BindingOptions options, std::shared_ptr<KeyValueWriter> writer);
    ~ValueBinding() override;
    ValueBinding(const ValueBinding&) = delete;
    ValueBinding& operator=(const ValueBinding&) = delete;

    Role role() const { return m_role; }
    const KeyPath& path() const { return m_path; }
    const BindingOptions& options() const { return m_options; }
    PreferenceKey::Pointer boundKey() const { return m_key.lock(); }
    bool isBound() const { return m_control != nullptr; }

    // The stored value as the control should show it, after the transformer.
    plist::Value displayedValue() const;
    // The control's edit: reverse-transformed and written. `isFinal` marks
    // the end of editing; without continuous updates only that one writes.
    void controlValueDidChange(const plist::Value& controlValue, bool isFinal = true);
    // Pushes the current value (and content, placeholder, enabling) again.
    void refreshControl();
    void unbind();

    void preferenceKeyValueDidChange(PreferenceKey& key) override;

private:
    ValueBinding(Role role, ControlSide& control, const PreferenceKey::Pointer& key, KeyPath path,
                 BindingOptions options, std::shared_ptr<KeyValueWriter> writer);

    Role m_role;
    ControlSide* m_control;
    std::weak_ptr<PreferenceKey> m_key;
    KeyPath m_path;
    BindingOptions m_options;
    std::shared_ptr<KeyValueWriter> m_writer;
    // Set while our own write travels through the model, so the echo of it
    // doesn't reset the control the user is typing in.
    bool m_isWriting = false;
};

} // namespace quorlin
