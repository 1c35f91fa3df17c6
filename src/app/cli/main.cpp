#include "cli/CommandLineTool.h"

int main(int argc, char** argv) {
    return quorlin::cli::CommandLineTool::run(argc, argv);
}
