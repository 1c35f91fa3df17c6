#pragma once

#include "workspace/SectionFilter.h"

#include <QLineEdit>

namespace quorlin {

// The side-bar's search: every edit goes to the filter, Escape clears it.
class SectionSearchField : public QLineEdit {
    Q_OBJECT

public:
    explicit SectionSearchField(SectionFilter& filter, QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    SectionFilter& m_filter;
};

} // namespace quorlin
