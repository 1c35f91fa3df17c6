#pragma once

#include <QMap>
#include <QString>

namespace quorlin {

// Where analytics events go: the closed service is reached only through this.
class AnalyticsSink {
public:
    using Properties = QMap<QString, QString>;

    virtual ~AnalyticsSink() = default;
    virtual void start(const QString& secret) = 0;
    virtual void trackEvent(const QString& name, const Properties& properties) = 0;
};

} // namespace quorlin
