#pragma once

#include "documents/DocumentEventReporter.h"

namespace quorlin {

class AnalyticsHelper;

// Hands the documents' reports of loaded, added and saved payloads to the
// analytics, which keeps only the domains of the bundled manifests.
class AnalyticsEventReporter final : public DocumentEventReporter {
public:
    explicit AnalyticsEventReporter(AnalyticsHelper& analytics)
        : m_analytics(analytics) {}

    void report(const QStringList& domains, const QString& eventName) override;

private:
    AnalyticsHelper& m_analytics;
};

} // namespace quorlin
