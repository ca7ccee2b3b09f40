#include <Tests/Faults/Schedule.h>

#include <algorithm>
#include <random>

namespace flarebox::testing {
namespace {

constexpr const char* deedNames[] = {"open",         "close",    "select",       "picture",      "model",
                                     "video",        "coupon",   "leave",        "play",         "stop",
                                     "scroll",       "new game", "lose service", "find service", "lose network",
                                     "find network", "seconds",  "period",       "rest"};
static_assert(std::size(deedNames) == deedCount);

/// The same numbers on every machine, which the library's distributions do not promise.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : engine_(seed) {}
    std::uint32_t below(std::uint32_t end) { return static_cast<std::uint32_t>(engine_() % end); }
    template <class T, std::size_t n>
    const T& pick(const T (&choices)[n]) {
        return choices[below(n)];
    }

private:
    std::mt19937_64 engine_;
};

/// Every byte of an answer is as good as every other, but those of its head, which are few, come more often.
std::uint32_t anyByte(Dice& dice) {
    switch (dice.below(3)) {
        case 0:
            return dice.below(4);
        case 1:
            return dice.below(400);
        default:
            return dice.below(1'000'000'000);
    }
}

Fault anyFault(Dice& dice) {
    static constexpr int statuses[] = {200, 200, 200, 204, 206, 301, 304, 400, 401, 404, 416, 429, 500, 503, 599};
    static constexpr const char* types[] = {"application/json",  "application/json", "text/html", "image/png",
                                            "model/gltf-binary", "video/mp4",        ""};
    static constexpr std::uint32_t lengths[] = {0, 0, 1, 100, 5000, 300'000};
    Fault fault;
    fault.kind = static_cast<Fault::Kind>(dice.below(Fault::kinds));
    fault.at = anyByte(dice);
    fault.resumes = dice.below(2) == 0;
    fault.status = dice.pick(statuses);
    fault.type = dice.pick(types);
    fault.length = dice.pick(lengths);
    return fault;
}

/// A fault, or the same one for several requests in a row.
void addFault(FaultProxy::Plan& plan, Dice& dice) {
    static constexpr Flow flows[] = {Flow::Session, Flow::List,  Flow::List,  Flow::Event, Flow::Coupon, Flow::Picture,
                                     Flow::Picture, Flow::Model, Flow::Model, Flow::Model, Flow::Video};
    const Flow flow = dice.pick(flows);
    const bool areMany = flow == Flow::Picture || flow == Flow::Model;
    const int first = static_cast<int>(dice.below(areMany ? 16 : 3));
    const Fault fault = anyFault(dice);
    // Longer than the kit follows a redirect.
    const std::uint32_t times = fault.kind == Fault::Kind::Circle ? 8 : dice.below(2) == 0 ? 1 : 1 + dice.below(20);
    for (int i = 0; i < static_cast<int>(times); ++i) plan.emplace(std::pair(flow, first + i), fault);
}

Schedule::Step anyStep(Dice& dice) {
    using enum Deed;
    // Playing takes the longest, and waiting in real time.
    static constexpr Deed deeds[] = {Open,        Open,        Open,        Close,       Select,      Select,
                                     Select,      ShowPicture, ShowModel,   ShowModel,   ShowVideo,   SaveCoupon,
                                     SaveCoupon,  LeaveCoupon, Play,        StopPlaying, Scroll,      ChangeGame,
                                     LoseService, FindService, FindService, LoseNetwork, FindNetwork, FindNetwork,
                                     Seconds,     Period,      Period,      Rest};
    const Deed deed = dice.pick(deeds);
    return {deed, dice.below(20)};
}

}  // namespace

Schedule Schedule::fromSeed(std::uint64_t seed) {
    Dice dice(seed);
    Schedule schedule;
    schedule.seed = seed;
    for (std::uint32_t left = 1 + dice.below(8); left > 0; --left) addFault(schedule.faults, dice);
    for (std::uint32_t left = 3 + dice.below(14); left > 0; --left) schedule.steps.push_back(anyStep(dice));
    return schedule;
}

Schedule Schedule::faultless() {
    using enum Deed;
    Schedule schedule;
    for (const Deed deed : {Rest, Open, Select, ShowVideo, Play, Rest, StopPlaying, ShowModel, SaveCoupon, Rest,
                            LeaveCoupon, ChangeGame, Rest, Close})
        schedule.steps.push_back({deed, 1});
    return schedule;
}

bool Schedule::has(Deed deed) const {
    return std::ranges::any_of(steps, [deed](const Step& step) { return step.deed == deed; });
}

std::string Schedule::description() const {
    std::string text = "FAULT_SEED=" + std::to_string(seed) + ":";
    for (auto at = faults.begin(); at != faults.end();) {
        const auto& [request, fault] = *at;
        const std::string what = fault.description();
        int last = request.second;
        while (++at != faults.end() && at->first == std::pair(request.first, last + 1) &&
               at->second.description() == what)
            ++last;
        text += std::string(" ") + flowNames[static_cast<std::size_t>(request.first)] + " " +
                std::to_string(request.second) + (last > request.second ? "-" + std::to_string(last) : "") + " " +
                what + ";";
    }
    text += " steps:";
    for (const Step& step : steps) {
        text += std::string(" ") + deedNames[static_cast<std::size_t>(step.deed)];
        if (step.deed == Deed::Select || step.deed == Deed::Seconds) text += " " + std::to_string(step.argument);
        text += ",";
    }
    return text;
}

}  // namespace flarebox::testing
