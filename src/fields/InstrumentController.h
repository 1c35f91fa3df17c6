#pragma once

#include "fields/ControlSide.h"
#include "fields/InstrumentFactory.h"
#include "fields/InstrumentLook.h"
#include "fields/KeyValueWriter.h"
#include "fields/ValueBinding.h"
#include "model/PreferenceKey.h"

#include <QList>

#include <functional>
#include <memory>
#include <optional>

namespace quorlin {

class FieldViewController;

// The logic of one control that edits one key, in a form or in a table
// cell. The widget is attached as a `ControlSide`; attaching it stands for
// loading the view: the look of the mode is applied, then the value bound.
//
// Whoever shows the instrument calls `requirementMayHaveChanged` after an
// edit anywhere in the payload (the model announces values, not flags); a
// tracking instrument rebinds when the key's requirement really changed, so
// the placeholder and a pop-up's empty entry follow it.
class InstrumentController {
public:
    using Types = InstrumentFactory::Types;

    virtual ~InstrumentController();
    InstrumentController(const InstrumentController&) = delete;
    InstrumentController& operator=(const InstrumentController&) = delete;

    virtual Types type() const = 0;

    // A key or, for a nested table column, the key the cell's path reached.
    const PreferenceKey::Pointer& representedObject() const { return m_representedObject; }
    void setRepresentedObject(const PreferenceKey::Pointer& object);
    PreferenceKey::Pointer representedPreferenceKey() const { return m_representedObject; }

    FieldViewController* parentFieldViewController() const { return m_parentFieldViewController; }
    void setParentFieldViewController(FieldViewController* field) { m_parentFieldViewController = field; }

    bool tableCellMode() const { return m_tableCellMode; }
    void setTableCellMode(bool on);
    bool trackRequirementStatus() const { return m_trackRequirementStatus; }

    // Every write of this instrument goes through the writer.
    void setWriter(std::shared_ptr<KeyValueWriter> writer);
    const std::shared_ptr<KeyValueWriter>& writer() const { return m_writer; }

    // The main control; null detaches it (unbinding first).
    void attachControl(ControlSide* control);
    ControlSide* control() const { return m_control; }
    bool isViewLoaded() const { return m_control != nullptr; }
    // The bindings in force, value binding first.
    const QList<std::shared_ptr<ValueBinding>>& bindings() const { return m_bindings; }
    std::shared_ptr<ValueBinding> valueBinding() const;

    const InstrumentLook& look() const { return m_look; }

    void requirementMayHaveChanged();
    // Told after the instrument changed anything a widget shows beside the bound value.
    void setChangeHandler(std::function<void()> handler) { m_changeHandler = std::move(handler); }

protected:
    InstrumentController();

    virtual bool rebindsWithRepresentedObject() const { return false; }
    // After every change of the represented object, bound or not.
    virtual void representedObjectDidChange() {}
    virtual void applyCellMode() {}
    virtual void bindValue() {}
    virtual void unbindValue();

    // Binds `path` on the represented key to the attached control.
    std::shared_ptr<ValueBinding> bind(ValueBinding::Role role, const QString& path, BindingOptions options);
    // Sets a value through the writer as a step of its own. Only the
    // instrument's commands come here (a file loaded, a value removed, a
    // default stored, a choice made); none of them is typing, so none may
    // merge with the write that follows, even on the same key.
    void writeValue(const PreferenceKeyValue& value);
    void rebind();
    void setTrackRequirementStatus(bool on);
    void notifyChange() const;
    InstrumentLook& mutableLook() { return m_look; }

private:
    struct RequirementSnapshot {
        PreferenceKey::RequirementStatus status = PreferenceKey::RequirementStatus::notRequired;
        bool required = false;
        friend bool operator==(const RequirementSnapshot&, const RequirementSnapshot&) = default;
    };
    std::optional<RequirementSnapshot> takeRequirementSnapshot() const;

    PreferenceKey::Pointer m_representedObject;
    FieldViewController* m_parentFieldViewController = nullptr;
    bool m_tableCellMode = false;
    bool m_trackRequirementStatus = false;
    std::optional<RequirementSnapshot> m_observedRequirement;
    std::shared_ptr<KeyValueWriter> m_writer;
    ControlSide* m_control = nullptr;
    QList<std::shared_ptr<ValueBinding>> m_bindings;
    std::function<void()> m_changeHandler;
    InstrumentLook m_look;
};

} // namespace quorlin
