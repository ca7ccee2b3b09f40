// Cancelling, ending and beginning again, with servers that never answer.

#include "NetworkTest.h"
#include "ScriptedServer.h"

#include <Foundation/Clock.h>
#include <Foundation/MainQueue.h>
#include <Foundation/Shutdown.h>

#include <dlfcn.h>
#include <netdb.h>

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <optional>

namespace flarebox::testing {

namespace {

using Connection = ScriptedServer::Connection;

/// A name server that does not answer, for names below "hangs.test".
class HangingNameServer {
public:
    static HangingNameServer& shared() {
        static HangingNameServer server;
        return server;
    }
    void wait() {
        std::unique_lock lock(mutex_);
        ++waiting_;
        changed_.notify_all();
        changed_.wait(lock, [this] { return released_; });
        --waiting_;
        changed_.notify_all();
    }
    int waiting() {
        std::lock_guard lock(mutex_);
        return waiting_;
    }
    void release() {
        std::unique_lock lock(mutex_);
        released_ = true;
        changed_.notify_all();
        changed_.wait(lock, [this] { return waiting_ == 0; });
        released_ = false;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int waiting_ = 0;
    bool released_ = false;
};

}  // namespace

}  // namespace flarebox::testing

// Stands before the C library's: tests ask no real name server, and one of its faults has to be staged.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** result) {
    using Function = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    const std::string_view host = name ? name : "";
    if (host.ends_with("hangs.test")) {
        flarebox::testing::HangingNameServer::shared().wait();
        return EAI_AGAIN;
    }
    if (host.ends_with(".test")) return EAI_NONAME;
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return real(name, service, hints, result);
}

namespace flarebox::testing {

namespace {

class LifetimeTest : public NetworkTest {
protected:
    ~LifetimeTest() override {
        Shutdown::run();
        HangingNameServer::shared().release();
    }

