#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace flarebox::fuzz {

/// Answers every request on the loopback interface with whatever bytes it is given, closing the connection afterwards.
/// One for the process: it also stands in for every other host, as the proxy that the environment names.
class LoopbackServer {
public:
    /// Made by the first call, with settings and folders of the process moved to a temporary directory.
    static LoopbackServer& shared();

    /// "http://127.0.0.1:PORT".
    std::string url() const { return "http://127.0.0.1:" + std::to_string(port_); }
    /// From now on requests, given by their head, are answered so; runs on the server's thread. What is not answered is
    /// cut off.
    void setAnswer(std::function<std::string(std::string_view head)> answer);

private:
    LoopbackServer();
    ~LoopbackServer();
    void serve(const std::stop_token& stop);
    std::string answerTo(std::string_view head);

    int listener_ = -1, port_ = 0;
    std::mutex mutex_;
    std::function<std::string(std::string_view)> answer_;
    std::jthread thread_;
};

/// An answer with that status and body.
std::string httpAnswer(int status, std::string_view body, std::string_view type = "application/json");

}  // namespace flarebox::fuzz
