// A service that wants to harm its players: whatever it answers costs lines in the log and bounded memory, and the tab
// is as usable as before.

#include <Tests/Faults/Attack.h>
#include <Tests/Faults/FaultTesting.h>
#include <UIKit/UIButton.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace flarebox::testing {
namespace {

/// What the process may take, the service that attacks it included.
constexpr long mostMemory = 256 * 1024;

/// In seconds of real time, for one attack and what follows it.
constexpr unsigned longestAttack = 200;

bool isMemoryOfTheKit() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return false;
#else
    return true;
#endif
}

/// What became of an attack, and how much memory was in use at most, in KiB.
struct Outcome {
    bool isWithstood = false;
    long memoryPeak = 0;
};

/// Runs one attack in a process of its own, which is the only way to learn what it takes.
Outcome inOwnProcess(std::size_t attack) {
    setenv("HOSTILE_ATTACK", std::to_string(attack).c_str(), 1);
    const pid_t child = fork();
    if (child == 0) {
        alarm(longestAttack);
        execl("/proc/self/exe", "FaultsTests", "--gtest_brief=1", "--gtest_filter=HostileTest.OneAttackIsWithstood",
              nullptr);
        _exit(127);
    }
    int status = -1;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    return {WIFEXITED(status) && WEXITSTATUS(status) == 0, usage.ru_maxrss};
}

class HostileTest : public FaultTest {
protected:
    /// Runs the tab against the attack, and then against the sample service.
    void withstand(const Attack& attack) {
        learnWhatIsRight();
        begin({});
        const std::string log = loggedBy([&] { suffer(attack); });
        EXPECT_NE(log, "") << "something is said";
        const auto isPlain = [](unsigned char c) { return c == '\n' || c == '\t' || (c >= ' ' && c != 127); };
        EXPECT_TRUE(std::ranges::all_of(log, isPlain)) << "the log is of lines and letters: " << log.substr(0, 2000);
        EXPECT_EQ(log.find("\nKestrinSDK Info: forged"), log.npos);
        recover(attack);
    }

private:
    void learnWhatIsRight() {
        begin({});
        ASSERT_TRUE(comeToRest());
        right_ = state();
        ASSERT_EQ(end(), "");
    }
    void suffer(const Attack& attack);
    void recover(const Attack& attack);
    void useTab();

    std::string right_;
    std::shared_ptr<RecordingUrlOpener> links_ = std::make_shared<RecordingUrlOpener>();
};

/// What a service answers that means no harm.
void answerAsUsual(ScriptedServer::Connection& connection, const std::string& path, const std::string& address) {
    if (path == listPath) return usualList().send(connection, address);
    if (path == "/sessions/") return void(connection.answerJSON(R"({"id":7,"uid":"session"})"));
    if (path == "/coupons/" || path.starts_with("/kafka/")) return void(connection.answerJSON("{}"));
    connection.answer("404 Not Found", "", "");
}

void HostileTest::suffer(const Attack& attack) {
    proxy().end();
    const Flood harm = attack.answer();
    const std::string address = proxy().url();
    ScriptedServer service(answering([&](ScriptedServer::Connection& connection, const std::string& request) {
                               const std::size_t start = request.find(' ') + 1;
                               const std::string path =
                                   request.substr(start, request.find_first_of(" ?", start) - start);
                               if (path != attack.path) return answerAsUsual(connection, path, address);
                               harm.send(connection, address);
                               connection.finish();
                           }),
                           nullptr, proxy().port());
    UIApplication::sharedApplication().setUrlOpener(links_);
    useTab();
    UIApplication::sharedApplication().setUrlOpener(nullptr);
    for (const std::string& link : links_->openedURLs()) {
        EXPECT_TRUE(link.starts_with("http://") || link.starts_with("https://")) << link;
        EXPECT_EQ(link.find_first_of("\r\n\x1b"), link.npos) << link;
    }
}

