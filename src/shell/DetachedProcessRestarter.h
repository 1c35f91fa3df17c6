#pragma once

#include "shell/ProcessRestarter.h"

namespace quorlin {

// Starts the same executable with the same arguments, detached, then quits
// the event loop. This instance ends even when the start failed: by then its
// settings are gone, and going on would run on a half-reset state.
class DetachedProcessRestarter final : public ProcessRestarter {
public:
    void restart() override;
};

} // namespace quorlin
