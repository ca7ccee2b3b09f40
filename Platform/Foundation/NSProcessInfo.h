#pragma once

#include <Foundation/Export.h>

#include <mutex>
#include <string>
#include <string_view>

namespace flarebox {

namespace detail {
template <class T>
class Immortal;
}

/// What the process knows of itself. Any thread.
class FLAREBOX_EXPORT NSProcessInfo {
public:
    /// The only one.
    static NSProcessInfo& processInfo();

    /// The application's name, which names its folders below the user's configuration and data: what the host has set,
    /// or the executable's file name.
    std::string processName() const;
    /// To be called before anything reads or writes a file of the application. False, with nothing changed, unless the
    /// name is a plain path component.
    bool setProcessName(std::string_view name);

    /// The folder that the executable lies in; empty when the system does not tell.
    static std::string executableDirectory();
    /// Where the application keeps settings: `$XDG_CONFIG_HOME` or `~/.config`, then its name. Empty without a home.
    /// Not created.
    std::string configurationDirectory() const;
    /// Where the application keeps files: `$XDG_DATA_HOME` or `~/.local/share`, then its name. Empty without a home.
    /// Not created.
    std::string dataDirectory() const;

private:
    friend class detail::Immortal<NSProcessInfo>;
    NSProcessInfo() = default;
    ~NSProcessInfo() = default;

    mutable std::mutex mutex_;
    std::string name_;
};

}  // namespace flarebox
