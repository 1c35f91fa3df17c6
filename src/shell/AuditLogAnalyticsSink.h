#pragma once

#include "shell/AnalyticsSink.h"

#include <QString>

namespace quorlin {

class UserDefaults;

// The analytics sink of the editor: nothing is ever sent anywhere. When
// the administrator turns the audit log on in the preferences, each event
// becomes a line of a local file, so that what would be counted can be
// read: the time in UTC, the event's name and its properties, separated by
// tabs. The setting is read at each event, so switching it takes effect at
// once.
class AuditLogAnalyticsSink final : public AnalyticsSink {
public:
    AuditLogAnalyticsSink(const UserDefaults& defaults, QString filePath);

    // <application data folder>/analytics-audit.log
    static QString standardFilePath();

    void start(const QString&) override {}
    void trackEvent(const QString& name, const Properties& properties) override;

private:
    const UserDefaults& m_defaults;
    QString m_filePath;
};

} // namespace quorlin
