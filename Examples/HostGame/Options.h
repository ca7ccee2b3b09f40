#pragma once

#include <UIKit/Geometry.h>
#include <UIKit/UIPress.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox::hostgame {

/// What the command line asks for.
struct Options {
    bool showsHelp = false;
    bool isHeadless = false;
    CGSize size{960, 540};
    double scale = 2;
    /// None: the embedded service.
    std::optional<std::string> apiURL;
    std::optional<std::string> documents, defaults;
    /// None stands for null.
    std::optional<std::string> gameUID = "5f0c9a3e-7d41-4b8a-9a2f-c06d1e8b7f25";
    std::optional<std::string> gameVersion = "1.4.2";
    bool hasSession = true;
    std::uint64_t logLevel = 2;
    bool logs = true;
    std::optional<std::int32_t> refresh;
    std::optional<std::int64_t> network;
    std::optional<bool> isTrackingEnabled;
    std::optional<std::string> advertisingIdentifier;
    bool hasVirtualClock = false;
    bool watchesFiles = false, inspects = false, showsFrameTimes = false;
    std::vector<std::string> schemes;
    std::optional<std::string> theme, screenshot, script, record;
};

struct ParsedOptions {
    Options options;
    /// What is wrong, in one line; empty when nothing is.
    std::string error;
};

/// The arguments without the program's name.
ParsedOptions parseOptions(std::span<char* const> arguments);
std::string helpText();

// Values that options and scripts have in common; none when the text is no such value.
/// "667x375", each side 1 to 16384.
std::optional<CGSize> parseSize(std::string_view text);
std::optional<double> parseNumber(std::string_view text);
std::optional<std::int64_t> parseInteger(std::string_view text);
std::optional<bool> parseSwitch(std::string_view text);
/// "unknown", "none", "cellular" or "wifi" as the platform's number.
std::optional<std::int64_t> parseNetworkStatus(std::string_view text);
/// "up", "down", "left", "right", "select", "menu", "playpause", "pageup" or "pagedown".
std::optional<UIPressType> parsePress(std::string_view text);
/// Empty for none of these.
std::string_view nameOf(UIPressType press);

}  // namespace flarebox::hostgame
