#pragma once

#include "schema/PFMSupportedPlatforms.h"

#include <QList>
#include <QWidget>

class QCheckBox;
class QGridLayout;
class QLineEdit;

namespace quorlin {

class ValidationSettings;

// What a window validates against: the platforms targeted, their version
// range, and whether deprecation and supervision count as faults. Every
// change goes straight to the settings, which remember it.
class ValidationOptionsPanel : public QWidget {
    Q_OBJECT

public:
    ValidationOptionsPanel(ValidationSettings& settings, QWidget* parent = nullptr);

    // Reads the settings again, after a change made elsewhere.
    void refresh();

private:
    struct PlatformRow {
        PFMSupportedPlatforms::Model model;
        QCheckBox* targeting;
        QLineEdit* minimum;
        QLineEdit* maximum;
    };

    void addPlatformRow(QGridLayout& grid, PFMSupportedPlatforms::Model model, const QString& name);
    void reset();

    ValidationSettings& m_settings;
    QList<PlatformRow> m_rows;
    QCheckBox* m_deprecation = nullptr;
    QCheckBox* m_supervision = nullptr;
};

} // namespace quorlin
