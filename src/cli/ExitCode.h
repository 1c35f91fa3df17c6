#pragma once

namespace quorlin::cli {

// The exit statuses every command keeps to, so scripts can tell a finding
// from a mistake in how the tool was called.
struct ExitCode {
    static constexpr int success = 0;
    // A check ran and found problems.
    static constexpr int findings = 1;
    // The command line was wrong, or an input could not be read.
    static constexpr int usageOrInputError = 2;
};

} // namespace quorlin::cli
