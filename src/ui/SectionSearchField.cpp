#include "ui/SectionSearchField.h"

#include <QKeyEvent>

namespace quorlin {

SectionSearchField::SectionSearchField(SectionFilter& filter, QWidget* parent)
    : QLineEdit(parent)
    , m_filter(filter) {
    setPlaceholderText(tr("Search Preferences"));
    setAccessibleName(tr("Search Preferences"));
    setClearButtonEnabled(true);
    setText(m_filter.searchText());
    connect(this, &QLineEdit::textChanged, &m_filter, &SectionFilter::setSearchText);
    // A search set by the window, e.g. cleared, shows here too.
    connect(&m_filter, &SectionFilter::searchTextChanged, this, [this](const QString& text) {
        if (text != this->text())
            setText(text);
    });
}

void SectionSearchField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && !text().isEmpty()) {
        clear();
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

} // namespace quorlin
