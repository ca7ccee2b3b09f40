// Answers that go to files.

#include "NetworkTest.h"
#include "ScriptedServer.h"

#include <Foundation/NSFileManager.h>
#include <Foundation/Shutdown.h>
#include <Tests/Support/TemporaryDirectory.h>

#include <gmock/gmock.h>

#include <atomic>

namespace flarebox::testing {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Connection = ScriptedServer::Connection;

class DownloadTest : public NetworkTest {
protected:
    Ref<NSURLSessionDataTask> start(const std::string& url, const std::string& name, Outcome& outcome) {
        auto task = manager_->downloadTaskWithRequest(
            get(url), [this, name] { return folder_.path(name); }, outcome.recorder());
        task->resume();
        return task;
    }
    Outcome download(const std::string& url, const std::string& name) {
        Outcome outcome;
        start(url, name, outcome);
        EXPECT_TRUE(pumpUntil([&] { return outcome.calls == 1; }));
        return outcome;
    }
    std::vector<std::string> files() const {
        return NSFileManager::defaultManager().contentsOfDirectoryAtPath(folder_.path());
    }

    const std::string content_ = std::string(3 << 20, 'm');
    std::atomic<bool> held_ = false;
    std::atomic<int> halves_ = 0;
    ScriptedServer server_{answering([this](Connection& connection, const std::string& request) {
        const std::string line = firstLine(request);
        const auto asks = [&](const char* path) { return line.find(path) != std::string::npos; };
        if (asks("/missing")) {
            connection.answer("404 Not Found", "", content_);
        } else if (asks("/huge")) {
            connection.send("HTTP/1.1 200 OK\r\nContent-Length: 300000000\r\n\r\n");
            connection.send(content_);
        } else if (asks("/moved")) {
            connection.answer("302 Found", "Location: /model\r\n", "elsewhere");
        } else {
            connection.send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(content_.size()) + "\r\n\r\n");
            connection.send(content_.substr(0, content_.size() / 2));
            ++halves_;
            while (held_ && connection.pause(0.002)) {
            }
            if (!asks("/cut")) connection.send(content_.substr(content_.size() / 2));
        }
        if (asks("/cut") || asks("/huge")) connection.pause(0.01);
    })};
    TemporaryDirectory folder_;
};

TEST_F(DownloadTest, AFileAppearsOnceItIsWhole) {
    held_ = true;
    Outcome first, second;
    start(server_.url("/model"), "asset", first);
    start(server_.url("/model"), "asset", second);
    ASSERT_TRUE(pumpUntil([&] { return halves_ == 2; }));
    EXPECT_THAT(files(), IsEmpty());
    held_ = false;
    ASSERT_TRUE(pumpUntil([&] { return first.calls == 1 && second.calls == 1; }));
    for (const Outcome* outcome : {&first, &second}) {
        EXPECT_EQ(outcome->code(), 0);
        EXPECT_EQ(outcome->object, Value(folder_.path("asset")));
        ASSERT_TRUE(outcome->response);
        EXPECT_EQ(outcome->response->statusCode(), 200);
    }
    EXPECT_THAT(files(), ElementsAre("asset"));
    EXPECT_EQ(folder_.read("asset"), content_);
    folder_.write("other", "old");
    EXPECT_EQ(download(server_.url("/moved"), "other").code(), 0);
    EXPECT_EQ(folder_.read("other"), content_);
}

TEST_F(DownloadTest, WhatFailsLeavesNoFileAndNoOtherInItsPlace) {
    folder_.write("kept", "old");
    const std::tuple<std::string, std::string, int> cases[] = {
        {"/missing", "kept", NSURLErrorBadServerResponse},
        {"/huge", "kept", NSURLErrorDataLengthExceedsMaximum},
        {"/model", "no/such/folder", NSURLErrorCannotCreateFile},
        {"/model", "", NSURLErrorCannotMoveFile},
    };
    for (const auto& [path, name, code] : cases) {
        const Outcome outcome = download(server_.url(path), name);
        EXPECT_EQ(outcome.code(), code) << path << " to '" << name << "'";
        EXPECT_FALSE(outcome.object);
        EXPECT_THAT(files(), ElementsAre("kept"));
    }
    EXPECT_EQ(folder_.read("kept"), "old");
}

TEST_F(DownloadTest, SlowOnesHoldUpNobodyElse) {
    held_ = true;
    std::vector<Outcome> slow(20);
    for (std::size_t i = 0; i < slow.size(); ++i) start(server_.url("/model"), "asset" + std::to_string(i), slow[i]);
    ASSERT_TRUE(pumpUntil([&] { return halves_ == 20; })) << "all of them at once";
    Outcome coupon;
    manager_->dataTaskWithRequest(get(server_.url("/missing")), coupon.recorder())->resume();
    EXPECT_TRUE(pumpUntil([&] { return coupon.calls == 1; }));
    held_ = false;
    for (const Outcome& outcome : slow) EXPECT_TRUE(pumpUntil([&] { return outcome.calls == 1; }));
    EXPECT_EQ(files().size(), slow.size());
}

TEST_F(DownloadTest, EndsWithItsConnectionItsTaskOrTheProcess) {
    held_ = true;
    Outcome cut, cancelled, dropped;
    {
        ScriptedServer dying([this](Connection& connection) {
            connection.readRequest();
            connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
            while (held_ && connection.pause(0.002)) {
            }
        });
        start(dying.url("/model"), "cut", cut);
        auto task = start(server_.url("/model"), "cancelled", cancelled);
        start(server_.url("/model"), "dropped", dropped);
        ASSERT_TRUE(pumpUntil([&] { return halves_ == 2; }));
        task->cancel();
        ASSERT_TRUE(pumpUntil([&] { return cancelled.calls == 1; }));
    }
    ASSERT_TRUE(pumpUntil([&] { return cut.calls == 1; }));
    EXPECT_EQ(cut.code(), NSURLErrorNetworkConnectionLost);
    EXPECT_EQ(cancelled.code(), NSURLErrorCancelled);
    Shutdown::run();
    EXPECT_EQ(dropped.calls, 0);
    EXPECT_THAT(files(), IsEmpty());
    held_ = false;
}

}  // namespace

}  // namespace flarebox::testing
