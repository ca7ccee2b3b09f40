#include <Foundation/BackgroundThread.h>

#include <pthread.h>
#include <sys/resource.h>

namespace flarebox {

namespace {

// A third of the weight of ordinary threads: what others wait for is late, but does not stand still.
constexpr int niceness = 5;

}  // namespace

void becomeBackgroundThread(const char* name) {
    pthread_setname_np(pthread_self(), name);
    // On Linux this is the thread's own.
    setpriority(PRIO_PROCESS, 0, niceness);
}

}  // namespace flarebox
