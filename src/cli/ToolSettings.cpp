#include "cli/ToolSettings.h"

#include "shell/FactoryDefaults.h"

namespace quorlin::cli {

UserDefaults& ToolSettings::defaults() {
    static UserDefaults& registered = []() -> UserDefaults& {
        UserDefaults& standard = UserDefaults::standard();
        standard.registerDefaults(FactoryDefaults::registeredDefaults());
        return standard;
    }();
    return registered;
}

} // namespace quorlin::cli
