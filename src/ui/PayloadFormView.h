#pragma once

#include "fields/KeyValueWriter.h"
#include "model/Payload.h"
#include "ui/SigningRowView.h"

#include <QList>
#include <QPointer>
#include <QWidget>

#include <memory>
#include <vector>

class QAbstractButton;
class QButtonGroup;
class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;
class QVBoxLayout;

namespace quorlin {

class FieldRowView;
class PayloadViewController;

// The form of one payload: its header (title, collapse and remove), the
// group selector, the notice of unfamiliar keys, the message shown when a
// filter leaves nothing, and one row per field in the logic's order. Rows
// are only shown or hidden as the logic decides; a row is built the first
// time it is to be shown, so a large form opens at the cost of what it shows.
class PayloadFormView : public QWidget {
    Q_OBJECT

public:
    PayloadFormView(PayloadViewController& form, std::shared_ptr<KeyValueWriter> writer,
                    SigningRowView::TrustCheck isTrusted, QWidget* parent = nullptr);
    ~PayloadFormView() override;

    PayloadViewController& form() const { return m_form; }
    // False once the logic dropped the payload's form; the view then waits
    // to be deleted and touches nothing of it.
    bool isFormAlive() const { return !m_formGuard.isNull(); }
    // The row of each field of the form, in order; null for one not built yet.
    const std::vector<QWidget*>& rows() const { return m_rows; }
    FieldRowView* rowForKey(const QString& keyName) const;
    SigningRowView* signingRow() const;
    // Re-reads what the logic shows: visibility, header, notices, each row.
    void refresh();
    // Follows the logic's collapsed state, which adding and removing payloads change.
    void followCollapsed();

    QLineEdit* titleEdit() const { return m_titleEdit; }
    // False while the payload is collapsed to its header.
    bool showsFields() const;
    QLabel* noFieldsLabel() const { return m_noFields; }
    QLabel* unfamiliarNotice() const { return m_unfamiliarNotice; }
    QList<QAbstractButton*> groupButtons() const;
    QLabel* groupBadge(int group) const;

Q_SIGNALS:
    void removeRequested();
    void saveSignedWithCommonNameEdited();
    // The user asks to drop the keys no manifest knows.
    void unfamiliarPropertiesRemoveRequested(const std::shared_ptr<Payload>& payload);

private:
    class KeyWatcher;

    void buildHeader();
    void buildGroupSelector();
    void buildNotices();
    void buildHeldValuesNotice();
    void removeHeldValues(const PreferenceKey::KeyList& keys);
    void applyVisibility();
    void orderTabs();
    QWidget* makeRow(size_t index);
    void refreshHeader();
    void refreshGroups();
    void refreshNotices();
    void setCollapsed(bool collapsed);
    void writeTitle(const QString& title);

    PayloadViewController& m_form;
    QPointer<PayloadViewController> m_formGuard;
    std::shared_ptr<KeyValueWriter> m_writer;
    SigningRowView::TrustCheck m_isTrusted;
    std::shared_ptr<KeyWatcher> m_keyWatcher;
    std::vector<QWidget*> m_rows;
    QVBoxLayout* m_fieldsLayout = nullptr;
    QWidget* m_fieldsBox = nullptr;
    QLabel* m_title = nullptr;
    QLineEdit* m_titleEdit = nullptr;
    QToolButton* m_collapseButton = nullptr;
    QPushButton* m_removeButton = nullptr;
    QButtonGroup* m_groups = nullptr;
    QList<QLabel*> m_groupBadges;
    QWidget* m_unfamiliarBox = nullptr;
    QLabel* m_unfamiliarNotice = nullptr;
    QPushButton* m_unfamiliarRemove = nullptr;
    QWidget* m_heldBox = nullptr;
    QLabel* m_heldNotice = nullptr;
    QLabel* m_noFields = nullptr;
};

} // namespace quorlin
