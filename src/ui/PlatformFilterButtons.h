#pragma once

#include "workspace/SectionFilter.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QWidget>

namespace quorlin {

// The platform filters of a window as four toggles, iOS, macOS, tvOS and
// watchOS (segments 0 to 3), kept in step with the filter both ways.
class PlatformFilterButtons : public QWidget {
    Q_OBJECT

public:
    explicit PlatformFilterButtons(SectionFilter& filter, QWidget* parent = nullptr);

    // The toggle of a segment, 0 to 3.
    QAbstractButton* segment(int index) const;

private:
    void showFilters();

    SectionFilter& m_filter;
    QButtonGroup m_buttons;
};

} // namespace quorlin
