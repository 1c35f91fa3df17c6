#pragma once

#include <QString>

namespace quorlin {

class AnalyticsIntegration;
class PFMDomainManager;
class UserDefaults;

// The headless start shared by the editor and the command-line tool: what
// must have happened, in this order, before anything reads a setting or a
// manifest. Windows, menus and notices plug in around it later without
// changing the order.
class ApplicationStart {
public:
    explicit ApplicationStart(UserDefaults& defaults);
    // For tests: another analytics integration and a chosen current version.
    ApplicationStart(UserDefaults& defaults, AnalyticsIntegration& analytics, const QString& currentVersion);

    void run();

    // The shared domain manager, once run() has obtained it.
    PFMDomainManager* domainManager() const { return m_domainManager; }

    // Removes the setting of the old self-updater on a first start: the
    // program has no updater, and a stale value would only confuse.
    static void cleanOldUpdaterDefault(UserDefaults& defaults);

private:
    UserDefaults& m_defaults;
    AnalyticsIntegration& m_analytics;
    QString m_currentVersion;
    bool m_topPriorityUICalled = false;
    PFMDomainManager* m_domainManager = nullptr;
};

} // namespace quorlin
