// Requests after the first one, which leave at once, on a connection and a handle that have served before.

#include "NetworkTest.h"
#include "ScriptedServer.h"

#include <Networking/Transport.h>

#include <gmock/gmock.h>

#include <atomic>
#include <ctime>
#include <future>

namespace flarebox::testing {

namespace {

using ::testing::Contains;
using ::testing::Not;
using ::testing::StartsWith;
using Connection = ScriptedServer::Connection;

class WarmConnectionTest : public NetworkTest {
protected:
    std::atomic<bool> silent_ = false;
    std::atomic<bool> clientLeft_ = false;
    /// Answers the first request, and hangs upon the second.
    ScriptedServer fallingSilent_{[this](Connection& connection) {
        if (!connection.readRequest()) return;
        connection.answerJSON("[]");
        if (!connection.readRequest()) return;
        silent_ = true;
        connection.hang();
        clientLeft_ = true;
    }};
};

/// What leaves at once where it finds a connection at rest: a request that brings something.
Ref<NSMutableURLRequest> event(const std::string& url) {
    auto request = get(url);
    request->setHTTPMethod("POST");
    request->setHTTPBody(NSData::dataWithBytes(std::string_view("{}")));
    return request;
}

double processorSeconds() {
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

}  // namespace

TEST_F(WarmConnectionTest, ATimeOutEarlierThanThoseBeforeCounts) {
    EXPECT_EQ(load(fallingSilent_.url()).code(), 0);
    auto request = event(fallingSilent_.url());
    request->setTimeoutInterval(0.2);
    EXPECT_EQ(load(request).code(), NSURLErrorTimedOut);
    EXPECT_EQ(fallingSilent_.acceptedConnections(), 1);
}

TEST_F(WarmConnectionTest, OnlyWhatBringsSomethingLeavesOnTheCallersThread) {
    ScriptedServer server(answering([](Connection& connection, auto&) { connection.answerJSON("[]"); }));
    ScriptedServer other(answering([](Connection& connection, auto&) { connection.answerJSON("[]"); }));
    EXPECT_EQ(load(server.url()).code(), 0);
    // The network thread stands still from here to there.
    std::promise<void> reached, goesOn;
    TransferRequest request;
    request.url = other.url();
    request.method = "GET";
    request.maximumBodyLength = 100;
    Transport::shared().start(request, [&](const TransferResult&) {
        reached.set_value();
        goesOn.get_future().wait();
    });
    reached.get_future().wait();
    Outcome asked, brought;
    manager_->dataTaskWithRequest(get(server.url("/asked")), asked.recorder())->resume();
    manager_->dataTaskWithRequest(event(server.url("/brought")), brought.recorder())->resume();
    EXPECT_TRUE(pumpUntil([&] { return server.requests().size() == 2; }));
    goesOn.set_value();
    EXPECT_TRUE(pumpUntil([&] { return asked.calls == 1 && brought.calls == 1; }));
    EXPECT_EQ(asked.code(), 0);
    EXPECT_EQ(brought.code(), 0);
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 3U);
    EXPECT_EQ(firstLine(requests[1]), "POST /brought HTTP/1.1");
    EXPECT_EQ(firstLine(requests[2]), "GET /asked HTTP/1.1");
}

TEST_F(WarmConnectionTest, CancellingEndsTheExchange) {
    EXPECT_EQ(load(fallingSilent_.url()).code(), 0);
    Outcome outcome;
    auto task = manager_->dataTaskWithRequest(event(fallingSilent_.url()), outcome.recorder());
    task->resume();
    EXPECT_TRUE(pumpUntil([&] { return silent_.load(); }));
    task->cancel();
    EXPECT_TRUE(pumpUntil([&] { return clientLeft_ && outcome.calls == 1; }));
    EXPECT_EQ(outcome.code(), NSURLErrorCancelled);
}

TEST_F(WarmConnectionTest, OneThatTheServerClosesWhileItRestsCostsNothing) {
    ScriptedServer server([](Connection& connection) {
        if (connection.readRequest()) connection.answerJSON("[]");
    });
    EXPECT_EQ(load(server.url()).code(), 0);
    const double before = processorSeconds();
    pumpFor(0.3);
    EXPECT_LT(processorSeconds() - before, 0.15) << "something is going round in circles";
    EXPECT_EQ(load(event(server.url())).code(), 0);
}

TEST_F(WarmConnectionTest, NothingOfARequestIsLeftForTheNext) {
    ScriptedServer server(answering([](Connection& connection, auto& request) {
        if (request.starts_with("HEAD"))
            connection.send("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n");
        else
            connection.answerJSON("[]");
    }));
    struct Case {
        const char* method;
        const char* body;
    };
    const Case cases[] = {{"HEAD", ""},    {"GET", ""},   {"PUT", "put"},   {"POST", ""},    {"GET", "odd"},
                          {"GET", ""},     {"POST", "p"}, {"DELETE", ""},   {"HEAD", ""},    {"POST", "after"},
                          {"OPTIONS", ""}, {"GET", ""},   {"PATCH", "new"}, {"DELETE", "d"}, {"GET", ""}};
    for (const auto& [method, body] : cases) {
        auto request = get(server.url());
        request->setHTTPMethod(method);
        if (*body) request->setHTTPBody(NSData::dataWithBytes(std::string_view(body)));
        EXPECT_EQ(load(request).code(), 0) << method << ' ' << body;
    }
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), std::size(cases));
    for (std::size_t index = 0; index < requests.size(); ++index) {
        EXPECT_EQ(firstLine(requests[index]), cases[index].method + std::string(" / HTTP/1.1"));
        EXPECT_EQ(bodyOf(requests[index]), cases[index].body) << index;
        EXPECT_THAT(headerLines(requests[index]), Not(Contains(StartsWith("Content-Type"))));
    }
    EXPECT_EQ(server.acceptedConnections(), 1);
}

TEST_F(WarmConnectionTest, PasswordsStayWithTheRequestThatHasThem) {
    ScriptedServer server(answering([](Connection& connection, auto&) { connection.answerJSON("[]"); }));
    const std::string address = server.url();
    EXPECT_EQ(load(address).code(), 0);
    EXPECT_EQ(load("http://user:word@" + address.substr(7)).code(), 0);
    EXPECT_EQ(load(address).code(), 0);
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_THAT(headerLines(requests[1]), Contains(StartsWith("Authorization: Basic")));
    EXPECT_THAT(headerLines(requests[2]), Not(Contains(StartsWith("Authorization"))));
}

}  // namespace flarebox::testing
