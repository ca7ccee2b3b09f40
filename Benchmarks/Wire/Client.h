#pragma once

#include <Benchmarks/Support/ThisProgram.h>

#include <string>
#include <vector>

namespace flarebox::benchmarks {

/// A client of the loopback service, to be measured. Main thread.
class Client {
public:
    virtual ~Client() = default;

    /// Reports events one after the other. Returns how long each took until its completion, in seconds.
    virtual std::vector<double> reportEvents(int count) = 0;
    /// Reports events, so many of them at once. Returns when the last has completed.
    virtual void reportEventsAtOnce(int count, int inFlight) = 0;
    /// Downloads models into files of a folder, so many of them at once.
    virtual void downloadModels(int count, int inFlight, const std::string& folder) = 0;
};

}  // namespace flarebox::benchmarks
