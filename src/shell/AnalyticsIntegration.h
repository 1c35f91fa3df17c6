#pragma once

#include "shell/AnalyticsSink.h"
#include "shell/SilentAnalyticsSink.h"

#include <QString>

#include <memory>

namespace quorlin {

// The analytics service of the process: started once at launch with the
// application secret; events before the start are dropped, as the service
// itself would.
class AnalyticsIntegration {
public:
    explicit AnalyticsIntegration(
        std::shared_ptr<AnalyticsSink> sink = std::make_shared<SilentAnalyticsSink>());

    static AnalyticsIntegration& shared();
    // The secret this program registers with, a UUID of 36 characters.
    static QString applicationSecret();

    // Starts the sink; later calls change nothing.
    void setup(const QString& secret);
    bool isStarted() const { return m_started; }
    void trackEvent(const QString& name, const AnalyticsSink::Properties& properties);

private:
    std::shared_ptr<AnalyticsSink> m_sink;
    bool m_started = false;
};

} // namespace quorlin
