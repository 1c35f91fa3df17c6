#include "workspace/PFMSectionViewController.h"

#include "workspace/PFMSection.h"

#include <algorithm>

namespace quorlin {

PFMSectionViewController::PFMSectionViewController(PFMSection& section, const Profile::Pointer& profile)
    : m_section(section)
    , m_profile(profile)
    , m_sectionProperties(section.sectionProperties()) {}

PFMSectionViewController::~PFMSectionViewController() = default;

int PFMSectionViewController::indexOfPayload(const Payload::Pointer& payload) const {
    const auto found = std::find_if(m_payloadControllers.begin(), m_payloadControllers.end(),
                                    [&](const auto& form) { return form->payload() == payload; });
    return found == m_payloadControllers.end() ? -1 : int(found - m_payloadControllers.begin());
}

PayloadViewController* PFMSectionViewController::addPayload() {
    const auto profile = m_profile.lock();
    if (!profile || (m_sectionProperties.singlePayload && !m_payloadControllers.empty()) ||
        m_sectionProperties.fileBasedPayload)
        return nullptr;
    const auto domain = m_section.primaryDomain();
    if (!domain)
        return nullptr;
    const auto payload = profile->addPayload(domain);
    for (const auto& form : m_payloadControllers)
        form->setCollapsed(true);
    PayloadViewController& form =
        adopt(std::make_unique<PayloadViewController>(this, payload, m_section.keyValueWriter()),
              int(m_payloadControllers.size()));
    ++m_allCreatedPayloadIndex;
    nameNewPayload(form);
    return &form;
}

// "Wi-Fi #2" for the second form ever made, whatever was removed since.
void PFMSectionViewController::nameNewPayload(PayloadViewController& form) {
    if (m_sectionProperties.singlePayload)
        return;
    const auto key = form.payloadDisplayNameKey();
    const plist::Value* value = key ? key->value().plistValue() : nullptr;
    const auto name = value ? value->toString() : std::nullopt;
    if (!name)
        return;
    key->setValue(plist::Value(QStringLiteral("%1 #%2").arg(*name).arg(m_allCreatedPayloadIndex)));
}

PayloadViewController& PFMSectionViewController::addPayloadForm(const Payload::Pointer& payload) {
    return insertPayloadForm(payload, int(m_payloadControllers.size()));
}

PayloadViewController& PFMSectionViewController::insertPayloadForm(const Payload::Pointer& payload,
                                                                   int index) {
    return adopt(std::make_unique<PayloadViewController>(this, payload, m_section.keyValueWriter()), index);
}

PayloadViewController& PFMSectionViewController::adopt(std::unique_ptr<PayloadViewController> form,
                                                       int index) {
    form->setValidationSettings(m_validationSettings);
    if (m_fieldDisplaySettings)
        form->setFieldDisplaySettings(*m_fieldDisplaySettings);
    connect(form.get(), &PayloadViewController::errorCountChanged, this,
            &PFMSectionViewController::sumErrors);
    index = std::clamp(index, 0, int(m_payloadControllers.size()));
    auto& adopted = *m_payloadControllers.insert(m_payloadControllers.begin() + index, std::move(form));
    updatePayloadsConfigured();
    sumErrors();
    Q_EMIT payloadControllersChanged();
    return *adopted;
}

void PFMSectionViewController::removePayloads(QList<int> indexes) {
    std::sort(indexes.begin(), indexes.end(), std::greater<>());
    indexes.erase(std::unique(indexes.begin(), indexes.end()), indexes.end());
    const auto profile = m_profile.lock();
    for (const int index : indexes) {
        if (index < 0 || index >= int(m_payloadControllers.size()))
            continue;
        const auto payload = m_payloadControllers[size_t(index)]->payload();
        m_payloadControllers.erase(m_payloadControllers.begin() + index);
        if (profile && payload)
            profile->removePayload(payload);
    }
    updatePayloadsConfigured();
    const bool allCollapsed = std::all_of(m_payloadControllers.begin(), m_payloadControllers.end(),
                                          [](const auto& form) { return form->isCollapsed(); });
    if (!m_payloadControllers.empty() && allCollapsed)
        m_payloadControllers.back()->setCollapsed(false);
    sumErrors();
    Q_EMIT payloadControllersChanged();
}

void PFMSectionViewController::updatePayloadsConfigured() {
    m_section.setPayloadsConfigured(int(m_payloadControllers.size()));
}

void PFMSectionViewController::setValidationSettings(
    const std::weak_ptr<const ValidationSettings>& settings) {
    m_validationSettings = settings;
    for (const auto& form : m_payloadControllers)
        form->setValidationSettings(settings);
}

void PFMSectionViewController::setFieldDisplaySettings(const FieldDisplaySettings& settings) {
    m_fieldDisplaySettings = settings;
    for (const auto& form : m_payloadControllers)
        form->setFieldDisplaySettings(settings);
}

void PFMSectionViewController::recountErrors() {
    for (const auto& form : m_payloadControllers)
        form->recountErrors();
    sumErrors();
}

void PFMSectionViewController::sumErrors() {
    int sum = 0;
    for (const auto& form : m_payloadControllers)
        sum += form->errorCount();
    if (sum == m_errorCount)
        return;
    m_errorCount = sum;
    Q_EMIT errorCountChanged(sum);
}

} // namespace quorlin
