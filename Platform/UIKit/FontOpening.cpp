#include <UIKit/FontOpening.h>

#include <Foundation/BackgroundThread.h>
#include <Foundation/LogSink.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSNotificationCenter.h>
#include <Foundation/Shutdown.h>
#include <Foundation/Thread.h>
#include <UIKit/BitmapCanvas.h>

#include <atomic>
#include <memory>
#include <string>
#include <utility>

namespace flarebox {
namespace {

/// The thread, as long as it lives.
class Opening {
public:
    Opening() = default;
    ~Opening() {
        isStopping_ = true;
        thread_.join();
    }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;

    bool start() {
        return thread_.start("flarebox-fonts", [this] { run(); });
    }

private:
    void run();

    MainQueue::Activity activity_;
    std::atomic<bool> isStopping_ = false;
    Thread thread_;
};

// Of the main thread.
std::unique_ptr<Opening> opening;
bool isLacking = false;

/// What the library starts and opens for one font.
constexpr int threadsOfFont = 3, descriptorsOfFont = 8;
/// Seconds between two looks whether the system has recovered.
constexpr double recoveryInterval = 1;

void Opening::run() {
    becomeBackgroundThread();
    if (lackOf(threadsOfFont, descriptorsOfFont).empty()) openUsualFonts(isStopping_);
    dispatch_async_main([] {
        opening.reset();
        NSNotificationCenter::defaultCenter().postNotificationName(UIFontsDidOpenNotification);
    });
}

void lookWhetherItHasPassed() {
    if (!lackOf(threadsOfFont, descriptorsOfFont).empty())
        return dispatch_after_main(recoveryInterval, lookWhetherItHasPassed);
    isLacking = false;
    NSNotificationCenter::defaultCenter().postNotificationName(UIFontsDidOpenNotification);
}

}  // namespace

void openFontsInBackground() {
    if (opening || fontsAreInUse()) return;
    auto made = std::make_unique<Opening>();
    // Without a thread they are opened when the first text needs them.
    if (!made->start()) return;
    opening = std::move(made);
    Shutdown::addHandler([] { opening.reset(); });
}

bool fontsAreOpening() {
    return opening != nullptr || isLacking;
}

bool anotherFontCanBeOpened() {
    const std::string lack = lackOf(threadsOfFont, descriptorsOfFont);
    if (lack.empty() || isLacking) return lack.empty();
    LogSink::write(LogLevelError, "Flarebox: some texts are not shown: " + lack);
    isLacking = true;
    dispatch_after_main(recoveryInterval, lookWhetherItHasPassed);
    static bool endsAtShutdown = false;
    if (!std::exchange(endsAtShutdown, true)) Shutdown::addHandler([] { isLacking = endsAtShutdown = false; });
    return false;
}

}  // namespace flarebox
