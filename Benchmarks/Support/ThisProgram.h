#pragma once

#include <string>

namespace flarebox::benchmarks {

/// Ends the process with a message unless the condition holds: a figure from a run that failed would be a lie.
void require(bool condition, const char* message);

/// Runs this program once more, in a process of its own, and returns what that wrote to its standard output. A run that
/// fails ends this process, too. `arguments` are those of a shell.
std::string outputOfThisProgram(const std::string& arguments);

}  // namespace flarebox::benchmarks
