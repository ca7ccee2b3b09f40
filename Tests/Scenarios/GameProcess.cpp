#include "GameProcess.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iterator>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace flarebox::testing {
namespace {

using Clock = std::chrono::steady_clock;

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// This process's variables but those that name a display or the user's folders.
std::vector<std::string> variablesFor(const std::string& home) {
    constexpr std::string_view replaced[] = {
        "HOME=", "XDG_CONFIG_HOME=", "XDG_DATA_HOME=", "DISPLAY=", "WAYLAND_DISPLAY=", "SDL_VIDEODRIVER="};
    std::vector<std::string> variables = {"HOME=" + home, "SDL_VIDEODRIVER=dummy"};
    for (char** each = environ; *each; ++each) {
        const std::string_view variable = *each;
        const bool isReplaced = std::any_of(std::begin(replaced), std::end(replaced),
                                            [&](std::string_view name) { return variable.starts_with(name); });
        if (!isReplaced) variables.emplace_back(variable);
    }
    return variables;
}

/// 0 when the program could not be started.
pid_t start(const std::string& home, std::vector<std::string> arguments) {
    std::vector<std::string> variables = variablesFor(home);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, home.c_str());
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "stdout", flags, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "stderr", flags, 0600);
    pid_t process = 0;
    const int error = posix_spawn(&process, arguments[0].c_str(), &actions, nullptr, pointersTo(arguments).data(),
                                  pointersTo(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? process : 0;
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
    const pid_t process = start(folder.path(), std::move(arguments));
    if (process == 0) return {-1, "", "cannot start " + program};
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
