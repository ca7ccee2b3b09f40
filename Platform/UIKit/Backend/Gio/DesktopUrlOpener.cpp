#include <Foundation/Immortal.h>
#include <Foundation/LogSink.h>
#include <Foundation/Shutdown.h>
#include <Foundation/Thread.h>
#include <UIKit/Backend/Gio/DesktopUrlOpener.h>

#include <gio/gio.h>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace flarebox {
namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
    void operator()(GError* error) const { g_error_free(error); }
};
template <class T>
using Owned = std::unique_ptr<T, Unref>;

/// More links than a player could have asked for are dropped.
constexpr std::size_t longestQueue = 8;

/// Starts applications one after another. Starting one can take long, over the desktop's message bus for example, so it
/// is done asynchronously on the thread's own context, where it can be given up at any moment.
class LaunchThread {
public:
    LaunchThread() : cancellable_(g_cancellable_new()), context_(g_main_context_new()) {}

    ~LaunchThread() {
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        condition_.notify_one();
        g_cancellable_cancel(cancellable_.get());
        g_main_context_wakeup(context_.get());
        thread_.join();
    }

    bool start() {
        return thread_.start("flarebox-links", [this] { run(); });
    }

    bool launch(std::string url) {
        const std::lock_guard lock(mutex_);
        if (links_.size() >= longestQueue) return false;
        links_.push_back(std::move(url));
        condition_.notify_one();
        return true;
    }

private:
    void run() {
        g_main_context_push_thread_default(context_.get());
        while (true) {
            std::unique_lock lock(mutex_);
            condition_.wait(lock, [this] { return stopping_ || !links_.empty(); });
            if (stopping_) break;
            const std::string url = std::move(links_.front());
            links_.pop_front();
            lock.unlock();
            launchNow(url);
        }
        g_main_context_pop_thread_default(context_.get());
    }

    void launchNow(const std::string& url) {
        Launch launch{url};
        g_app_info_launch_default_for_uri_async(url.c_str(), nullptr, cancellable_.get(), &LaunchThread::launched,
                                                &launch);
        while (!launch.isDone) g_main_context_iteration(context_.get(), TRUE);
    }

    struct Launch {
        const std::string& url;
        bool isDone = false;
    };

    static void launched(GObject*, GAsyncResult* result, gpointer data) {
        Launch& launch = *static_cast<Launch*>(data);
        launch.isDone = true;
        GError* problem = nullptr;
        if (g_app_info_launch_default_for_uri_finish(result, &problem)) return;
        const Owned<GError> error(problem);
        if (g_error_matches(problem, G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
        // The address is nobody's business but the player's.
        const std::string_view reason = problem->message;
        const bool isTelling = reason.find(launch.url) != reason.npos;
        LogSink::write(LogLevelError,
                       "UIApplication: cannot open a link" + (isTelling ? "" : ": " + std::string(reason)));
    }

    Owned<GCancellable> cancellable_;
    Owned<GMainContext> context_;
    std::mutex mutex_;
    std::condition_variable condition_;
    std::deque<std::string> links_;
    bool stopping_ = false;
    Thread thread_;
};

class DesktopUrlOpener : public UrlOpener {
public:
    bool canOpenURL(const NSURL& url) override {
        const std::string scheme = url.scheme();
        if (scheme.empty()) return false;
        return Owned<GAppInfo>(g_app_info_get_default_for_uri_scheme(scheme.c_str())) != nullptr;
    }

    bool openURL(const NSURL& url) override {
        if (!canOpenURL(url)) return false;
        return (thread_ || start()) && thread_->launch(url.absoluteString());
    }

private:
    bool start() {
        // The library ends the process when it is refused what its message bus needs.
        if (const std::string lack = lackOf(4, 8); !lack.empty()) {
            LogSink::write(LogLevelError, "UIApplication: cannot open a link: " + lack);
            return false;
        }
        auto made = std::make_unique<LaunchThread>();
        if (!made->start()) return false;
        thread_ = std::move(made);
        Shutdown::addHandler([this] { thread_.reset(); });
        return true;
    }

    std::unique_ptr<LaunchThread> thread_;
};

}  // namespace

UrlOpener& desktopUrlOpener() {
    static detail::Immortal<DesktopUrlOpener> opener;
    return *opener;
}

}  // namespace flarebox
