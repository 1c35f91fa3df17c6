#include "shell/AuditLogAnalyticsSink.h"

#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace quorlin {

AuditLogAnalyticsSink::AuditLogAnalyticsSink(const UserDefaults& defaults, QString filePath)
    : m_defaults(defaults)
    , m_filePath(std::move(filePath)) {}

QString AuditLogAnalyticsSink::standardFilePath() {
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
           QStringLiteral("/analytics-audit.log");
}

// An event the log can't take is dropped, as the service would drop it:
// counting usage never stands in the user's way.
void AuditLogAnalyticsSink::trackEvent(const QString& name, const Properties& properties) {
    if (m_defaults.boolean(DefaultsKey::analyticsAuditLogEnabled) != true)
        return;
    QStringList fields{QDateTime::currentDateTimeUtc().toString(Qt::ISODate), name};
    for (auto property = properties.cbegin(); property != properties.cend(); ++property)
        fields << property.key() + QLatin1Char('=') + property.value();
    QDir().mkpath(QFileInfo(m_filePath).absolutePath());
    QFile log(m_filePath);
    if (log.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        log.write((fields.join(QLatin1Char('\t')) + QLatin1Char('\n')).toUtf8());
}

} // namespace quorlin
