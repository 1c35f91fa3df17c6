#pragma once

#include "fields/InfoPanelViewModel.h"

#include <QFrame>

class QFormLayout;
class QVBoxLayout;

namespace quorlin {

// The information a manifest gives of a key or a domain, shown beside the
// button that asked for it. Read-only; a row whose field is absent isn't
// there. It closes as a pop-up does, by a click elsewhere or Escape.
class PropertyInfoPopover : public QFrame {
    Q_OBJECT

public:
    explicit PropertyInfoPopover(const InfoPanelViewModel& model, QWidget* parent = nullptr);
    // One panel after the other: a section of several domains shows each.
    explicit PropertyInfoPopover(const QList<InfoPanelViewModel>& models, QWidget* parent = nullptr);

    const InfoPanelViewModel& model() const { return m_models.front(); }
    const QList<InfoPanelViewModel>& models() const { return m_models; }
    // Shows it below `anchor`, kept on the anchor's screen.
    void showBelow(QWidget* anchor);

private:
    void addPanel(QVBoxLayout& layout, const InfoPanelViewModel& model);
    void addRow(QFormLayout& form, const QString& label, const std::optional<QString>& text);
    static QWidget* makeAvailabilityTable(const InfoPanelViewModel& model);

    QList<InfoPanelViewModel> m_models;
};

} // namespace quorlin
