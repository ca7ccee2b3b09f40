#pragma once

#include <Foundation/NSError.h>
#include <Networking/AFURLSessionManager.h>
#include <Tests/Support/Pump.h>

#include <gtest/gtest.h>

#include <string>

namespace flarebox::testing {

/// What a task reported.
struct Outcome {
    int calls = 0;
    Ref<NSHTTPURLResponse> response;
    Value object;
    Ref<NSError> error;

    /// 0 without an error.
    int code() const { return error ? error->code() : 0; }
    NSURLSessionDataTask::Completion recorder();
};

/// Runs the main queue for that long.
void pumpFor(double seconds);

Ref<NSMutableURLRequest> get(const std::string& url);

/// Every test starts without threads and connections and leaves none.
class NetworkTest : public ::testing::Test {
protected:
    ~NetworkTest() override;

    /// Loads and waits for the outcome.
    Outcome load(const Ref<NSURLRequest>& request);
    Outcome load(const std::string& url) { return load(get(url)); }

    Ref<AFURLSessionManager> manager_ = AFURLSessionManager::manager();
};

}  // namespace flarebox::testing
