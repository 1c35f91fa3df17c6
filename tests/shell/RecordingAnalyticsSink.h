#pragma once

#include "shell/AnalyticsSink.h"

#include <QList>
#include <QStringList>

#include <utility>

namespace quorlin::test {

// Keeps what would have been sent, for the tests to read.
class RecordingAnalyticsSink final : public AnalyticsSink {
public:
    struct Event {
        QString name;
        Properties properties;
    };

    void start(const QString& secret) override { secrets << secret; }
    void trackEvent(const QString& name, const Properties& properties) override {
        events.append({name, properties});
    }

    QStringList secrets;
    QList<Event> events;
};

} // namespace quorlin::test
