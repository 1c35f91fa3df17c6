#include "cli/CommandLineTool.h"

#include "shell/ApplicationStart.h"

namespace quorlin::cli {

int CommandLineTool::run(int, char**) {
    ApplicationStart::run();
    return 0;
}

} // namespace quorlin::cli
