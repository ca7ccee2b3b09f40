#include <Tests/Endurance/Parts.h>
#include <Tests/Support/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <thread>

namespace flarebox::endurance {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view farewell = "ends at ";
constexpr auto patience = std::chrono::seconds(110);

std::vector<char*> pointersTo(Arguments& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

pid_t start(Arguments arguments, const std::string& output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    pid_t process = 0;
    const int error = posix_spawn(&process, "/proc/self/exe", &actions, nullptr, pointersTo(arguments).data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? process : 0;
}

/// The moment that the process told, if it did.
double momentIn(std::string_view output) {
    const auto at = output.rfind(farewell);
    double moment = 0;
    if (at != std::string_view::npos)
        std::from_chars(output.data() + at + farewell.size(), output.data() + output.size(), moment);
    return moment;
}

double now() {
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

}  // namespace

void sayThatItEnds() {
    std::fprintf(stderr, "%s%.6f\n", std::string(farewell).c_str(), now());
}

Ending playPart(Arguments arguments) {
    const testing::TemporaryDirectory folder;
    arguments.insert(arguments.begin(), {"EnduranceTests", "--play"});
    Ending ending;
    const pid_t process = start(std::move(arguments), folder.path("output"));
    if (process == 0) return ending;
    const auto deadline = Clock::now() + patience;
    while (::waitpid(process, &ending.status, WNOHANG) == 0) {
        if (Clock::now() > deadline) {
            ::kill(process, SIGKILL);
            ::waitpid(process, nullptr, 0);
            ending.status = -1;
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const double ended = now();
    ending.output = folder.read("output");
    if (const double moment = momentIn(ending.output); moment > 0) ending.seconds = ended - moment;
    return ending;
}

}  // namespace flarebox::endurance

int main(int argc, char** argv) {
    using namespace flarebox::endurance;
    if (argc > 2 && std::strcmp(argv[1], "--play") == 0) {
        const Arguments arguments(argv + 3, argv + argc);
        return std::strcmp(argv[2], "leave") == 0 ? leaveInTheMiddle(arguments) : goShort(arguments);
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
