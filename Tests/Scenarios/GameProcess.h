#pragma once

#include <Tests/Support/TemporaryDirectory.h>

#include <functional>
#include <string>
#include <vector>

namespace flarebox::testing {

struct GameResult {
    /// The exit status; -1 when the program was ended by a signal or took minutes.
    int status = -1;
    std::string output, errors;
};

/// Runs a program to its end, without a display, in the folder. When `isEnough` (may be null) holds it is asked to end,
/// with SIGTERM.
GameResult runProgram(const TemporaryDirectory& folder, const std::string& program, std::vector<std::string> arguments,
                      const std::function<bool(int process)>& isEnough = nullptr);
/// Whether the process handles SIGTERM by now.
bool handlesTermination(int process);
/// The sample game, headless with a virtual clock.
GameResult runGame(const TemporaryDirectory& folder, std::vector<std::string> arguments);
/// The path of a script of this folder.
std::string scriptPath(const std::string& name);

}  // namespace flarebox::testing
