#include "ui/PropertyInfoPopover.h"
#include "ui/Tint.h"

#include <QDesktopServices>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace quorlin {

namespace {

QLabel* wrappingLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QString allowedValuesHtml(const QString& text, const std::optional<TextRange>& fixedPitch) {
    if (!fixedPitch || fixedPitch->start + fixedPitch->length > text.size())
        return text.toHtmlEscaped();
    return text.left(fixedPitch->start).toHtmlEscaped() + QStringLiteral("<code>") +
           text.mid(fixedPitch->start, fixedPitch->length).toHtmlEscaped() + QStringLiteral("</code>") +
           text.mid(fixedPitch->start + fixedPitch->length).toHtmlEscaped();
}

QString cellText(const AvailabilityItem::Cell& cell) {
    if (const auto* flag = std::get_if<bool>(&cell))
        return *flag ? QStringLiteral("\u2713") : QString();
    return std::get<QString>(cell);
}

} // namespace

PropertyInfoPopover::PropertyInfoPopover(const InfoPanelViewModel& model, QWidget* parent)
    : PropertyInfoPopover(QList<InfoPanelViewModel>{model}, parent) {}

PropertyInfoPopover::PropertyInfoPopover(const QList<InfoPanelViewModel>& models, QWidget* parent)
    : QFrame(parent, Qt::Popup)
    , m_models(models) {
    Q_ASSERT(!models.isEmpty());
    setObjectName(QStringLiteral("PropertyInfoPopover"));
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameShape(QFrame::StyledPanel);
    auto* layout = new QVBoxLayout(this);
    for (const InfoPanelViewModel& model : models) {
        if (&model != &models.front()) {
            auto* rule = new QFrame(this);
            rule->setFrameShape(QFrame::HLine);
            layout->addWidget(rule);
        }
        addPanel(*layout, model);
    }
    // Wrapping labels alone would squeeze a pop-up to a narrow column; the
    // widths follow the font so that a larger scale reads the same.
    setMinimumWidth(fontMetrics().averageCharWidth() * 36);
    setMaximumWidth(fontMetrics().averageCharWidth() * 70);
}

void PropertyInfoPopover::addPanel(QVBoxLayout& layout, const InfoPanelViewModel& model) {
    if (model.title) {
        auto* title = wrappingLabel(*model.title, this);
        QFont bold = title->font();
        bold.setBold(true);
        title->setFont(bold);
        layout.addWidget(title);
    }
    if (model.descriptionText)
        layout.addWidget(wrappingLabel(*model.descriptionText, this));
    auto* form = new QFormLayout;
    addRow(*form, QString(), model.name);
    addRow(*form, QString(), model.type);
    addRow(*form, InfoPanelViewModel::presenceLabel(), model.presence);
    addRow(*form, InfoPanelViewModel::defaultLabel(), model.defaultValue);
    if (model.allowedValues) {
        auto* allowed =
            wrappingLabel(allowedValuesHtml(*model.allowedValues, model.allowedValuesFixedPitchRange), this);
        allowed->setTextFormat(Qt::RichText);
        form->addRow(InfoPanelViewModel::allowedValuesLabel(), allowed);
    }
    addRow(*form, InfoPanelViewModel::sharedIPadBehaviorLabel(), model.sharedIPadBehavior);
    layout.addLayout(form);
    if (model.availabilityTable && !model.availabilityTable->isEmpty())
        layout.addWidget(makeAvailabilityTable(model));
    if (model.note)
        layout.addWidget(wrappingLabel(*model.note, this));
    if (model.documentationURL) {
        auto* button = new QPushButton(InfoPanelViewModel::documentationButtonTitle(), this);
        const QUrl url = *model.documentationURL;
        connect(button, &QPushButton::clicked, this, [url] { QDesktopServices::openUrl(url); });
        layout.addWidget(button, 0, Qt::AlignLeft);
    }
}

void PropertyInfoPopover::addRow(QFormLayout& form, const QString& label,
                                 const std::optional<QString>& text) {
    if (!text)
        return;
    auto* value = wrappingLabel(*text, this);
    if (label.isEmpty())
        form.addRow(value);
    else
        form.addRow(label, value);
}

QWidget* PropertyInfoPopover::makeAvailabilityTable(const InfoPanelViewModel& model) {
    auto* table = new QWidget;
    table->setObjectName(QStringLiteral("availabilityTable"));
    auto* grid = new QGridLayout(table);
    grid->setContentsMargins(0, 0, 0, 0);
    for (int column = 0; column < model.availabilityColumns.size(); ++column) {
        const auto platform = model.availabilityColumns.at(column);
        grid->addWidget(new QLabel(PFMSupportedPlatforms::displayName(platform)), 0, column + 1,
                        Qt::AlignHCenter);
    }
    int row = 1;
    for (const AvailabilityItem& item : *model.availabilityTable) {
        grid->addWidget(new QLabel(item.qualifier), row, 0);
        for (int column = 0; column < model.availabilityColumns.size(); ++column) {
            const auto value = item.values.find(model.availabilityColumns.at(column));
            if (value == item.values.end())
                continue;
            auto* cell = new QLabel(cellText(value->second));
            if (const auto* flag = std::get_if<bool>(&value->second); flag && *flag)
                cell->setAccessibleName(QStringLiteral("Checked"));
            if (item.marksEndOfLife) {
                Tint::setTextColour(*cell, Tint::errorColour());
                QFont bold = cell->font();
                bold.setBold(true);
                cell->setFont(bold);
            }
            grid->addWidget(cell, row, column + 1, Qt::AlignHCenter);
        }
        ++row;
    }
    return table;
}

void PropertyInfoPopover::showBelow(QWidget* anchor) {
    adjustSize();
    QPoint position = anchor ? anchor->mapToGlobal(QPoint(0, anchor->height())) : QPoint();
    if (const QScreen* screen = anchor ? anchor->screen() : nullptr) {
        const QRect available = screen->availableGeometry();
        position.setX(std::min(position.x(), available.right() - width()));
        position.setY(std::min(position.y(), available.bottom() - height()));
    }
    move(position);
    show();
}

} // namespace quorlin
