#pragma once

#include <string>
#include <vector>

namespace flarebox::endurance {

/// What this program does in a process of its own, where the whole process is at stake.
using Arguments = std::vector<std::string>;
/// Leaves `main`, or the process, at some moment with something under way: service, seed, activity, ending,
/// milliseconds.
int leaveInTheMiddle(const Arguments& arguments);
/// Goes through a shortage and out of it again: service, name of the shortage.
int goShort(const Arguments& arguments);

/// How such a process ended.
struct Ending {
    /// As of waitpid; -1 when it had to be killed.
    int status = -1;
    /// Standard output and error.
    std::string output;
    /// From `sayThatItEnds` to the end of the process, in seconds.
    double seconds = 0;
};
Ending playPart(Arguments arguments);
/// Tells the process that waits that from now on the time counts.
void sayThatItEnds();

}  // namespace flarebox::endurance
