#include <Flarebox/Core/Logging.h>
#include <Flarebox/Core/TurnLog.h>
#include <Foundation/TurnMeter.h>

#include <algorithm>

namespace flarebox {

namespace {

constexpr std::size_t namedParts = 3;
constexpr double smallestShare = 0.01;
constexpr double milliseconds = 1000;

std::string longestParts(const TurnMeter::Turn& turn) {
    std::string text;
    for (const auto& [name, seconds] : turn.parts().first(std::min(namedParts, turn.parts().size()))) {
        if (seconds < turn.seconds() * smallestShare) break;
        if (!text.empty()) text += ", ";
        text += formatLog("%@ %.1f ms", std::array<Value, 2>{NSString(name), NSNumber(seconds * milliseconds)});
    }
    return text;
}

}  // namespace

void logLongTurns() {
    TurnMeter::shared().setReport([](const TurnMeter::Turn& turn, double budget) {
        if (!isLogLevelEnabel(LogLevelInfo)) return;
        infoLog("A turn took %.1f ms, more than the %.1f ms it may: %@", turn.seconds() * milliseconds,
                budget * milliseconds, NSString(longestParts(turn)));
    });
}

}  // namespace flarebox
