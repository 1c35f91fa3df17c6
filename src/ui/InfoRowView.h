#pragma once

#include <QWidget>

class QGridLayout;
class QLabel;
class QToolButton;

namespace quorlin {

// One fact of the app inspector: a qualifier and its text, side by side
// when both fit and the text is one line, else the qualifier above. A copy
// button shows while the mouse is over the row and puts the text on the
// clipboard.
class InfoRowView : public QWidget {
    Q_OBJECT
public:
    InfoRowView(const QString& qualifier, const QString& information, QWidget* parent = nullptr);

    const QString& information() const { return m_information; }
    bool isCopyButtonShowing() const;
    bool informationIncludesNewLineCharacters() const;
    bool widthIsSufficient() const;
    void copy();

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    QString m_information;
    QLabel* m_qualifierView = nullptr;
    QLabel* m_infoView = nullptr;
    QToolButton* m_copyButton = nullptr;
    QGridLayout* m_layout = nullptr;
    bool m_vertical = false;
};

} // namespace quorlin
