#pragma once

#include <Tests/Faults/FaultProxy.h>

#include <cstdint>
#include <string>
#include <vector>

namespace flarebox::testing {

/// What a player, a host and the world around them do with the tab.
enum class Deed : std::uint8_t {
    Open,
    Close,
    Select,
    ShowPicture,
    ShowModel,
    ShowVideo,
    SaveCoupon,
    LeaveCoupon,
    Play,
    StopPlaying,
    Scroll,
    ChangeGame,
    LoseService,
    FindService,
    LoseNetwork,
    FindNetwork,
    Seconds,
    Period,
    Rest,
};
inline constexpr int deedCount = static_cast<int>(Deed::Rest) + 1;

/// A course of events with faults in the midst of it, the same for the same seed.
struct Schedule {
    struct Step {
        Deed deed;
        /// Which asset, how many seconds.
        std::uint32_t argument;
    };

    std::uint64_t seed = 0;
    FaultProxy::Plan faults = {};
    std::vector<Step> steps = {};

    static Schedule fromSeed(std::uint64_t seed);
    /// The same for every run: all that there is to do, and no fault.
    static Schedule faultless();
    bool has(Deed deed) const;
    /// In one line.
    std::string description() const;
};

}  // namespace flarebox::testing
