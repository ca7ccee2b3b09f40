#pragma once

#include <Foundation/Clock.h>
#include <Foundation/Export.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace flarebox {

/// Measures how long each turn holds the main thread, and which of its parts took how much of it. A turn is what runs
/// from the outermost part's begin to its end: a host's call of `update`, `draw` or an input operation. Reading,
/// reporting and measuring allocate nothing. Main thread only.
class FLAREBOX_EXPORT TurnMeter {
public:
    /// What one part took of a turn.
    struct PartTime {
        /// Static text.
        const char* name = nullptr;
        /// Without the parts inside it.
        double seconds = 0;
    };
    /// One turn and what it ran, the longest part first; parts of the same name are one.
    class Turn {
    public:
        double seconds() const { return seconds_; }                                  ///< all of it
        std::span<const PartTime> parts() const { return {parts_.data(), count_}; }  ///< at most 16
        /// Seconds of the part of that name; 0 when the turn did not run it.
        double secondsOf(std::string_view name) const;

    private:
        friend class TurnMeter;
        static constexpr std::size_t mostParts = 16;
        std::size_t indexOf(const char* name);
        void sort();

        double seconds_ = 0;
        std::size_t count_ = 0;
        std::array<PartTime, mostParts> parts_;
    };
    /// Told of a turn that took longer than the budget, after its end.
    using Report = void (*)(const Turn& turn, double budget);

    static TurnMeter& shared() { return shared_; }  ///< the one that the kit reports to
    constexpr TurnMeter() = default;
    TurnMeter(const TurnMeter&) = delete;
    TurnMeter& operator=(const TurnMeter&) = delete;

    /// Seconds that a turn may take. 0, the default, or anything that is no positive number: nothing is measured.
    /// Infinity: everything is, and nothing reported.
    void setBudget(double seconds) { budget_ = seconds > 0 ? seconds : 0; }
    double budget() const { return budget_; }  ///< in seconds
    /// Null for nobody.
    void setReport(Report report) { report_ = report; }
    /// The longest turn that was measured since the last reset; of no length when there was none.
    const Turn& longestTurn() const { return longest_; }
    void resetLongestTurn() { longest_ = {}; }  ///< begins anew
    /// The clock to measure by, which outlives its use; null for the machine's own, whatever clock is in force.
    void setClock(const Clock* clock) { clock_ = clock; }

    /// A part of a turn, as long as it lives. Parts lie within one another.
    class Part {
    public:
        /// Static text; null measures nothing.
        explicit Part(const char* name) : measures_(name && shared().budget_ > 0) {
            if (measures_) shared().begin(name);
        }
        ~Part() {
            if (measures_) shared().end();
        }
        Part(const Part&) = delete;
        Part& operator=(const Part&) = delete;

    private:
        bool measures_;
    };

private:
    static constexpr std::size_t deepest = 32;

    void begin(const char* name);
    void end();
    double now() const { return (clock_ ? *clock_ : Clock::real()).uptime(); }
    void chargeInnermost(double now);
    void finish();

    static TurnMeter shared_;

    double budget_ = 0;
    const Clock* clock_ = nullptr;
    Report report_ = nullptr;
    Turn turn_;
    Turn longest_;
    /// The parts under way, as indices into the turn's; those that lie too deep count for the one around them.
    std::array<std::uint8_t, deepest> open_ = {};
    std::size_t depth_ = 0;
    double start_ = 0;
    double charged_ = 0;
};

}  // namespace flarebox
