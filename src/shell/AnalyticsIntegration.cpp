#include "shell/AnalyticsIntegration.h"

#include <utility>

namespace quorlin {

AnalyticsIntegration::AnalyticsIntegration(std::shared_ptr<AnalyticsSink> sink)
    : m_sink(std::move(sink)) {}

AnalyticsIntegration& AnalyticsIntegration::shared() {
    static AnalyticsIntegration integration;
    return integration;
}

QString AnalyticsIntegration::applicationSecret() {
    return QStringLiteral("6f0d8a52-3c1e-4b7a-9e25-d41c7b93a8f0");
}

void AnalyticsIntegration::setup(const QString& secret) {
    if (m_started)
        return;
    m_started = true;
    m_sink->start(secret);
}

void AnalyticsIntegration::trackEvent(const QString& name, const AnalyticsSink::Properties& properties) {
    if (m_started)
        m_sink->trackEvent(name, properties);
}

} // namespace quorlin
