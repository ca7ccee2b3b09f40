#pragma once

#include <cstdint>
#include <span>
#include <string>

/// What the kit asks of an operating system, besides the contents of files. Each system has its own answers in a folder
/// of `Backend/`. Any thread.
namespace flarebox::system {

struct Names {
    /// "Linux", "Windows".
    std::string system;
    /// Of the distribution where it has one, otherwise of the system.
    std::string version;
    /// Of the processor, "x86_64".
    std::string machine;
};
Names names();

/// Fills them with numbers that nobody can guess. False when the system has none.
bool fillWithRandomBytes(std::span<std::uint8_t> bytes);

/// The path of the running program; empty when the system does not say.
std::string executablePath();
/// Where the user's programs keep their settings, and their data: a folder for each program is made below. Empty for a
/// user without a home.
std::string settingsDirectory();
std::string dataDirectory();

/// Makes a folder that only the user may enter; its parent is there. 0, or the number of the error.
int makeDirectory(const std::string& path);
/// Renames within one file system, at once or not at all, and never over something that is there: EEXIST. 0, or the
/// number of the error.
int renameUnlessTaken(const std::string& from, const std::string& to);

/// Names the calling thread for debuggers, with at most 15 bytes.
void nameThread(const char* name);
/// The number of the error with which the system refuses to open so many more files at once; 0 when it does not.
int refusalOfDescriptors(int count);

}  // namespace flarebox::system
