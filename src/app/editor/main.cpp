#include "shell/ApplicationStart.h"

int main(int, char**) {
    quorlin::ApplicationStart::run();
    return 0;
}