    Ref<NSURLSessionDataTask> start(const std::string& url, Outcome& outcome, double timeout = 0) {
        auto request = get(url);
        request->setTimeoutInterval(timeout);
        auto task = manager_->dataTaskWithRequest(request, outcome.recorder());
        task->resume();
        return task;
    }
};

/// Threads of this process.
std::size_t threadCount() {
    using Iterator = std::filesystem::directory_iterator;
    return static_cast<std::size_t>(std::distance(Iterator("/proc/self/task"), Iterator()));
}

}  // namespace

TEST_F(LifetimeTest, ATaskRunsOnceAndNeedsNobody) {
    ScriptedServer server(answering([](Connection& connection, auto&) { connection.answerJSON("[1]"); }));
    Outcome outcome;
    auto task = manager_->dataTaskWithRequest(get(server.url()), outcome.recorder());
    EXPECT_EQ(task->state(), NSURLSessionTaskStateSuspended);
    EXPECT_TRUE(MainQueue::shared().isIdle());
    task->resume();
    task->resume();
    EXPECT_EQ(task->state(), NSURLSessionTaskStateRunning);
    manager_ = nullptr;
    Weak<NSURLSessionDataTask> weak = task;
    task = nullptr;
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_EQ(outcome.calls, 1);
    EXPECT_EQ(outcome.object, Value(NSArray{1}));
    EXPECT_FALSE(weak);
    EXPECT_EQ(server.requests().size(), 1u);
}

TEST_F(LifetimeTest, ACopyOfTheRequestIsSent) {
    ScriptedServer server(answering([](Connection& connection, auto&) { connection.answerJSON("[]"); }));
    auto request = get(server.url("/first"));
    Outcome outcome;
    auto task = manager_->dataTaskWithRequest(request, outcome.recorder());
    request->setURL(NSURL::URLWithString(server.url("/second")));
    task->resume();
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_EQ(firstLine(server.requests().at(0)), "GET /first HTTP/1.1");
}

TEST_F(LifetimeTest, ATaskMayBeStartedAndCancelledFromAnyThread) {
    ScriptedServer server([](Connection& connection) { connection.hang(); });
    Outcome outcome;
    auto task = manager_->dataTaskWithRequest(get(server.url()), outcome.recorder());
    pumpFor(0);
    std::thread([&] { task->resume(); }).join();
    EXPECT_TRUE(pumpUntil([&] { return task->state() == NSURLSessionTaskStateRunning; }));
    std::thread([&] { task->cancel(); }).join();
    EXPECT_TRUE(pumpUntil([&] { return outcome.calls == 1; }));
    EXPECT_EQ(outcome.code(), NSURLErrorCancelled);
}

TEST_F(LifetimeTest, CancellingGivesOneErrorWheneverItHappens) {
    ScriptedServer server(answering([](Connection& connection, const std::string& request) {
        if (firstLine(request).find("/hang") != std::string::npos)
            connection.hang();
        else
            connection.answerJSON("[]");
    }));
    Outcome unstarted, hanging, answered, completed;
    manager_->dataTaskWithRequest(get(server.url("/")), unstarted.recorder())->cancel();

    auto task = start(server.url("/hang"), hanging);
    EXPECT_TRUE(pumpUntil([&] { return server.requests().size() == 1; }));
    task->cancel();
    task->cancel();
    EXPECT_EQ(task->state(), NSURLSessionTaskStateCanceling);
    EXPECT_EQ(hanging.calls, 0);

    EXPECT_TRUE(pumpUntilIdle());

    // Its answer is already waiting on the main queue.
    task = start(server.url("/"), answered);
    while (!MainQueue::shared().hasDueWork()) std::this_thread::yield();
    task->cancel();
    EXPECT_TRUE(pumpUntilIdle());
    for (auto* outcome : {&unstarted, &hanging, &answered}) {
        EXPECT_EQ(outcome->calls, 1);
        EXPECT_EQ(outcome->code(), NSURLErrorCancelled);
        EXPECT_FALSE(outcome->response);
    }

    task = start(server.url("/"), completed);
    EXPECT_TRUE(pumpUntilIdle());
    task->cancel();
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_EQ(completed.calls, 1);
    EXPECT_EQ(completed.code(), 0);
    EXPECT_EQ(task->state(), NSURLSessionTaskStateCompleted);
}

TEST_F(LifetimeTest, ShutdownIsQuickAndFinal) {
    ScriptedServer silent([](Connection& connection) { connection.hang(); });
    ScriptedServer stalling([](Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 9\r\n\r\n[");
        connection.hang();
    });
    ScriptedServer good(answering([](Connection& connection, auto&) { connection.answerJSON("[1]"); }));
    const std::size_t threads = threadCount();

    auto& names = HangingNameServer::shared();

    // The best of several times: one may be spoilt by whatever else the machine is doing.
    double seconds = 1;
    for (int attempt = 0; attempt < 5 && seconds >= 0.2; ++attempt) {
        Outcome outcome;
        auto captured = make<NSURLRequest>(NSURL());
        Weak<NSURLRequest> kept = captured;
        const int connectionsBefore = silent.acceptedConnections();
        const std::size_t requestsBefore = stalling.requests().size();
        for (int count = 0; count < 20; ++count) {
            for (auto* server : {&silent, &stalling, &good}) start(server->url(), outcome);
            start("http://hangs.test/", outcome);
        }
        manager_->dataTaskWithRequest(get(silent.url()), [captured](auto&, auto&, auto&) {})->resume();
        captured = nullptr;
        auto allHang = [&] {
            return silent.acceptedConnections() > connectionsBefore && stalling.requests().size() > requestsBefore &&
                   names.waiting() > 0;
        };
        while (!allHang()) std::this_thread::yield();

        const double start = Clock::real().uptime();
        Shutdown::run();
        seconds = std::min(seconds, Clock::real().uptime() - start);
        EXPECT_FALSE(kept);
        pumpFor(0.1);
        EXPECT_EQ(outcome.calls, 0);
        EXPECT_TRUE(MainQueue::shared().isIdle());
        names.release();
        EXPECT_TRUE(pumpUntil([&] { return threadCount() <= threads; })) << "a thread is left behind";
    }
    EXPECT_LT(seconds, 0.2);

    EXPECT_EQ(load(good.url()).object, Value(NSArray{1}));
    Shutdown::run();
    Shutdown::run();
}

TEST_F(LifetimeTest, NamesThatAreNotFoundOrNotAnswered) {
    EXPECT_EQ(load("http://unknown.test/").code(), NSURLErrorCannotFindHost);

    auto& names = HangingNameServer::shared();
    Outcome timedOut, cancelled;
    start("http://one.hangs.test/", timedOut, 0.2);
    auto task = start("http://two.hangs.test/", cancelled);
    EXPECT_TRUE(pumpUntil([&] { return names.waiting() == 2; }));
    task->cancel();
    EXPECT_TRUE(pumpUntil([&] { return timedOut.calls && cancelled.calls; }));
    EXPECT_EQ(timedOut.code(), NSURLErrorTimedOut);
    EXPECT_EQ(cancelled.code(), NSURLErrorCancelled);

    // The network thread is not held up by them.
    ScriptedServer server(answering([](Connection& connection, auto&) { connection.answerJSON("[1]"); }));
    EXPECT_EQ(load(server.url()).code(), 0);
    EXPECT_EQ(names.waiting(), 2);
}

}  // namespace flarebox::testing
