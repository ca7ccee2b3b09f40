#include <Examples/Service/Service.h>

#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

using flarebox::examples::Service;

namespace {

constexpr int defaultPort = 8080;
constexpr const char* usage = "Usage: flarebox-service [--port N] [--host ADDRESS]\n";

std::optional<int> portFromText(std::string_view text) {
    int port = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    bool whole = error == std::errc() && end == text.data() + text.size();
    if (!whole || port < 0 || port > 65535) return std::nullopt;
    return port;
}

std::optional<Service::Options> optionsFromArguments(int count, char** arguments) {
    Service::Options options;
    options.port = defaultPort;
    for (int index = 1; index < count; index += 2) {
        std::string_view name = arguments[index];
        if (index + 1 == count) return std::nullopt;
        if (name == "--port") {
            auto port = portFromText(arguments[index + 1]);
            if (!port) return std::nullopt;
            options.port = *port;
        } else if (name == "--host") {
            options.host = arguments[index + 1];
        } else {
            return std::nullopt;
        }
    }
    return options;
}

}  // namespace

int main(int count, char** arguments) {
    if (count == 2 && std::strcmp(arguments[1], "--help") == 0) {
        std::fputs(usage, stdout);
        return 0;
    }
    auto options = optionsFromArguments(count, arguments);
    if (!options) {
        std::fputs(usage, stderr);
        return 2;
    }

    // Blocked before any thread exists, so that only the wait below sees them.
    sigset_t endings;
    sigemptyset(&endings);
    sigaddset(&endings, SIGINT);
    sigaddset(&endings, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &endings, nullptr);

    Service service;
    if (!service.start(*options)) {
        std::fprintf(stderr, "Cannot listen on %s:%d\n", options->host.c_str(), options->port);
        return 1;
    }
    std::printf("%s\n", service.baseURL().c_str());
    std::fflush(stdout);

    int signal = 0;
    sigwait(&endings, &signal);
    service.stop();
    return 0;
}
