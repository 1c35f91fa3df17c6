#pragma once

#include "fields/FieldDetailsViewController.h"
#include "fields/FieldDisplaySettings.h"
#include "fields/InfoPanelViewModel.h"
#include "fields/InstrumentController.h"
#include "fields/InstrumentFactory.h"
#include "fields/KeyValueWriter.h"
#include "fields/TextRange.h"
#include "model/PreferenceKey.h"
#include "validation/FieldValidator.h"
#include "validation/FieldValidatorDelegate.h"

#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace quorlin {

// One row of a payload form, without the widgets: what the row shows of
// its key (title, name, description with the searched term marked, the
// details row, the error), whether it is enabled, which instrument edits
// it, and the context menu's actions. What hides a whole row is the form's
// business.
//
// The model has no observation of requirement or exclusion flags: whoever
// owns the form calls `refresh` after an edit anywhere in the payload, and
// the field re-reads its key and tells its change handler when anything it
// shows changed.
class FieldViewController : public FieldValidatorDelegate,
                            public std::enable_shared_from_this<FieldViewController> {
public:
    enum class Arrangement { ordinary, boolean, array };
    enum class MenuAction {
        unsetOnPayload,
        setPropertyToDefaultValue,
        forceEmptyValue,
        openPropertyInfoPanel
    };

    // A text of the row with the ranges of the searched term in it.
    struct DisplayText {
        QString text;
        QList<TextRange> highlights;
        // Shown in the disabled-control colour.
        bool isDimmed = false;
        friend bool operator==(const DisplayText&, const DisplayText&) = default;
    };
    // The spacing of a boolean row, which changes with its details and error.
    struct Spacing {
        int bottomSpace = 0;
        int instrumentRowBottomPadding = 0;
        friend bool operator==(Spacing, Spacing) = default;
    };

    // The row for a key: a boolean or array arrangement when the instrument
    // is a check box or a table. The validator is made and tied to the key.
    static std::shared_ptr<FieldViewController> make(const PreferenceKey::Pointer& field,
                                                     InstrumentFactory::Types instrumentType);
    static std::shared_ptr<FieldViewController> make(const PreferenceKey::Pointer& field);
    ~FieldViewController() override;
    FieldViewController(const FieldViewController&) = delete;
    FieldViewController& operator=(const FieldViewController&) = delete;

    const PreferenceKey::Pointer& field() const { return m_field; }
    InstrumentFactory::Types instrumentType() const { return m_instrumentType; }
    Arrangement arrangement() const { return m_arrangement; }
    const std::shared_ptr<FieldValidator>& fieldValidator() const { return m_fieldValidator; }

    // Makes the row's instruments (see `instruments`) with this writer.
    void makeInstrument(std::shared_ptr<KeyValueWriter> writer = {});
    // One instrument; an array row has one table per item prototype, and
    // none when its prototype declares no items.
    const QList<std::shared_ptr<InstrumentController>>& instruments() const { return m_instruments; }
    void setWriter(std::shared_ptr<KeyValueWriter> writer);

    const std::optional<FieldDisplaySettings>& fieldDisplaySettings() const { return m_fieldDisplaySettings; }
    void setFieldDisplaySettings(const std::optional<FieldDisplaySettings>& settings);

    DisplayText displayTitle() const;
    DisplayText displayName() const;
    DisplayText displayDescription() const;
    bool hideDescription() const;
    const QList<TextRange>& highlightedTermMatchesTitle() const { return m_matchesTitle; }
    const QList<TextRange>& highlightedTermMatchesName() const { return m_matchesName; }
    const QList<TextRange>& highlightedTermMatchesDescription() const { return m_matchesDescription; }
    // Whether the searched term hits the title, name or description.
    bool hasTermMatch() const;

    const FieldDetailsViewController& details() const { return m_details; }
    // "Required" in the details row: the key must be there right now.
    bool showsRequiredMarker() const { return m_details.showsRequiredTag(); }
    // False for a key the manifest keeps read-only, and while a rule
    // disables it; the value-changing menu items follow.
    bool isEnabled() const;
    // The dot that tells the key goes into the profile.
    bool showsWriteOutIndicator() const;
    // The error row's text; nothing hides the row.
    std::optional<QString> error() const;
    // Only a boolean row has its own spacing.
    std::optional<Spacing> spacing() const;
    // Leading padding of the main column: 20 for each level of indentation.
    int leadingPadding() const;

    bool validateMenuItem(MenuAction action) const;
    // Does what the menu item does; the info panel's action only answers true.
    void perform(MenuAction action);
    InfoPanelViewModel propertyInfo() const;

    // Re-reads the key: requirement tracking of the instruments, the
    // details row, the spacing. Tells the change handler when anything shown changed.
    void refresh();
    void setChangeHandler(std::function<void()> handler) { m_changeHandler = std::move(handler); }

    void fieldValidatorValidityDidChange(FieldValidator& validator) override;

private:
    FieldViewController(PreferenceKey::Pointer field, InstrumentFactory::Types instrumentType);

    struct Snapshot;
    Snapshot snapshot() const;
    void recomputeMatches();
    void makeArrayInstruments();

    PreferenceKey::Pointer m_field;
    InstrumentFactory::Types m_instrumentType;
    Arrangement m_arrangement;
    std::shared_ptr<FieldValidator> m_fieldValidator;
    std::optional<FieldDisplaySettings> m_fieldDisplaySettings;
    QList<TextRange> m_matchesTitle;
    QList<TextRange> m_matchesName;
    QList<TextRange> m_matchesDescription;
    FieldDetailsViewController m_details;
    QList<std::shared_ptr<InstrumentController>> m_instruments;
    std::shared_ptr<KeyValueWriter> m_writer;
    std::function<void()> m_changeHandler;
};

} // namespace quorlin
