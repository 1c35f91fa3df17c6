#pragma once

#include "fields/FieldViewController.h"

#include <QKeySequence>
#include <QPointer>
#include <QWidget>

#include <memory>

class QEnterEvent;
class QHBoxLayout;
class QLabel;
class QMenu;
class QToolButton;

namespace quorlin {

class PropertyInfoPopover;

// One row of a payload form: title, description, the instrument, the
// details (name, tags, documentation), the write-out dot and the error.
// Everything it shows it reads from its field's model, again after each
// change the model announces; it decides nothing itself.
class FieldRowView : public QWidget {
    Q_OBJECT

public:
    explicit FieldRowView(std::shared_ptr<FieldViewController> field, QWidget* parent = nullptr);
    ~FieldRowView() override;

    FieldViewController& field() const { return *m_field; }
    // Re-reads everything the row shows from the model.
    void refresh();

    // The row's context menu with each action enabled as the model says.
    QMenu* makeContextMenu(QWidget* parent);
    // The row's menu items, put in `menu` before `before` (at the end when null).
    void addMenuActions(QMenu& menu, QAction* before);
    // Opens the property info from the keyboard anywhere in the row.
    static QKeySequence propertyInfoShortcut();
    // Opens the information of the key; the popover closes as a pop-up does.
    PropertyInfoPopover* openPropertyInfo();

    QLabel* titleLabel() const { return m_title; }
    QLabel* errorLabel() const { return m_error; }
    QLabel* heldValuesLabel() const { return m_heldValues; }
    // The keys whose held values the row speaks for: its key, and what the
    // items of its array hold.
    PreferenceKey::KeyList keysHoldingValues() const;

    QLabel* descriptionLabel() const { return m_description; }
    // In the compact density, until the description is clicked.
    bool isDescriptionFolded() const;
    static QString descriptionFoldedTip();
    static QString descriptionUnfoldedTip();
    const QList<QWidget*>& instrumentWidgets() const { return m_instruments; }

Q_SIGNALS:
    // "Remove" of the values the row keeps from the file; the form makes it an edit.
    void heldValuesRemoveRequested(const PreferenceKey::KeyList& keys);

private:
    void buildTitleRow();
    void buildInstrumentRow();
    void buildDetailsRow();
    void buildHeldValuesRow();
    void refreshHeldValues();
    void followRightClicks(QWidget* instrument);
    void refreshDetails();
    void applyDensity();
    QString detailsSignature() const;
    void perform(FieldViewController::MenuAction action);
    QToolButton* makeDocumentationButton();
    void applySpacing();
    void showInfoButtonIfWanted();

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    std::shared_ptr<FieldViewController> m_field;
    QLabel* m_title = nullptr;
    QWidget* m_heldRow = nullptr;
    QLabel* m_heldValues = nullptr;
    QLabel* m_writeOut = nullptr;
    // Shown while the pointer is over the row or its popover is open.
    QToolButton* m_infoButton = nullptr;
    QLabel* m_description = nullptr;
    QWidget* m_details = nullptr;
    QHBoxLayout* m_detailsLayout = nullptr;
    QLabel* m_error = nullptr;
    QList<QWidget*> m_instruments;
    QString m_detailsSignature;
    bool m_detailsBuilt = false;
    bool m_descriptionExpanded = false;
    QPointer<PropertyInfoPopover> m_popover;
    // The open popover's address, which outlives its guarded pointer's use.
    const QObject* m_openPopover = nullptr;
    bool m_isMouseOver = false;
};

} // namespace quorlin
