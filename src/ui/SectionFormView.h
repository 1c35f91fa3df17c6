#pragma once

#include "fields/FieldDisplaySettings.h"
#include "model/Payload.h"
#include "ui/SigningRowView.h"

#include <QList>
#include <QPointer>
#include <QWidget>

class QLabel;
class QScrollArea;
class QToolButton;
class QVBoxLayout;

namespace quorlin {

class PayloadFormView;
class PFMSectionViewController;
class PropertyInfoPopover;

// The form of a section: a header with its title, description, platform
// tags, information and documentation, then the form of each payload
// stacked in one scroll area. It follows the payloads as they come and go.
class SectionFormView : public QWidget {
    Q_OBJECT

public:
    SectionFormView(PFMSectionViewController& form, SigningRowView::TrustCheck isTrusted,
                    QWidget* parent = nullptr);
    ~SectionFormView() override;

    PFMSectionViewController& form() const { return m_form; }
    const QList<PayloadFormView*>& payloadViews() const { return m_payloadViews; }
    // Re-reads every row after the settings went down to the logic.
    void refresh();
    PropertyInfoPopover* openSectionInfo();

    QLabel* titleLabel() const { return m_title; }
    QScrollArea* scrollArea() const { return m_scrollArea; }

Q_SIGNALS:
    void removePayloadRequested(int payloadIndex);
    void saveSignedWithCommonNameEdited();
    void unfamiliarPropertiesRemoveRequested(const std::shared_ptr<Payload>& payload);

private:
    void buildHeader();
    void followPayloads();

    PFMSectionViewController& m_form;
    SigningRowView::TrustCheck m_isTrusted;
    QLabel* m_title = nullptr;
    QToolButton* m_infoButton = nullptr;
    QScrollArea* m_scrollArea = nullptr;
    QVBoxLayout* m_payloadsLayout = nullptr;
    QList<PayloadFormView*> m_payloadViews;
    QPointer<PropertyInfoPopover> m_popover;
};

} // namespace quorlin
