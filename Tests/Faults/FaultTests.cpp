// A network and a service that fail in every way there is, and what becomes of the tab once they are well again.

#include <Tests/Faults/FaultTesting.h>

#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <set>
#include <sstream>
#include <vector>

namespace flarebox::testing {
namespace {

int numberFrom(const char* variable, int otherwise) {
    const char* text = std::getenv(variable);
    return text ? std::atoi(text) : otherwise;
}

long peakInMebibytes() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

bool isVerbose() {
    return std::getenv("FAULT_VERBOSE") != nullptr;
}

/// The lines that are in one of the texts only, marked by "-" or "+".
std::string difference(const std::string& before, const std::string& after) {
    const auto lines = [](const std::string& text) {
        std::set<std::string> result;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);) result.insert(line);
        return result;
    };
    const std::set<std::string> old = lines(before), now = lines(after);
    std::string text;
    for (const std::string& line : old)
        if (!now.contains(line)) text += "- " + line + "\n";
    for (const std::string& line : now)
        if (!old.contains(line)) text += "+ " + line + "\n";
    return text;
}

class FaultScheduleTest : public FaultTest {
protected:
    /// What the tab looks like when nothing has gone wrong.
    void learnWhatIsRight() {
        const Schedule schedule = Schedule::faultless();
        begin(schedule);
        perform(schedule);
        ASSERT_TRUE(comeToRest());
        right_ = state();
        ASSERT_EQ(tryEverything(true), "");
        ASSERT_EQ(end(), "");
    }
    void play(const Schedule& schedule) {
        begin(schedule);
        FlareboxConfig::defaultConfig().setEnableLogging(isVerbose());
        FlareboxConfig::defaultConfig().setLogLevel(1);
        perform(schedule);
        faults_ += proxy().faults();
        if (!comeToRest()) ++hangs_, ADD_FAILURE() << "something hangs";
        if (const std::string now = state(); now != right_)
            ++wrong_, ADD_FAILURE() << "wrong state:\n" << difference(right_, now);
        if (const std::string reason = tryEverything(schedule.has(Deed::Play)); !reason.empty())
            ++wrong_, ADD_FAILURE() << reason;
        if (const int counted = countedInTenSeconds(); counted < 9 || counted > 10)
            ++timers_, ADD_FAILURE() << counted << " seconds counted in ten";
        if (const std::string left = end(); !left.empty()) ++timers_, ADD_FAILURE() << "left behind:" << left;
    }
    /// Waits for what ends on other threads.
    void compare(const Holdings& before) {
        const auto more = [](const std::multiset<std::string>& now, const std::multiset<std::string>& then) {
            std::string text;
            std::vector<std::string> added;
            std::ranges::set_difference(now, then, std::back_inserter(added));
            for (const std::string& each : added) text += " " + each;
            return text;
        };
        Holdings now;
        pumpUntil(
            [&] {
                now = Holdings::now();
                return now.threads.size() <= before.threads.size() &&
                       now.descriptors.size() <= before.descriptors.size();
            },
            5);
        if (now.threads.size() > before.threads.size())
            ++threads_, ADD_FAILURE() << "threads more:" << more(now.threads, before.threads);
        if (now.descriptors.size() > before.descriptors.size())
            ++descriptors_, ADD_FAILURE() << "descriptors more:" << more(now.descriptors, before.descriptors);
    }

    std::string right_;
    int faults_ = 0, hangs_ = 0, wrong_ = 0, timers_ = 0, threads_ = 0, descriptors_ = 0;
};

TEST_F(FaultScheduleTest, OnceTheNetworkIsWellAgainSoIsTheTab) {
    learnWhatIsRight();
    if (HasFailure()) return;
    const Holdings before = Holdings::now();
    const int first = numberFrom("FAULT_SEED", 1);
    const int count = numberFrom("FAULT_COUNT", std::getenv("FAULT_SEED") ? 1 : 30);
    for (int seed = first; seed < first + count; ++seed) {
        const Schedule schedule = Schedule::fromSeed(static_cast<std::uint64_t>(seed));
        SCOPED_TRACE(schedule.description());
        if (isVerbose()) std::cerr << schedule.description() << std::endl;
        play(schedule);
        compare(before);
    }
    std::cout << "schedules " << count << " faults " << faults_ << " hangs " << hangs_ << " states " << wrong_
              << " timers " << timers_ << " threads " << threads_ << " descriptors " << descriptors_ << " peak "
              << peakInMebibytes() << std::endl;
}

}  // namespace
}  // namespace flarebox::testing
