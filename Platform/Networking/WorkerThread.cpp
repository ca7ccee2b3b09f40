#include <Networking/WorkerThread.h>

#include <Foundation/BackgroundThread.h>
#include <Foundation/Immortal.h>
#include <Foundation/Shutdown.h>

#include <utility>

namespace flarebox {

std::shared_ptr<WorkerThread> WorkerThread::shared() {
    static detail::Immortal<std::shared_ptr<WorkerThread>> worker;
    if (!*worker) {
        *worker = std::make_shared<WorkerThread>();
        Shutdown::addHandler([] { std::exchange(*worker, nullptr)->stop(); });
    }
    return *worker;
}

WorkerThread::WorkerThread() : thread_([this] { run(); }) {}

WorkerThread::~WorkerThread() {
    stop();
}

void WorkerThread::stop() {
    queue_.stop();
    if (thread_.joinable()) thread_.join();
}

void WorkerThread::run() {
    becomeBackgroundThread("flarebox-decode");
    while (queue_.runNext() != WorkQueue::Turn::Stopped) {
    }
}

}  // namespace flarebox
