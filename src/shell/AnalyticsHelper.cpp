#include "shell/AnalyticsHelper.h"

#include "shell/AnalyticsIntegration.h"

#include <utility>

namespace quorlin {

AnalyticsHelper::AnalyticsHelper(AnalyticsIntegration& integration, DomainListProvider nonIdentifiableDomains)
    : m_integration(integration)
    , m_provider(std::move(nonIdentifiableDomains)) {}

void AnalyticsHelper::report(const QStringList& domains, const QString& eventName) {
    for (const QString& domain : domains) {
        if (!nonIdentifiablePayloadDomains().contains(domain))
            continue;
        m_integration.trackEvent(eventName,
                                 {{QStringLiteral("DomainString"), domain.left(maximumDomainLength)}});
    }
}

const QStringList& AnalyticsHelper::nonIdentifiablePayloadDomains() {
    if (!m_nonIdentifiablePayloadDomains)
        m_nonIdentifiablePayloadDomains = m_provider ? m_provider() : QStringList();
    return *m_nonIdentifiablePayloadDomains;
}

QStringList AnalyticsHelper::payloadDomainsOf(const plist::Array& manifests) {
    QStringList domains;
    for (const plist::Value& manifest : manifests) {
        const plist::Dictionary* dictionary = manifest.dictionary();
        if (!dictionary)
            continue;
        if (const auto domain = dictionary->string(QStringLiteral("pfm_domain")))
            domains << *domain;
    }
    return domains;
}

} // namespace quorlin
