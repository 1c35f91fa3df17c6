#pragma once

#include "plist/UserDefaults.h"

namespace quorlin::cli {

// The editor's settings as the tool reads them: the user's saved ones over
// the factory defaults, which the editor registers at every start. Without
// them, settings the user never changed would read as absent.
class ToolSettings {
public:
    static UserDefaults& defaults();
};

} // namespace quorlin::cli
