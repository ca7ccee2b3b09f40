#pragma once

#include <Tests/Support/TemporaryDirectory.h>

#include <string>
#include <vector>

namespace flarebox::testing {

struct GameResult {
    /// The exit status; -1 when the game was ended by a signal or took too long.
    int status = -1;
    std::string output, errors;
};

/// Runs a program to its end, without a display, in the folder. One that runs longer than `seconds` is ended, first
/// with SIGTERM.
GameResult runProgram(const TemporaryDirectory& folder, const std::string& program, std::vector<std::string> arguments,
                      double seconds = 60);
/// The sample game, headless with a virtual clock.
GameResult runGame(const TemporaryDirectory& folder, std::vector<std::string> arguments);
/// The path of a script of this folder.
std::string scriptPath(const std::string& name);

}  // namespace flarebox::testing
