#include <Flarebox/C/Guard.h>
#include <Flarebox/Managers/FlareboxManager.h>
#include <Foundation/Clock.h>
#include <Foundation/Immortal.h>
#include <Networking/AFNetworkReachabilityManager.h>

#include <cstddef>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <vector>

namespace flarebox::c {
namespace {

/// The first version ended with `time_since_1970`.
constexpr std::size_t sizeOfClock = offsetof(flarebox_clock, time_since_1970) + sizeof(flarebox_clock::time_since_1970);

/// The game's clock. Lasts as long as the process, as any thread may be reading it.
class CallbackClock : public Clock {
public:
    double uptime() const override { return read(&flarebox_clock::uptime, &Clock::uptime); }
    double timeSince1970() const override { return read(&flarebox_clock::time_since_1970, &Clock::timeSince1970); }

    /// The former functions are not called any more once this returns.
    void set(const flarebox_clock& functions) {
        const std::lock_guard lock(mutex_);
        functions_ = functions;
    }

private:
    /// A thread that took the clock before it was taken back reads the machine's.
    double read(double (*flarebox_clock::*function)(void*), double (Clock::*ofMachine)() const) const {
        const std::shared_lock lock(mutex_);
        return functions_.*function ? (functions_.*function)(functions_.context) : (real().*ofMachine)();
    }

    /// Shared while the game's functions are called.
    mutable std::shared_mutex mutex_;
    flarebox_clock functions_ = FLAREBOX_CLOCK;
};

CallbackClock& gameClock() {
    static detail::Immortal<CallbackClock> clock;
    return *clock;
}

/// The state of the network that the game gave; null where it gave none, or not since the host was made.
Weak<ManualNetworkMonitor>& gameNetwork() {
    static detail::Immortal<Weak<ManualNetworkMonitor>> network;
    return *network;
}

/// The picture without what lies between its rows.
std::vector<std::uint32_t> withoutGaps(const std::uint32_t* pixels, std::int32_t width, std::int32_t height,
                                       std::int32_t stride) {
    std::vector<std::uint32_t> copy;
    copy.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (std::int32_t y = 0; y < height; ++y) {
        const std::uint32_t* const row = pixels + static_cast<std::ptrdiff_t>(y) * stride;
        copy.insert(copy.end(), row, row + width);
    }
    return copy;
}

}  // namespace

}  // namespace flarebox::c

using namespace flarebox;
using namespace flarebox::c;

extern "C" {

flarebox_result flarebox_set_picture(const char* address, std::int32_t width, std::int32_t height, std::int32_t stride,
                                     const std::uint32_t* pixels) {
    return guarded([&] {
        const NSURL url = address ? NSURL::URLWithString(address) : NSURL();
        std::vector<std::uint32_t> copy;
        if (pixels) {
            constexpr int most = FlareboxManager::maximumPictureSide;
            if (width < 1 || height < 1 || width > most || height > most)
                return failed(FLAREBOX_INVALID_ARGUMENT, "sides have to be from 1 to " + std::to_string(most));
            if (stride < width) return failed(FLAREBOX_INVALID_ARGUMENT, "the stride has to be at least the width");
            copy = withoutGaps(pixels, width, height, stride);
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
        gameClock().set(known);
        if (clock) Clock::setCurrent(&gameClock());
        return FLAREBOX_OK;
    });
}

flarebox_result flarebox_set_network(std::int32_t network) {
    return guarded([&] {
        if (network < FLAREBOX_NETWORK_SYSTEM || network > FLAREBOX_NETWORK_WIFI)
            return failed(FLAREBOX_INVALID_ARGUMENT, "there is no such state of the network");
        auto& manager = AFNetworkReachabilityManager::sharedManager();
        const auto status = static_cast<AFNetworkReachabilityStatus>(network);
        // Another monitor reports anew, and the tab loads anew then.
        if (const Ref<ManualNetworkMonitor> given = gameNetwork().lock()) {
            if (network == FLAREBOX_NETWORK_SYSTEM)
                manager.setMonitor(nullptr);
            else
                given->setStatus(status);
        } else if (network != FLAREBOX_NETWORK_SYSTEM) {
            const auto made = make<ManualNetworkMonitor>(status);
            gameNetwork() = made;
            manager.setMonitor(made);
        }
        return FLAREBOX_OK;
    });
}

}  // extern "C"
