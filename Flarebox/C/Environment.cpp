#include <Flarebox/C/Guard.h>
#include <Flarebox/Managers/FlareboxManager.h>
#include <Foundation/Clock.h>
#include <Foundation/Immortal.h>
#include <Networking/AFNetworkReachabilityManager.h>

#include <cstddef>
#include <mutex>
#include <vector>

namespace flarebox::c {
namespace {

/// The first version ended with `time_since_1970`.
constexpr std::size_t sizeOfClock = offsetof(flarebox_clock, time_since_1970) + sizeof(flarebox_clock::time_since_1970);
constexpr std::int32_t largestSide = 4096;

/// The game's clock. Lasts as long as the process, as any thread may be reading it.
class CallbackClock : public Clock {
public:
    double uptime() const override { return read(&flarebox_clock::uptime); }
    double timeSince1970() const override { return read(&flarebox_clock::time_since_1970); }

    void set(const flarebox_clock& functions) {
        const std::lock_guard lock(mutex_);
        functions_ = functions;
    }

private:
    double read(double (*flarebox_clock::*function)(void*)) const {
        flarebox_clock functions;
        {
            const std::lock_guard lock(mutex_);
            functions = functions_;
        }
        return (functions.*function)(functions.context);
    }

    mutable std::mutex mutex_;
    flarebox_clock functions_ = FLAREBOX_CLOCK;
};

CallbackClock& gameClock() {
    static detail::Immortal<CallbackClock> clock;
    return *clock;
}

}  // namespace

extern "C" {

flarebox_result flarebox_set_picture(const char* address, std::int32_t width, std::int32_t height, std::int32_t stride,
                                     const std::uint32_t* pixels) {
    return guarded([&] {
        const NSURL url = address ? NSURL::URLWithString(address) : NSURL();
        std::vector<std::uint32_t> copy;
        if (pixels) {
            if (width < 1 || height < 1 || width > largestSide || height > largestSide || stride < width)
                return failed(FLAREBOX_INVALID_ARGUMENT,
                              "sides have to be from 1 to 4096, the stride at least the width");
            for (std::int32_t y = 0; y < height; ++y) {
                const std::uint32_t* const row = pixels + static_cast<std::ptrdiff_t>(y) * stride;
                copy.insert(copy.end(), row, row + width);
            }
        }
        Ref<NSError> error;
        const bool isSet =
            FlareboxManager::setPicture(url, pixels ? width : 0, pixels ? height : 0, std::move(copy), &error);
        return isSet ? FLAREBOX_OK : failed(FLAREBOX_INVALID_ARGUMENT, error->localizedDescription());
    });
}

flarebox_result flarebox_set_clock(const flarebox_clock* clock) {
    return guarded([&] {
        flarebox_clock known = FLAREBOX_CLOCK;
        if (clock && !copyStruct(clock, sizeOfClock, known)) return FLAREBOX_INVALID_ARGUMENT;
        if (clock && (!known.uptime || !known.time_since_1970))
            return failed(FLAREBOX_INVALID_ARGUMENT, "a clock needs both functions");
        // In between, what waits is counted by the machine's clock.
        Clock::setCurrent(nullptr);
        if (!clock) return FLAREBOX_OK;
        gameClock().set(known);
        Clock::setCurrent(&gameClock());
        return FLAREBOX_OK;
    });
}

flarebox_result flarebox_set_network(std::int32_t network) {
    return guarded([&] {
        if (network < FLAREBOX_NETWORK_SYSTEM || network > FLAREBOX_NETWORK_WIFI)
            return failed(FLAREBOX_INVALID_ARGUMENT, "there is no such state of the network");
        const bool isGiven = network != FLAREBOX_NETWORK_SYSTEM;
        AFNetworkReachabilityManager::sharedManager().setMonitor(
            isGiven ? make<ManualNetworkMonitor>(static_cast<AFNetworkReachabilityStatus>(network)) : nullptr);
        return FLAREBOX_OK;
    });
}

}  // extern "C"

}  // namespace flarebox::c
