#include "Options.h"

#include <Foundation/NSUUID.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace flarebox::hostgame {
namespace {

struct OptionKind {
    std::string_view name;
    /// Empty for an option that stands alone.
    std::string_view value;
    std::string_view help;
    /// False when the value is wrong.
    bool (*apply)(Options& options, std::string_view value);
};

template <class T>
bool store(std::optional<T> value, T& target) {
    if (value) target = *value;
    return value.has_value();
}

template <class T>
bool storeOptional(std::optional<T> value, std::optional<T>& target) {
    if (value) target = value;
    return value.has_value();
}

bool storeText(std::string_view value, std::optional<std::string>& target) {
    if (!value.empty()) target = value;
    return !value.empty();
}

bool storeNullable(std::string_view value, std::optional<std::string>& target) {
    if (value.empty())
        target.reset();
    else
        target = value;
    return true;
}

bool storeScale(Options& options, std::string_view text) {
    const auto scale = parseNumber(text);
    if (!scale || *scale < 0.25 || *scale > 8) return false;
    options.scale = *scale;
    return true;
}

bool storeLogLevel(Options& options, std::string_view text) {
    const auto level = parseInteger(text);
    if (!level || *level < 0) return false;
    options.logLevel = static_cast<std::uint64_t>(*level);
    return true;
}

bool storeRefresh(Options& options, std::string_view text) {
    const auto seconds = parseInteger(text);
    using Limits = std::numeric_limits<std::int32_t>;
    if (!seconds || *seconds < Limits::min() || *seconds > Limits::max()) return false;
    options.refresh = static_cast<std::int32_t>(*seconds);
    return true;
}

bool storeIdentifier(Options& options, std::string_view text) {
    if (!NSUUID::UUIDWithString(text)) return false;
    options.advertisingIdentifier = text;
    return true;
}

bool storeClock(Options& options, std::string_view text) {
    options.hasVirtualClock = text == "virtual";
    return text == "virtual" || text == "real";
}

bool storeScheme(Options& options, std::string_view text) {
    if (text.empty() || text.find(':') != text.npos) return false;
    options.schemes.emplace_back(text);
    return true;
}

using Text = std::string_view;
constexpr OptionKind optionKinds[] = {
    {"--headless", "", "no display: the picture is made in memory, links are recorded and not opened",
     [](Options& o, Text) { return o.isHeadless = true; }},
    {"--size", "WxH", "screen in points (960x540)", [](Options& o, Text v) { return store(parseSize(v), o.size); }},
    {"--scale", "S", "pixels per point, headless (2)", storeScale},
    {"--api-url", "URL", "service to talk to (one of its own on a free port)",
     [](Options& o, Text v) { return storeText(v, o.apiURL); }},
    {"--documents", "DIR", "the application's documents directory",
     [](Options& o, Text v) { return storeText(v, o.documents); }},
    {"--defaults", "FILE", "the application's user defaults",
     [](Options& o, Text v) { return storeText(v, o.defaults); }},
    {"--game-uid", "X", "the game's identifier; empty for null",
     [](Options& o, Text v) { return storeNullable(v, o.gameUID); }},
    {"--game-version", "X", "the game's version; empty for null",
     [](Options& o, Text v) { return storeNullable(v, o.gameVersion); }},
    {"--no-session", "", "no user session", [](Options& o, Text) { return !(o.hasSession = false); }},
    {"--log-level", "N", "1 everything, 2 warnings and errors, 3 errors (2)", storeLogLevel},
    {"--no-logging", "", "no log at all", [](Options& o, Text) { return !(o.logs = false); }},
    {"--refresh", "SECONDS", "period of refreshing the assets", storeRefresh},
    {"--network", "unknown|none|cellular|wifi", "network status instead of the machine's own",
     [](Options& o, Text v) { return storeOptional(parseNetworkStatus(v), o.network); }},
    {"--tracking", "on|off", "whether advertising tracking is allowed",
     [](Options& o, Text v) { return storeOptional(parseSwitch(v), o.isTrackingEnabled); }},
    {"--advertising-id", "UUID", "advertising identifier instead of a random one", storeIdentifier},
    {"--clock", "real|virtual", "virtual: time passes only while a script waits, swipes or drags (real)", storeClock},
    {"--can-open", "SCHEME", "links of this scheme can be opened, headless; may be repeated", storeScheme},
    {"--theme", "FILE", "look of a brand instead of the kit's own",
     [](Options& o, Text v) { return storeText(v, o.theme); }},
    {"--watch", "", "follow changes of the layout files and the theme",
     [](Options& o, Text) { return o.watchesFiles = true; }},
    {"--inspect", "", "draw borders of views, and problems of their layout; also F12",
     [](Options& o, Text) { return o.inspects = true; }},
    {"--frame-graph", "", "show how long frames take; also F12",
     [](Options& o, Text) { return o.showsFrameTimes = true; }},
    {"--screenshot", "FILE.png", "after the script, or once the open tab shows its first list; then exit",
     [](Options& o, Text v) { return storeText(v, o.screenshot); }},
    {"--script", "FILE", "commands to perform once the tab is attached",
     [](Options& o, Text v) { return storeText(v, o.script); }},
    {"--record", "FILE", "writes what the player does as such commands",
     [](Options& o, Text v) { return storeText(v, o.record); }},
    {"--help", "", "this text", [](Options& o, Text) { return o.showsHelp = true; }},
};

constexpr std::string_view scriptHelp = R"(
A script has one command a line; # starts a comment:
  wait SECONDS                            await FIELD shown|hidden [SECONDS]
  await text FIELD "TEXT" [SECONDS]       await idle [SECONDS]
  tap FIELD                               tap X Y
  cell N                                  swipe FIELD left|right|up|down
  drag X1 Y1 X2 Y2                        scroll X Y DX DY
  pinch FIELD FACTOR                      key NAME
  network unknown|none|cellular|wifi      tracking on|off
  call OPERATION [ARGUMENT]               await frame FIELD [SECONDS]
  press up|down|left|right|select|menu|playpause|pageup|pagedown
  service PATH status N|slow SECONDS|cut|hang|answer FILE|normal          service normal
  screenshot FILE.png                     dump FILE.json
  orientation unknown|portrait|upside-down|landscape-left|landscape-right|face-up|face-down [WxH]
FIELD is the name of an outlet field of the tab, such as btnOpen.

In the window, Tab or a game controller's Start opens the tab and gives it the keys and the controller.
)";

