#include "ui/PlatformFilterButtons.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QToolButton>

namespace quorlin {

namespace {

using Model = PFMSupportedPlatforms::Model;

// Segment order: iOS, macOS, tvOS, watchOS.
constexpr std::array<Model, 4> segmentPlatforms{Model::iOS, Model::macOS, Model::tvOS, Model::watchOS};

} // namespace

PlatformFilterButtons::PlatformFilterButtons(SectionFilter& filter, QWidget* parent)
    : QWidget(parent)
    , m_filter(filter) {
    setAccessibleName(tr("Platform filters"));
    m_buttons.setExclusive(false);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (int index = 0; index < int(segmentPlatforms.size()); ++index) {
        const QString name = PFMSupportedPlatforms::displayName(segmentPlatforms[index]);
        auto* button = new QToolButton(this);
        button->setText(name);
        button->setCheckable(true);
        button->setAutoRaise(false);
        button->setToolTip(tr("Show only the sections available on %1").arg(name));
        button->setAccessibleName(tr("%1 filter").arg(name));
        m_buttons.addButton(button, index);
        layout->addWidget(button);
    }
    connect(&m_buttons, &QButtonGroup::idToggled, this,
            [this](int index, bool checked) { m_filter.setFilteringFor(segmentPlatforms[index], checked); });
    connect(&m_filter, &SectionFilter::filtersChanged, this, &PlatformFilterButtons::showFilters);
    showFilters();
}

QAbstractButton* PlatformFilterButtons::segment(int index) const {
    return m_buttons.button(index);
}

void PlatformFilterButtons::showFilters() {
    const QSignalBlocker blocker(m_buttons);
    for (int index = 0; index < int(segmentPlatforms.size()); ++index)
        m_buttons.button(index)->setChecked(m_filter.filteringFor(segmentPlatforms[index]));
}

} // namespace quorlin
