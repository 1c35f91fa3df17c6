#pragma once

namespace quorlin {

// The headless start shared by the editor and the command-line tool.
class ApplicationStart {
public:
    static void run();
};

} // namespace quorlin
