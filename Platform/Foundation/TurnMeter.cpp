#include <Foundation/TurnMeter.h>

#include <algorithm>

namespace flarebox {

double TurnMeter::Turn::secondsOf(std::string_view name) const {
    const auto part = std::ranges::find(parts(), name, &PartTime::name);
    return part == parts().end() ? 0 : part->seconds;
}

std::size_t TurnMeter::Turn::indexOf(const char* name) {
    const auto known = std::ranges::find(parts(), std::string_view(name), &PartTime::name);
    if (known != parts().end()) return static_cast<std::size_t>(known - parts().begin());
    const bool isLast = count_ + 1 >= mostParts;
    if (count_ < mostParts) parts_[count_++] = {isLast ? "other" : name, 0};
    return count_ - 1;
}

void TurnMeter::Turn::sort() {
    std::sort(parts_.begin(), parts_.begin() + static_cast<std::ptrdiff_t>(count_),
              [](const PartTime& a, const PartTime& b) { return a.seconds > b.seconds; });
}

constinit TurnMeter TurnMeter::shared_;

void TurnMeter::begin(const char* name) {
    const double moment = now();
    if (depth_ == 0) {
        turn_.count_ = 0;
        start_ = charged_ = moment;
    } else {
        chargeInnermost(moment);
    }
    if (depth_ < deepest) open_[depth_] = static_cast<std::uint8_t>(turn_.indexOf(name));
    ++depth_;
}

void TurnMeter::end() {
    const double moment = now();
    chargeInnermost(moment);
    if (--depth_ > 0) return;
    turn_.seconds_ = moment - start_;
    finish();
}

void TurnMeter::chargeInnermost(double now) {
    turn_.parts_[open_[std::min(depth_, deepest) - 1]].seconds += now - charged_;
    charged_ = now;
}

void TurnMeter::finish() {
    const bool isLongest = turn_.seconds_ > longest_.seconds_, isTooLong = turn_.seconds_ > budget_;
    if (!isLongest && !isTooLong) return;
    turn_.sort();
    if (isLongest) longest_ = turn_;
    // The report may run parts of its own, which would be the next turn.
    if (isTooLong && report_) report_(Turn(turn_), budget_);
}

}  // namespace flarebox
