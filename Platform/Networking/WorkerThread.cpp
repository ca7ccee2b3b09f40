#include <Networking/WorkerThread.h>

#include <Foundation/BackgroundThread.h>
#include <Foundation/Immortal.h>
#include <Foundation/Shutdown.h>

#include <utility>

namespace flarebox {

std::shared_ptr<WorkerThread> WorkerThread::shared() {
    static detail::Immortal<std::shared_ptr<WorkerThread>> worker;
    if (!*worker) {
        auto made = std::make_shared<WorkerThread>();
        // Another one may start the next time.
        if (!made->isWorking_) return made;
        *worker = std::move(made);
        Shutdown::addHandler([] { std::exchange(*worker, nullptr)->stop(); });
    }
    return *worker;
}

WorkerThread::WorkerThread()
    : isWorking_(thread_.start("flarebox-decode", [this] {
          becomeBackgroundThread();
          while (queue_.runNext() != WorkQueue::Turn::Stopped) {
          }
      })) {}

WorkerThread::~WorkerThread() {
    stop();
}

void WorkerThread::stop() {
    queue_.stop();
    thread_.join();
}

void WorkerThread::async(Work work) {
    if (!isWorking_) return work();
    queue_.add(std::move(work));
}

}  // namespace flarebox
