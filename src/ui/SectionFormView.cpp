#include "ui/SectionFormView.h"

#include "fields/InfoPanelViewModel.h"
#include "fields/PlatformTag.h"
#include "ui/PayloadFormView.h"
#include "ui/PropertyInfoPopover.h"
#include "ui/TagLabel.h"
#include "workspace/PFMSection.h"
#include "workspace/PFMSectionViewController.h"

#include <QDesktopServices>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

#include <map>

namespace quorlin {

SectionFormView::SectionFormView(PFMSectionViewController& form, SigningRowView::TrustCheck isTrusted,
                                 QWidget* parent)
    : QWidget(parent)
    , m_form(form)
    , m_isTrusted(std::move(isTrusted)) {
    setObjectName(QStringLiteral("sectionForm"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    buildHeader();
    m_scrollArea = new QScrollArea(this);
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    auto* content = new QWidget(m_scrollArea);
    m_payloadsLayout = new QVBoxLayout(content);
    m_payloadsLayout->setContentsMargins(0, 0, 0, 0);
    m_payloadsLayout->addStretch(1);
    m_scrollArea->setWidget(content);
    layout->addWidget(m_scrollArea, 1);
    connect(&form, &PFMSectionViewController::payloadControllersChanged, this,
            &SectionFormView::followPayloads);
    followPayloads();
}

SectionFormView::~SectionFormView() {
    // The payload forms go before the logic they show may.
    qDeleteAll(m_payloadViews);
}

void SectionFormView::buildHeader() {
    const PFMSection& section = m_form.section();
    auto* header = new QWidget(this);
    header->setObjectName(QStringLiteral("sectionHeader"));
    auto* column = new QVBoxLayout(header);
    const int gap = fontMetrics().height() / 2;
    column->setContentsMargins(gap * 2, gap, gap * 2, gap);
    auto* titleRow = new QHBoxLayout;
    m_title = new QLabel(section.sectionProperties().title, header);
    m_title->setObjectName(QStringLiteral("sectionTitle"));
    QFont large = m_title->font();
    large.setBold(true);
    large.setPointSizeF(large.pointSizeF() * 1.4);
    m_title->setFont(large);
    m_title->setWordWrap(true);
    m_infoButton = new QToolButton(header);
    m_infoButton->setObjectName(QStringLiteral("sectionInfoButton"));
    m_infoButton->setText(QStringLiteral("?"));
    m_infoButton->setAutoRaise(true);
    m_infoButton->setAccessibleName(QStringLiteral("Section Info"));
    connect(m_infoButton, &QToolButton::clicked, this, [this] { openSectionInfo(); });
    titleRow->addWidget(m_title, 1);
    titleRow->addWidget(m_infoButton, 0, Qt::AlignTop);
    column->addLayout(titleRow);
    auto* details = new QHBoxLayout;
    details->setSpacing(fontMetrics().averageCharWidth());
    if (const auto& platforms = section.supportedPlatforms()) {
        for (const PlatformTag& tag : PlatformTag::tags(*platforms, true))
            details->addWidget(TagLabel::platform(tag, header));
    }
    if (const auto& description = section.sectionProperties().descriptionLine) {
        auto* label = new QLabel(*description, header);
        label->setObjectName(QStringLiteral("sectionDescription"));
        label->setWordWrap(true);
        label->setForegroundRole(QPalette::PlaceholderText);
        details->addWidget(label, 1);
    } else {
        details->addStretch(1);
    }
    const auto& urls = section.sectionProperties().documentationURLs;
    if (urls && !urls->isEmpty()) {
        const QUrl url = urls->first();
        auto* link = new QToolButton(header);
        link->setObjectName(QStringLiteral("sectionDocumentation"));
        link->setText(InfoPanelViewModel::documentationButtonTitle());
        link->setAutoRaise(true);
        link->setToolTip(url.toString());
        connect(link, &QToolButton::clicked, this, [url] { QDesktopServices::openUrl(url); });
        details->addWidget(link, 0, Qt::AlignTop);
    }
    column->addLayout(details);
    static_cast<QVBoxLayout*>(layout())->addWidget(header);
}

void SectionFormView::followPayloads() {
    // Keeps the views of payloads still there (their rows, their scroll
    // state); makes views for new ones; drops the rest.
    std::map<const PayloadViewController*, PayloadFormView*> existing;
    QList<PayloadFormView*> stale;
    for (PayloadFormView* view : m_payloadViews) {
        if (view->isFormAlive())
            existing.emplace(&view->form(), view);
        else
            stale.append(view);
    }
    const bool isFirstBuild = m_payloadViews.isEmpty() && stale.isEmpty();
    PayloadFormView* added = nullptr;
    QList<PayloadFormView*> views;
    const auto writer = m_form.section().keyValueWriter();
    for (const auto& payloadForm : m_form.payloadControllers()) {
        const auto found = existing.find(payloadForm.get());
        if (found != existing.end()) {
            views.append(found->second);
            existing.erase(found);
            continue;
        }
        auto* view = new PayloadFormView(*payloadForm, writer, m_isTrusted, m_scrollArea->widget());
        connect(view, &PayloadFormView::removeRequested, this, [this, view] {
            const int index = int(m_payloadViews.indexOf(view));
            if (index >= 0)
                Q_EMIT removePayloadRequested(index);
        });
        connect(view, &PayloadFormView::saveSignedWithCommonNameEdited, this,
                &SectionFormView::saveSignedWithCommonNameEdited);
        connect(view, &PayloadFormView::unfamiliarPropertiesRemoveRequested, this,
                &SectionFormView::unfamiliarPropertiesRemoveRequested);
        views.append(view);
        added = view;
    }
    for (auto& [form, view] : existing)
        stale.append(view);
    qDeleteAll(stale);
    m_payloadViews = views;
    for (int index = 0; index < m_payloadViews.size(); ++index) {
        m_payloadViews.at(index)->followCollapsed();
        m_payloadsLayout->insertWidget(index, m_payloadViews.at(index));
    }
    // A payload added to a shown form is brought into sight once laid out.
    if (added && !isFirstBuild) {
        QPointer<PayloadFormView> target(added);
        QMetaObject::invokeMethod(
            this,
            [this, target] {
                if (target)
                    m_scrollArea->ensureWidgetVisible(target, 0, 0);
            },
            Qt::QueuedConnection);
    }
}

void SectionFormView::refresh() {
    for (PayloadFormView* view : m_payloadViews)
        view->refresh();
}

PropertyInfoPopover* SectionFormView::openSectionInfo() {
    QList<InfoPanelViewModel> panels;
    for (const auto& domain : m_form.section().domains())
        panels.append(InfoPanelViewModel::make(*domain));
    if (panels.isEmpty())
        return nullptr;
    if (m_popover)
        m_popover->close();
    m_popover = new PropertyInfoPopover(panels, this);
    m_popover->showBelow(m_infoButton);
    return m_popover;
}

} // namespace quorlin
