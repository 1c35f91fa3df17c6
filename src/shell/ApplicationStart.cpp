#include "shell/ApplicationStart.h"

#include "plist/ApplicationIdentity.h"
#include "plist/UserDefaults.h"
#include "shell/AnalyticsIntegration.h"
#include "shell/FactoryDefaults.h"
#include "shell/VersionMigrations.h"
#include "supply/PFMDomainManager.h"

namespace quorlin {

ApplicationStart::ApplicationStart(UserDefaults& defaults)
    : ApplicationStart(defaults, AnalyticsIntegration::shared(), ApplicationIdentity::shortVersionString()) {}

ApplicationStart::ApplicationStart(UserDefaults& defaults, AnalyticsIntegration& analytics,
                                   const QString& currentVersion)
    : m_defaults(defaults)
    , m_analytics(analytics)
    , m_currentVersion(currentVersion) {}

void ApplicationStart::run() {
    cleanOldUpdaterDefault(m_defaults);
    m_defaults.registerDefaults(FactoryDefaults::registeredDefaults());
    VersionMigrations::run(m_defaults, m_currentVersion);
    if (!m_topPriorityUICalled) {
        m_analytics.setup(AnalyticsIntegration::applicationSecret());
        m_topPriorityUICalled = true;
    }
    // Last, as it reads the repository settings that the steps above registered and migrated.
    m_domainManager = &PFMDomainManager::shared();
}

void ApplicationStart::cleanOldUpdaterDefault(UserDefaults& defaults) {
    const bool isFirstStart = defaults.value(DefaultsKey::lastLaunchedBundleVersionString).isNull() &&
                              defaults.value(DefaultsKey::lastLaunchedBundleShortVersionString).isNull();
    if (isFirstStart && !defaults.value(DefaultsKey::suEnableAutomaticChecks).isNull())
        defaults.remove(DefaultsKey::suEnableAutomaticChecks);
}

} // namespace quorlin
