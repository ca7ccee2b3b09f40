#include <Foundation/LogSink.h>
#include <Foundation/System.h>
#include <Foundation/Thread.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <utility>

namespace flarebox {
namespace {

/// Threads that do nothing but exist.
class IdleThreads {
public:
    ~IdleThreads() {
        {
            const std::lock_guard lock(mutex_);
            isOver_ = true;
        }
        over_.notify_all();
    }

    /// 0, or the number of the error.
    int add() {
        try {
            threads_.emplace_back([this] {
                std::unique_lock lock(mutex_);
                over_.wait(lock, [this] { return isOver_; });
            });
            return 0;
        } catch (const std::system_error& error) {
            return error.code().value();
        }
    }

private:
    struct Joined {
        template <class Run>
        explicit Joined(Run run) : thread(std::move(run)) {}
        ~Joined() { thread.join(); }
        std::thread thread;
    };

    std::mutex mutex_;
    std::condition_variable over_;
    bool isOver_ = false;
    std::deque<Joined> threads_;
};

int refusalOfThreads(int count) {
    IdleThreads idle;
    int refusal = 0;
    for (int each = 0; each < count && refusal == 0; ++each) refusal = idle.add();
    return refusal;
}

std::string sentence(const char* what, int number) {
    return std::string("The system gives no more ") + what + ": " + std::system_category().message(number);
}

}  // namespace

bool Thread::start(const char* name, std::function<void()> run) {
    try {
        thread_ = std::thread([name = std::string(name), run = std::move(run)] {
            system::nameThread(name.c_str());
            run();
        });
        return true;
    } catch (const std::system_error& error) {
        LogSink::write(LogLevelError,
                       "Thread: \"" + std::string(name) + "\" does not start: " + error.code().message());
        return false;
    }
}

void Thread::join() {
    if (thread_.joinable()) thread_.join();
}

std::string lackOf(int threads, int descriptors) {
    if (const int refusal = system::refusalOfDescriptors(descriptors)) return sentence("files", refusal);
    if (const int refusal = refusalOfThreads(threads)) return sentence("threads", refusal);
    return {};
}

}  // namespace flarebox
