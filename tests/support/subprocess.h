// Processes for tests: a program with its output captured, and the running case again under another
// environment, to meet a driver without a feature or a setting that is read at load.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace nrutest {

using Environment = std::vector<std::pair<std::string, std::string>>;

struct ProcessResult {
    int exitCode = -1;  ///< 128 + signal when it was killed
    std::string output; ///< standard output and standard error together
};

/// Runs a program with arguments and additional environment variables.
ProcessResult runProgram(const std::vector<std::string>& command, const Environment& environment = {});

/// First line of a case that needs another environment: `if (ranInSubprocess({{"NAME", "value"}})) return;`.
/// In the test's own process it runs the case again with these variables, expects it to pass, and returns
/// true; in the process so started it returns false, and the case goes on.
bool ranInSubprocess(const Environment& environment);

} // namespace nrutest
