#include <Foundation/Backend/Windows/WideText.h>
#include <Foundation/BackgroundThread.h>
#include <Foundation/System.h>

#include <ntsecapi.h>
#include <processthreadsapi.h>

#include <array>
#include <cstdlib>

namespace flarebox {
namespace {

std::string environment(const wchar_t* name) {
    const wchar_t* value = _wgetenv(name);
    return value ? windows::narrow(value) : std::string();
}

}  // namespace

void becomeBackgroundThread() {
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
}

namespace system {

Names names() {
    SYSTEM_INFO info{};
    GetNativeSystemInfo(&info);
    const char* machine = "unknown";
    if (info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64) machine = "x86_64";
    if (info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_INTEL) machine = "i686";
    if (info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_ARM64) machine = "aarch64";
    // The number that a program without a manifest is told stays at 6.2: it is what the system says of itself.
    const DWORD version = GetVersion();
    return {"Windows", std::to_string(LOBYTE(LOWORD(version))) + "." + std::to_string(HIBYTE(LOWORD(version))),
            machine};
}

bool fillWithRandomBytes(std::span<std::uint8_t> bytes) {
    return RtlGenRandom(bytes.data(), static_cast<ULONG>(bytes.size())) != FALSE;
}

std::string executablePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return windows::narrow({path.data(), length});
        path.resize(path.size() * 2);
    }
}

std::string settingsDirectory() {
    return environment(L"APPDATA");
}

std::string dataDirectory() {
    return environment(L"LOCALAPPDATA");
}

int makeDirectory(const std::string& path) {
    // Below the user's own folders only the user may enter: rights are inherited.
    return CreateDirectoryW(windows::wide(path).c_str(), nullptr) ? 0 : windows::lastError();
}

int renameUnlessTaken(const std::string& from, const std::string& to) {
    return MoveFileExW(windows::wide(from).c_str(), windows::wide(to).c_str(), 0) ? 0 : windows::lastError();
}

void nameThread(const char* name) {
    using SetThreadDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    // Windows 10 has it, older ones do without names.
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription");
    if (!found) return;
    const auto describe = reinterpret_cast<SetThreadDescription>(reinterpret_cast<void*>(found));
    describe(GetCurrentThread(), windows::wide(name).c_str());
}

int refusalOfDescriptors(int) {
    // Handles are limited by memory alone.
    return 0;
}

}  // namespace system
}  // namespace flarebox
