#include <Foundation/BackgroundThread.h>

#include <sys/resource.h>

namespace flarebox {

namespace {

// A third of the weight of ordinary threads: what others wait for is late, but does not stand still.
constexpr int niceness = 5;

}  // namespace

void becomeBackgroundThread() {
    // On Linux this is the thread's own.
    setpriority(PRIO_PROCESS, 0, niceness);
}

}  // namespace flarebox
