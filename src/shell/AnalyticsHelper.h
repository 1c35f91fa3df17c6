#pragma once

#include "plist/Value.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace quorlin {

class AnalyticsIntegration;

// Counts which kinds of payload are used. Only payload domains known from
// the bundled manifests are ever reported: a custom domain could name a
// customer, and never leaves the machine.
class AnalyticsHelper {
public:
    // Gives the payload domains that identify no one; asked once, on first use.
    using DomainListProvider = std::function<QStringList()>;

    inline static const QString payloadAdded = QStringLiteral("Payload added");
    inline static const QString payloadSaved = QStringLiteral("Payload saved");
    inline static const QString payloadLoaded = QStringLiteral("Payload loaded");
    static constexpr qsizetype maximumDomainLength = 125;

    AnalyticsHelper(AnalyticsIntegration& integration, DomainListProvider nonIdentifiableDomains);

    // One event per listed domain that is known, in order.
    void report(const QStringList& domains, const QString& eventName);
    const QStringList& nonIdentifiablePayloadDomains();

    // The "pfm_domain" strings of manifest dictionaries: how the list is made
    // from the bundled manifests.
    static QStringList payloadDomainsOf(const plist::Array& manifests);

private:
    AnalyticsIntegration& m_integration;
    DomainListProvider m_provider;
    std::optional<QStringList> m_nonIdentifiablePayloadDomains;
};

} // namespace quorlin
