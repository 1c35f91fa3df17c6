#include "shell/FactoryReset.h"

#include "plist/ApplicationIdentity.h"
#include "shell/FactoryDefaults.h"
#include "shell/ProcessRestarter.h"

namespace quorlin {

FactoryReset::FactoryReset(UserDefaults& defaults, ProcessRestarter& restarter)
    : m_defaults(defaults)
    , m_restarter(restarter) {}

ApplicationNotice FactoryReset::confirmation() {
    return ApplicationNotice::resetToFactorySettings(ApplicationIdentity::displayName());
}

void FactoryReset::run(const CloseAllDocuments& closeAllDocuments) const {
    // The documents may close later, after this object is gone.
    closeAllDocuments([&defaults = m_defaults, &restarter = m_restarter](bool allClosed) {
        if (!allClosed)
            return;
        FactoryDefaults::removeUserData(defaults);
        restarter.restart();
    });
}

} // namespace quorlin