/// Everything that a player may do with what came.
void HostileTest::useTab() {
    const auto isIdle = [] { return MainQueue::shared().isIdle(); };
    EXPECT_TRUE(settleWithin(60, isIdle)) << "nothing goes on for ever";
    tab_->open();
    pass(0.5);
    // What a list holds is not to be loaded over and over.
    const AssetList assets = tab_->assestsList() ? *tab_->assestsList() : AssetList();
    for (std::size_t row = 0; row < std::min<std::size_t>(assets.size(), 40); ++row) {
        tab_->selectAsset(assets[row]);
        for (const AssetMode mode : {AssetMode3D, AssetModeVideo, AssetMode2D}) tab_->changeAssetMode(mode);
        field<UIButton>("btnBuy")->sendActions(UIControlEvents::TouchUpInside);
        pass(0.05);
    }
    perform(Schedule{.steps = {{Deed::Scroll, 0}, {Deed::SaveCoupon, 0}, {Deed::ShowVideo, 0}, {Deed::Play, 0}}});
    EXPECT_TRUE(settleWithin(60, isIdle)) << "nothing goes on for ever";
    pass(0.1);
}

void HostileTest::recover(const Attack& attack) {
    proxy().begin({});
    // A session is kept for as long as the process runs; the host may ask for another.
    if (attack.path == std::string_view("/sessions/")) tab_->updateWithNewGameUDID();
    EXPECT_TRUE(comeToRest());
    EXPECT_EQ(state(), right_);
    EXPECT_EQ(tryEverything(false), "");
    EXPECT_EQ(end(), "");
}

// The one that HOSTILE_ATTACK names by its number.
TEST_F(HostileTest, OneAttackIsWithstood) {
    const char* wanted = std::getenv("HOSTILE_ATTACK");
    const std::vector<Attack> attacks = allAttacks();
    const std::size_t number = wanted ? std::strtoul(wanted, nullptr, 10) : 0;
    ASSERT_LT(number, attacks.size());
    withstand(attacks[number]);
}

TEST(HostileServiceTest, WhateverItAnswersTheTabStaysUsable) {
    const bool areAll = std::getenv("HOSTILE_ALL") != nullptr;
    const std::vector<Attack> attacks = allAttacks();
    int tried = 0, withstood = 0;
    long peak = 0;
    // Each takes about a second: unless all are asked for, some of every kind.
    for (std::size_t i = 0; i < attacks.size(); i += areAll ? 1 : 6) {
        const Outcome outcome = inOwnProcess(i);
        const std::string what =
            "HOSTILE_ATTACK=" + std::to_string(i) + ": " + attacks[i].name + " at " + attacks[i].path;
        EXPECT_TRUE(outcome.isWithstood) << what;
        const bool isModest = outcome.memoryPeak < mostMemory || !isMemoryOfTheKit();
        EXPECT_TRUE(isModest) << what << " takes " << outcome.memoryPeak << " KiB";
        withstood += outcome.isWithstood && isModest;
        ++tried;
        peak = std::max(peak, outcome.memoryPeak);
        if (areAll) std::cout << what << ": " << outcome.memoryPeak / 1024 << " MiB" << std::endl;
    }
    std::cout << "attacks " << tried << " withstood " << withstood << " peak " << peak / 1024 << std::endl;
}

// What a host sets must not become more headers, or more requests, than it is.
TEST_F(HostileTest, NamesOfAGameCannotCarryHeaders) {
    for (const std::string& text :
         {std::string("g\r\nX-Evil: 1"), std::string("g\nX: 1"), std::string("g\0x", 3), std::string("g\r")}) {
        for (const bool isVersion : {false, true}) {
            begin({});
            ASSERT_TRUE(settleWithin(60, [] { return MainQueue::shared().isIdle(); }));
            FlareboxConfig& config = FlareboxConfig::defaultConfig();
            if (isVersion)
                config.setGameVersion(text);
            else
                config.setGameUID(text);
            sharedService().forgetRequests();
            const std::string log = loggedBy([&] {
                tab_->updateWithNewGameUDID();
                settleWithin(60, [] { return MainQueue::shared().isIdle(); });
            });
            EXPECT_NE(log.find("holds characters that cannot be sent"), log.npos) << log;
            for (const auto& request : sharedService().requests("/sessions/")) EXPECT_FALSE(request.header("X-Evil"));
            EXPECT_FALSE(field("lbErrorMessage")->isHidden());
            EXPECT_EQ(end(), "");
        }
    }
}

}  // namespace
}  // namespace flarebox::testing
