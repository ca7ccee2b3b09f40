#include "NetworkTest.h"

#include <Foundation/Shutdown.h>

namespace flarebox::testing {

NSURLSessionDataTask::Completion Outcome::recorder() {
    return [this](auto& newResponse, auto& newObject, auto& newError) {
        ++calls;
        response = newResponse;
        object = newObject;
        error = newError;
    };
}

void pumpFor(double seconds) {
    pumpUntil([] { return false; }, seconds);
}

Ref<NSMutableURLRequest> get(const std::string& url) {
    return NSMutableURLRequest::requestWithURL(NSURL::URLWithString(url));
}

NetworkTest::~NetworkTest() {
    Shutdown::run();
}

Outcome NetworkTest::load(const Ref<NSURLRequest>& request) {
    Outcome outcome;
    manager_->dataTaskWithRequest(request, outcome.recorder())->resume();
    EXPECT_TRUE(pumpUntil([&] { return outcome.calls > 0; }));
    return outcome;
}

}  // namespace flarebox::testing
