#pragma once

namespace quorlin::cli {

// Entry of quorlin-profile: parses the command line and runs one command.
class CommandLineTool {
public:
    static int run(int argc, char** argv);
};

} // namespace quorlin::cli
