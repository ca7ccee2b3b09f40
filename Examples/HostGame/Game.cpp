#include "Game.h"

#include "ContentFrames.h"

#include <Flarebox/Core/FlareboxConfig.h>
#include <Foundation/Clock.h>
#include <Foundation/MainQueue.h>
#include <UIKit/UIApplication.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

namespace flarebox::hostgame {
namespace {

constexpr double frameTime = 1.0 / World::stepsPerSecond;
/// Between two looks at something that happens in its own time.
constexpr double pollTime = 0.002;
/// Longest time, in seconds, that the kit may use of one frame. Where nobody watches it takes what it needs, so that
/// the same script does the same things in the same frames.
constexpr double watchedBudget = 0.004, unwatchedBudget = 1;
/// Part of a frame that rounding may add to a whole number of them.
constexpr double slack = 1e-6;
constexpr double attachTime = 0.1;
constexpr double attachPatience = 10;
/// Steps that a slow frame may make up for.
constexpr int mostSteps = 6;

double realNow() {
    return Clock::real().uptime();
}

void sleep(double seconds) {
    if (seconds > 0) std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

Ref<FXUserSession> samplePlayer() {
    Ref<FXUserSession> player = FXUserSession::init();
    player->setFirstName("Sample");
    player->setLastName("Player");
    player->setAge(27);
    player->setSex("f");
    player->setState("Bavaria");
    player->setCity("Munich");
    player->setCountry("DE");
    player->setIpAddr("192.0.2.17");
    return player;
}

NSString textOrNull(const std::optional<std::string>& text) {
    return text ? NSString(*text) : NSString();
}

}  // namespace

Game::Game(const Options& options, Surroundings& surroundings, Screen& screen)
    : options_(options), surroundings_(surroundings), screen_(screen), tools_(options) {}

Game::~Game() {
    for (const Ref<FlareboxView>& tab : tabs_) tab->removeFromSuperview();
}

std::string Game::start() {
    FlareboxConfig& config = FlareboxConfig::defaultConfig();
    config.configFlareboxWithUserSession(options_.hasSession ? samplePlayer() : nullptr, textOrNull(options_.gameUID),
                                         textOrNull(options_.gameVersion), options_.logs, options_.logLevel);
    if (options_.refresh) config.setTimeRefresh(*options_.refresh);
    if (std::string problem = applyTheme(options_); !problem.empty()) return problem;
    if (!makeTab()) return "the kit's resources are missing";
    tab().showAtWindow();

    nextFrame_ = lastStep_ = realNow();
    if (surroundings_.virtualClock()) pass(attachTime);
    // Once the tab is in the window its last step, which closes it, is due at the next turn of the main queue.
    if (!await([this] { return tab().window() != nullptr; }, attachPatience))
        return isClosed_ ? "" : "the tab was not attached";
    if (window()) tools_.start(*window());
    frame();
    return {};
}

bool Game::makeTab() {
    Ref<FlareboxView> tab = FlareboxView::init();
    if (!tab) return false;
    tabs_.push_back(std::move(tab));
    return true;
}

UIWindow* Game::window() const {
    return UIApplication::sharedApplication().keyWindow();
}

void Game::pass(double seconds) {
    const double start = Clock::current().uptime(), end = start + seconds;
    if (VirtualClock* clock = surroundings_.virtualClock()) {
        for (std::int64_t i = 1; clock->uptime() < end && !isClosed_; ++i) {
            double moment = start + static_cast<double>(i) * frameTime;
            if (moment > end - slack * frameTime) moment = end;
            MainQueue::advance(*clock, moment - clock->uptime());
            clock->advanceTo(moment);
            runFrame(Moving::Yes);
            if (screen_.isWatched()) keepPace();
        }
        return;
    }
    // Unwatched, the number of frames depends on the time alone and not on how fast the machine is.
    const auto frames = static_cast<std::int64_t>(std::ceil(seconds / frameTime - slack));
    for (std::int64_t i = 0; i < frames && !isClosed_ && (i == 0 || !screen_.isWatched() || realNow() < end); ++i) {
        runFrame(Moving::Yes);
        keepPace();
    }
    if (!isClosed_) sleep(end - realNow());
}

bool Game::await(const std::function<bool()>& condition, double seconds) {
    const double deadline = realNow() + seconds;
    while (!isClosed_) {
        runFrame(Moving::No);
        if (condition()) return true;
        if (realNow() > deadline) return false;
        if (screen_.isWatched())
            keepPace();
        else
            sleep(pollTime);
    }
    return false;
}

void Game::frame() {
    runFrame(Moving::No);
}

bool Game::savePicture(const std::string& path) {
    return screen_.savePicture(world_, path);
}

void Game::play() {
    while (!isClosed_) {
        runFrame(Moving::Yes);
        keepPace();
    }
}

// Where nobody watches, the game moves only while a script lets time pass and not while it waits for something of
// unknown length, so that the same script always ends with the same picture.
void Game::runFrame(Moving moving) {
    const double start = realNow();
    if (!screen_.handleInput(world_)) isClosed_ = true;
    if (screen_.takeDeveloperKey()) tools_.toggle();
    if (screen_.takePanelKey() && !tabs_.empty()) {
        if (!tab().isOpened()) tab().open();
        screen_.host().takeFocus();
    }
    tools_.setPointer(screen_.pointer());
    if (!tabs_.empty()) {
        if (const Ref<FlareboxView> fresh = tools_.followFiles(tab())) tabs_.back() = fresh;
    }
    if (!screen_.isWatched()) {
        if (moving == Moving::Yes) world_.step();
    } else if (!surroundings_.virtualClock() || moving == Moving::Yes) {
        const double now = realNow();
        int steps = 0;
        for (; lastStep_ + frameTime <= now && steps < mostSteps; ++steps) {
            world_.step();
            lastStep_ += frameTime;
        }
        if (steps == mostSteps) lastStep_ = now;
    }
    const double updating = realNow();
    screen_.host().update(screen_.isWatched() ? watchedBudget : unwatchedBudget);
    double kit = realNow() - updating;
    if (isClosed_) return;
    if (screen_.isWatched()) {
        kit += screen_.draw(world_);
    } else if (moving == Moving::Yes && window() && showsContent(*window())) {
        screen_.drawPanel();
        kit = realNow() - updating;
    }
    tools_.frameEnded(realNow() - start, kit);
}

void Game::keepPace() {
    const double now = realNow();
    nextFrame_ = std::max(nextFrame_ + frameTime, now - frameTime);
    sleep(nextFrame_ - now);
}

}  // namespace flarebox::hostgame
