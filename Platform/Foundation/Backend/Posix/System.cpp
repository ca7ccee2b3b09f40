#include <Foundation/BackgroundThread.h>
#include <Foundation/System.h>

#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

namespace flarebox {
namespace {

namespace fs = std::filesystem;

// A third of the weight of ordinary threads: what others wait for is late, but does not stand still.
constexpr int backgroundNiceness = 5;

/// The value of a line `NAME=value` or `NAME="value"` of the file that describes the distribution; empty when there is
/// none.
std::string distributionField(std::string_view name) {
    std::ifstream file("/etc/os-release");
    for (std::string line; std::getline(file, line);) {
        const auto equals = line.find('=');
        if (equals == std::string::npos || std::string_view(line).substr(0, equals) != name) continue;
        std::string value = line.substr(equals + 1);
        std::erase(value, '"');
        return value;
    }
    return {};
}

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// The folder that an environment variable names, or the one below the user's home. Relative settings are void.
std::string userDirectory(const char* variable, const char* belowHome) {
    const fs::path set = environment(variable);
    if (set.is_absolute()) return set.string();
    const fs::path home = environment("HOME");
    return home.is_absolute() ? (home / belowHome).string() : std::string();
}

}  // namespace

void becomeBackgroundThread() {
    // On Linux this is the thread's own.
    setpriority(PRIO_PROCESS, 0, backgroundNiceness);
}

namespace system {

Names names() {
    static const std::string distribution = distributionField("VERSION_ID");
    utsname names{};
    uname(&names);
    return {names.sysname, distribution.empty() ? names.release : distribution, names.machine};
}

bool fillWithRandomBytes(std::span<std::uint8_t> bytes) {
    return getentropy(bytes.data(), bytes.size()) == 0;
}

std::string executablePath() {
    std::error_code error;
    static const std::string path = fs::read_symlink("/proc/self/exe", error).string();
    return path;
}

std::string settingsDirectory() {
    return userDirectory("XDG_CONFIG_HOME", ".config");
}

std::string dataDirectory() {
    return userDirectory("XDG_DATA_HOME", ".local/share");
}

int makeDirectory(const std::string& path) {
    return mkdir(path.c_str(), 0700) == 0 ? 0 : errno;
}

int renameUnlessTaken(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    // A file system without the exclusive form.
    struct stat ignored;
    if (lstat(to.c_str(), &ignored) == 0) return EEXIST;
    return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

void nameThread(const char* name) {
    pthread_setname_np(pthread_self(), name);
}

int refusalOfDescriptors(int count) {
    std::vector<int> descriptors;
    int refusal = 0;
    for (int each = 0; each < count && refusal == 0; ++each) {
        const int descriptor = open("/", O_PATH | O_CLOEXEC);
        if (descriptor < 0)
            refusal = errno;
        else
            descriptors.push_back(descriptor);
    }
    for (const int descriptor : descriptors) close(descriptor);
    return refusal;
}

}  // namespace system
}  // namespace flarebox
