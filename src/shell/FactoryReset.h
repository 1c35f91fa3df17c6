#pragma once

#include "shell/ApplicationNotice.h"

#include <functional>

namespace quorlin {

class ProcessRestarter;
class UserDefaults;

// The way back to a fresh installation once the user confirmed it: every
// document closes, the settings and the downloaded manifests go, and the
// program starts again.
class FactoryReset {
public:
    // Closes every document and tells whether all closed (false when the
    // user kept one open).
    using CloseAllDocuments = std::function<void(std::function<void(bool allClosed)>)>;

    FactoryReset(UserDefaults& defaults, ProcessRestarter& restarter);

    // Names the program as people know it, not by its executable.
    static ApplicationNotice confirmation();
    // After a confirmation; nothing happens if a document stays open.
    void run(const CloseAllDocuments& closeAllDocuments) const;

private:
    UserDefaults& m_defaults;
    ProcessRestarter& m_restarter;
};

} // namespace quorlin
