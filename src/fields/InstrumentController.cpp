#include "fields/InstrumentController.h"

#include "fields/DirectKeyValueWriter.h"

namespace quorlin {

InstrumentController::InstrumentController()
    : m_writer(DirectKeyValueWriter::shared()) {}

InstrumentController::~InstrumentController() {
    unbindValue();
}

void InstrumentController::setRepresentedObject(const PreferenceKey::Pointer& object) {
    if (!isViewLoaded() || !rebindsWithRepresentedObject()) {
        m_representedObject = object;
        representedObjectDidChange();
        return;
    }
    const auto prototypeOf = [](const PreferenceKey::Pointer& key) {
        return key ? key->prototypePointer() : PreferenceKey::PrototypePointer();
    };
    const bool samePrototype = prototypeOf(object) == prototypeOf(m_representedObject);
    // Our bindings hold their key, so even with the same prototype they are
    // renewed; only the requirement observation carries on untouched.
    if (!samePrototype && m_trackRequirementStatus)
        m_observedRequirement.reset();
    unbindValue();
    m_representedObject = object;
    bindValue();
    if (!samePrototype && m_trackRequirementStatus)
        m_observedRequirement = takeRequirementSnapshot();
    representedObjectDidChange();
}

void InstrumentController::setTableCellMode(bool on) {
    m_tableCellMode = on;
    if (isViewLoaded())
        applyCellMode();
}

void InstrumentController::setWriter(std::shared_ptr<KeyValueWriter> writer) {
    m_writer = writer ? std::move(writer) : DirectKeyValueWriter::shared();
    if (isViewLoaded())
        rebind();
}

void InstrumentController::attachControl(ControlSide* control) {
    if (m_control)
        unbindValue();
    m_control = control;
    if (!m_control)
        return;
    applyCellMode();
    bindValue();
}

std::shared_ptr<ValueBinding> InstrumentController::valueBinding() const {
    for (const auto& binding : m_bindings) {
        if (binding->role() == ValueBinding::Role::value)
            return binding;
    }
    return nullptr;
}

void InstrumentController::requirementMayHaveChanged() {
    if (!m_trackRequirementStatus)
        return;
    const auto previous = m_observedRequirement;
    m_observedRequirement = takeRequirementSnapshot();
    // Absent to absent, or no change at all, is no news.
    if (!previous || !m_observedRequirement || *previous == *m_observedRequirement)
        return;
    if (isViewLoaded()) {
        rebind();
        notifyChange();
    }
}

std::shared_ptr<ValueBinding> InstrumentController::bind(ValueBinding::Role role, const QString& path,
                                                         BindingOptions options) {
    if (!m_control)
        return nullptr;
    auto binding = ValueBinding::make(role, *m_control, m_representedObject, KeyPath(path),
                                      std::move(options), m_writer);
    m_bindings.append(binding);
    return binding;
}

void InstrumentController::unbindValue() {
    for (const auto& binding : m_bindings)
        binding->unbind();
    m_bindings.clear();
}

void InstrumentController::writeValue(const PreferenceKeyValue& value) {
    if (m_representedObject)
        m_writer->writeValue(m_representedObject, value, QString());
}

// Only renews bindings in force: while the view loads, the look is applied
// before anything is bound, and binding follows.
void InstrumentController::rebind() {
    if (m_bindings.isEmpty())
        return;
    unbindValue();
    bindValue();
}

void InstrumentController::setTrackRequirementStatus(bool on) {
    m_trackRequirementStatus = on;
    if (on)
        m_observedRequirement = takeRequirementSnapshot();
    else
        m_observedRequirement.reset();
}

void InstrumentController::notifyChange() const {
    if (m_changeHandler)
        m_changeHandler();
}

std::optional<InstrumentController::RequirementSnapshot>
InstrumentController::takeRequirementSnapshot() const {
    if (!m_representedObject)
        return std::nullopt;
    return RequirementSnapshot{m_representedObject->requirementStatus(), m_representedObject->required()};
}

} // namespace quorlin
