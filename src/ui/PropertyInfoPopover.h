#pragma once

#include "fields/InfoPanelViewModel.h"

#include <QFrame>

class QFormLayout;

namespace quorlin {

// The information a manifest gives of a key or a domain, shown beside the
// button that asked for it. Read-only; a row whose field is absent isn't
// there. It closes as a pop-up does, by a click elsewhere or Escape.
class PropertyInfoPopover : public QFrame {
    Q_OBJECT

public:
    explicit PropertyInfoPopover(const InfoPanelViewModel& model, QWidget* parent = nullptr);

    const InfoPanelViewModel& model() const { return m_model; }
    // Shows it below `anchor`, kept on the anchor's screen.
    void showBelow(QWidget* anchor);

private:
    void addRow(QFormLayout& form, const QString& label, const std::optional<QString>& text);
    QWidget* makeAvailabilityTable() const;

    InfoPanelViewModel m_model;
};

} // namespace quorlin