constexpr std::pair<std::string_view, UIPressType> presses[] = {
    {"up", UIPressType::UpArrow},       {"down", UIPressType::DownArrow},    {"left", UIPressType::LeftArrow},
    {"right", UIPressType::RightArrow}, {"select", UIPressType::Select},     {"menu", UIPressType::Menu},
    {"pageup", UIPressType::PageUp},    {"pagedown", UIPressType::PageDown}, {"playpause", UIPressType::PlayPause},
};

template <class Number>
std::optional<Number> wholeNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

}  // namespace

ParsedOptions parseOptions(std::span<char* const> arguments) {
    ParsedOptions parsed;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string name = arguments[i];
        const auto kind = std::find_if(std::begin(optionKinds), std::end(optionKinds),
                                       [&](const OptionKind& each) { return each.name == name; });
        if (kind == std::end(optionKinds)) {
            parsed.error = "unknown option '" + name + "'; --help lists them";
            return parsed;
        }
        if (!kind->value.empty() && i + 1 == arguments.size()) {
            parsed.error = name + " wants " + std::string(kind->value);
            return parsed;
        }
        const std::string value = kind->value.empty() ? "" : arguments[++i];
        if (kind->apply(parsed.options, value)) continue;
        parsed.error = name + " wants " + std::string(kind->value) + ", not '" + value + "'";
        return parsed;
    }
    return parsed;
}

std::string helpText() {
    std::string text = "Usage: flarebox-hostgame [OPTION]...\nA small game with the tab in it.\n\n";
    for (const OptionKind& kind : optionKinds) {
        std::string line = "  " + std::string(kind.name) + " " + std::string(kind.value);
        line.resize(std::max<std::size_t>(line.size() + 1, 26), ' ');
        text += line + std::string(kind.help) + "\n";
    }
    return text + std::string(scriptHelp);
}

std::optional<CGSize> parseSize(std::string_view text) {
    constexpr std::int64_t largestSide = 16384;
    const std::size_t cross = text.find('x');
    if (cross == text.npos) return std::nullopt;
    const auto width = parseInteger(text.substr(0, cross)), height = parseInteger(text.substr(cross + 1));
    if (!width || !height || *width < 1 || *height < 1 || *width > largestSide || *height > largestSide)
        return std::nullopt;
    return CGSize{static_cast<CGFloat>(*width), static_cast<CGFloat>(*height)};
}

std::optional<double> parseNumber(std::string_view text) {
    const auto number = wholeNumber<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
    return wholeNumber<std::int64_t>(text);
}

std::optional<bool> parseSwitch(std::string_view text) {
    if (text == "on") return true;
    if (text == "off") return false;
    return std::nullopt;
}

std::optional<std::int64_t> parseNetworkStatus(std::string_view text) {
    constexpr std::string_view names[] = {"unknown", "none", "cellular", "wifi"};
    const auto name = std::find(std::begin(names), std::end(names), text);
    if (name == std::end(names)) return std::nullopt;
    return name - std::begin(names) - 1;
}

std::optional<UIPressType> parsePress(std::string_view text) {
    for (const auto& [name, press] : presses) {
        if (name == text) return press;
    }
    return std::nullopt;
}

std::string_view nameOf(UIPressType press) {
    for (const auto& [name, each] : presses) {
        if (each == press) return name;
    }
    return {};
}

}  // namespace flarebox::hostgame
