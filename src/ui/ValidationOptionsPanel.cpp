#include "ui/ValidationOptionsPanel.h"

#include "validation/ValidationSettings.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>

namespace quorlin {

using Model = PFMSupportedPlatforms::Model;

ValidationOptionsPanel::ValidationOptionsPanel(ValidationSettings& settings, QWidget* parent)
    : QWidget(parent)
    , m_settings(settings) {
    auto* grid = new QGridLayout(this);
    grid->addWidget(new QLabel(QStringLiteral("Target"), this), 0, 0);
    grid->addWidget(new QLabel(QStringLiteral("Minimum"), this), 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Maximum"), this), 0, 2);
    addPlatformRow(*grid, Model::macOS, QStringLiteral("macOS"));
    addPlatformRow(*grid, Model::iOS, QStringLiteral("iOS"));
    addPlatformRow(*grid, Model::tvOS, QStringLiteral("tvOS"));
    addPlatformRow(*grid, Model::watchOS, QStringLiteral("watchOS"));

    m_deprecation = new QCheckBox(QStringLiteral("Deprecated properties are invalid"), this);
    m_supervision = new QCheckBox(QStringLiteral("Properties that need supervision are invalid"), this);
    connect(m_deprecation, &QCheckBox::toggled, this,
            [this](bool on) { m_settings.setDeprecationInvalidates(on); });
    connect(m_supervision, &QCheckBox::toggled, this,
            [this](bool on) { m_settings.setSupervisionInvalidates(on); });
    const int row = grid->rowCount();
    grid->addWidget(m_deprecation, row, 0, 1, 3);
    grid->addWidget(m_supervision, row + 1, 0, 1, 3);
    auto* resetButton = new QPushButton(QStringLiteral("Reset"), this);
    connect(resetButton, &QPushButton::clicked, this, &ValidationOptionsPanel::reset);
    grid->addWidget(resetButton, row + 2, 2);
    refresh();
}

void ValidationOptionsPanel::addPlatformRow(QGridLayout& grid, Model model, const QString& name) {
    PlatformRow row{model, new QCheckBox(name, this), new QLineEdit(this), new QLineEdit(this)};
    row.minimum->setAccessibleName(name + QStringLiteral(" minimum version"));
    row.maximum->setAccessibleName(name + QStringLiteral(" maximum version"));
    row.minimum->setPlaceholderText(QStringLiteral("any"));
    row.maximum->setPlaceholderText(QStringLiteral("any"));
    connect(row.targeting, &QCheckBox::toggled, this,
            [this, model](bool on) { m_settings.setTargeting(model, on); });
    // Typing a version turns its platform on; clearing it leaves the platform be.
    const auto typed = [this, row](bool isMinimum, const QString& text) {
        if (isMinimum)
            m_settings.setMinimumVersion(row.model, text);
        else
            m_settings.setMaximumVersion(row.model, text);
        if (!m_settings.targeting(row.model)) {
            m_settings.setTargeting(row.model, true);
            const QSignalBlocker blocker(row.targeting);
            row.targeting->setChecked(true);
        }
    };
    connect(row.minimum, &QLineEdit::textEdited, this, [typed](const QString& text) { typed(true, text); });
    connect(row.maximum, &QLineEdit::textEdited, this, [typed](const QString& text) { typed(false, text); });
    const int gridRow = grid.rowCount();
    grid.addWidget(row.targeting, gridRow, 0);
    grid.addWidget(row.minimum, gridRow, 1);
    grid.addWidget(row.maximum, gridRow, 2);
    m_rows.append(row);
}

void ValidationOptionsPanel::refresh() {
    for (const PlatformRow& row : m_rows) {
        const QSignalBlocker targeting(row.targeting);
        row.targeting->setChecked(m_settings.targeting(row.model));
        row.minimum->setText(m_settings.minimumVersion(row.model));
        row.maximum->setText(m_settings.maximumVersion(row.model));
    }
    const QSignalBlocker deprecation(m_deprecation);
    const QSignalBlocker supervision(m_supervision);
    m_deprecation->setChecked(m_settings.deprecationInvalidates());
    m_supervision->setChecked(m_settings.supervisionInvalidates());
}

// Text being typed is dropped, not stored: refresh overwrites it from the settings.
void ValidationOptionsPanel::reset() {
    m_settings.reset();
    refresh();
}

} // namespace quorlin
