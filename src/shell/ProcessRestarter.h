#pragma once

namespace quorlin {

// Starting the program afresh, as a seam: the factory reset ends with it,
// and a test must not start a second program.
class ProcessRestarter {
public:
    virtual ~ProcessRestarter() = default;
    // Starts a new instance and asks this one to end.
    virtual void restart() = 0;
};

} // namespace quorlin
