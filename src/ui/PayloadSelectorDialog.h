#pragma once

#include <QDialog>
#include <QList>
#include <QStringList>

#include <functional>

class QListWidget;
class QPushButton;

namespace quorlin {

// Asks which payloads of a section a command acts on, when it has several.
// Window-modal; the choice arrives through the callback, and only when the
// user pressed the command's button with at least one payload ticked.
class PayloadSelectorDialog : public QDialog {
    Q_OBJECT

public:
    static inline const QString dialogObjectName = QStringLiteral("payloadSelector");
    using Chosen = std::function<void(const QList<int>& indexes)>;

    PayloadSelectorDialog(QWidget* window, const QStringList& payloadTitles, const QString& buttonTitle,
                          const QString& message, Chosen chosen);

    // Ticks the rows; for tests and for keyboard users who select first.
    void setChecked(int index, bool checked);
    QPushButton* actionButton() const { return m_actionButton; }

    // Shows the dialog over `window`; an empty list or no window shows nothing.
    static PayloadSelectorDialog* ask(QWidget* window, const QStringList& payloadTitles,
                                      const QString& buttonTitle, const QString& message, Chosen chosen);

private:
    QList<int> checkedIndexes() const;
    void updateButton();

    QListWidget* m_list;
    QPushButton* m_actionButton;
    Chosen m_chosen;
};

} // namespace quorlin
