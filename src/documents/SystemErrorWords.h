#pragma once

#include <QString>

namespace quorlin {

// The reason of a failed system call as a user reads it: plain words, never
// "Unknown error", so that a script's log says what to fix.
namespace SystemErrorWords {

// Lower case, no full stop: "no space left on the device".
QString describe(int errorNumber);

} // namespace SystemErrorWords

} // namespace quorlin
