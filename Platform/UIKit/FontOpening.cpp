#include <UIKit/FontOpening.h>

#include <Foundation/BackgroundThread.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSNotificationCenter.h>
#include <Foundation/Shutdown.h>
#include <UIKit/BitmapCanvas.h>

#include <atomic>
#include <memory>
#include <thread>

namespace flarebox {
namespace {

/// The thread, as long as it lives.
class Opening {
public:
    Opening() : thread_([this] { run(); }) {}
    ~Opening() {
        isStopping_ = true;
        thread_.join();
    }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;

private:
    void run();

    MainQueue::Activity activity_;
    std::atomic<bool> isStopping_ = false;
    std::thread thread_;
};

// Of the main thread.
std::unique_ptr<Opening> opening;

void Opening::run() {
    becomeBackgroundThread("flarebox-fonts");
    openUsualFonts(isStopping_);
    dispatch_async_main([] {
        opening.reset();
        NSNotificationCenter::defaultCenter().postNotificationName(UIFontsDidOpenNotification);
    });
}

}  // namespace

void openFontsInBackground() {
    if (opening || fontsAreInUse()) return;
    opening = std::make_unique<Opening>();
    Shutdown::addHandler([] { opening.reset(); });
}

bool fontsAreOpening() {
    return opening != nullptr;
}

}  // namespace flarebox
