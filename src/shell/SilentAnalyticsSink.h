#pragma once

#include "shell/AnalyticsSink.h"

namespace quorlin {

// The sink of this build: it keeps and sends nothing, so no event ever
// leaves the machine.
class SilentAnalyticsSink final : public AnalyticsSink {
public:
    void start(const QString&) override {}
    void trackEvent(const QString&, const Properties&) override {}
};

} // namespace quorlin
