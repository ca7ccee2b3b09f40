#include "GameProcess.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace flarebox::testing {
namespace {

using Clock = std::chrono::steady_clock;

void sendOutputTo(const std::string& path, int descriptor) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(file, descriptor);
}

constexpr auto patience = std::chrono::minutes(2);

/// Whether the process ended by itself, or on being asked.
bool waitFor(pid_t process, int& status, const std::function<bool(int)>& isEnough) {
    const auto deadline = Clock::now() + patience;
    bool isAsked = false;
    while (::waitpid(process, &status, WNOHANG) == 0) {
        if (Clock::now() > deadline) return false;
        if (!isAsked && isEnough && isEnough(process)) isAsked = ::kill(process, SIGTERM) == 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace

bool handlesTermination(int process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("SigCgt:")) return std::stoull(line.substr(7), nullptr, 16) >> (SIGTERM - 1) & 1;
    }
    return false;
}

GameResult runProgram(const TemporaryDirectory& folder, const std::string& program, std::vector<std::string> arguments,
                      const std::function<bool(int)>& isEnough) {
    arguments.insert(arguments.begin(), program);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    const std::string home = folder.path(), output = home + "/stdout", errors = home + "/stderr";

    const pid_t process = ::fork();
    if (process == 0) {
        ::setenv("HOME", home.c_str(), 1);
        ::unsetenv("XDG_CONFIG_HOME");
        ::unsetenv("XDG_DATA_HOME");
        ::unsetenv("DISPLAY");
        ::unsetenv("WAYLAND_DISPLAY");
        ::setenv("SDL_VIDEODRIVER", "dummy", 1);
        if (::chdir(home.c_str()) != 0) ::_exit(126);
        sendOutputTo(output, STDOUT_FILENO);
        sendOutputTo(errors, STDERR_FILENO);
        ::execv(program.c_str(), pointers.data());
        ::_exit(127);
    }
    int status = 0;
    const bool isOver = waitFor(process, status, isEnough);
    if (!isOver) {
        ::kill(process, SIGKILL);
        ::waitpid(process, &status, 0);
    }
    return {isOver && WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.read("stdout"), folder.read("stderr")};
}

GameResult runGame(const TemporaryDirectory& folder, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--headless", "--clock", "virtual"});
    return runProgram(folder, FLAREBOX_HOSTGAME, std::move(arguments));
}

std::string scriptPath(const std::string& name) {
    return std::string(FLAREBOX_SCRIPTS) + "/" + name;
}

}  // namespace flarebox::testing
