#include "ui/AnalyticsEventReporter.h"

#include "shell/AnalyticsHelper.h"

namespace quorlin {

void AnalyticsEventReporter::report(const QStringList& domains, const QString& eventName) {
    m_analytics.report(domains, eventName);
}

} // namespace quorlin
