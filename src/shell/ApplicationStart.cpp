#include "shell/ApplicationStart.h"

namespace quorlin {

void ApplicationStart::run() {}

} // namespace quorlin
