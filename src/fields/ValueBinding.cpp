#include "fields/ValueBinding.h"

#include "fields/DirectKeyValueWriter.h"

namespace quorlin {

ValueBinding::ValueBinding(Role role, ControlSide& control, const PreferenceKey::Pointer& key, KeyPath path,
                           BindingOptions options, std::shared_ptr<KeyValueWriter> writer)
    : m_role(role)
    , m_control(&control)
    , m_key(key)
    , m_path(std::move(path))
    , m_options(std::move(options))
    , m_writer(writer ? std::move(writer) : DirectKeyValueWriter::shared()) {}

std::shared_ptr<ValueBinding> ValueBinding::make(Role role, ControlSide& control,
                                                 const PreferenceKey::Pointer& key, const KeyPath& path,
                                                 BindingOptions options,
                                                 std::shared_ptr<KeyValueWriter> writer) {
    std::shared_ptr<ValueBinding> binding(
        new ValueBinding(role, control, key, path, std::move(options), std::move(writer)));
    if (key)
        key->addObserver(binding);
    binding->refreshControl();
    return binding;
}

ValueBinding::~ValueBinding() {
    unbind();
}

plist::Value ValueBinding::displayedValue() const {
    const PreferenceKeyValue stored = m_path.read(m_key.lock());
    if (m_options.valueTransformer)
        return m_options.valueTransformer->transformedValue(stored);
    if (const plist::Value* plain = stored.plistValue())
        return *plain;
    return {};
}

namespace {

// Controls also report their value when nothing changed (a text field losing
// focus); writing it again would count as an edit of an untouched document.
bool holdsAlready(const PreferenceKey& key, const PreferenceKeyValue& stored) {
    const PreferenceKeyValue& current = key.value();
    if (current.isAbsent() || stored.isAbsent())
        return current.isAbsent() && stored.isAbsent();
    const plist::Value* held = current.plistValue();
    const plist::Value* given = stored.plistValue();
    return held && given && *held == *given;
}

} // namespace

void ValueBinding::controlValueDidChange(const plist::Value& controlValue, bool isFinal) {
    if (!m_control || m_role != Role::value)
        return;
    if (!isFinal && !m_options.continuouslyUpdatesValue)
        return;
    const auto key = m_path.writableKey(m_key.lock());
    if (!key)
        return;
    const auto& transformer = m_options.valueTransformer;
    PreferenceKeyValue stored;
    if (transformer && transformer->allowsReverseTransformation())
        stored = transformer->reverseTransformedValue(controlValue);
    else if (!transformer)
        stored = PreferenceKeyValue(controlValue);
    else
        return; // a one-way transformer leaves the stored value alone
    if (holdsAlready(*key, stored))
        return;
    m_isWriting = true;
    m_writer->writeValue(key, stored, KeyPath::identity(*key));
    m_isWriting = false;
}

void ValueBinding::refreshControl() {
    if (!m_control)
        return;
    const auto root = m_key.lock();
    if (m_options.conditionallySetsEnabled)
        m_control->showEnabled(root != nullptr);
    if (m_role == Role::content) {
        const plist::Value shown = displayedValue();
        m_control->showContent(shown.array() ? *shown.array() : plist::Array(),
                               m_options.insertsNullPlaceholder);
        return;
    }
    m_control->showNullPlaceholder(m_options.nullPlaceholder);
    m_control->showValue(displayedValue());
}

void ValueBinding::unbind() {
    if (!m_control)
        return;
    m_control = nullptr;
    if (const auto key = m_key.lock())
        key->removeObserver(this);
}

void ValueBinding::preferenceKeyValueDidChange(PreferenceKey&) {
    if (m_isWriting || !m_control)
        return;
    if (m_role == Role::value) {
        m_control->showValue(displayedValue());
        return;
    }
    const plist::Value shown = displayedValue();
    m_control->showContent(shown.array() ? *shown.array() : plist::Array(), m_options.insertsNullPlaceholder);
}

} // namespace quorlin
