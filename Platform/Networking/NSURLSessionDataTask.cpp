#include <Networking/NSURLSessionDataTask.h>

#include <Foundation/Immortal.h>
#include <Foundation/MainQueue.h>
#include <Foundation/Shutdown.h>
#include <Foundation/TurnMeter.h>
#include <Networking/NetworkError.h>
#include <Networking/RequestCheck.h>
#include <Networking/Transport.h>
#include <Networking/WorkerThread.h>

#include <memory>
#include <new>
#include <unordered_map>
#include <utility>

namespace flarebox {

/// The tasks that have been resumed and not completed. Other threads know a task by its number alone, so that nothing
/// of it is touched, or destroyed, anywhere but on the main thread.
struct NSURLSessionDataTask::InFlight {
    struct Entry {
        Ref<NSURLSessionDataTask> task;
        std::unique_ptr<MainQueue::Activity> activity = std::make_unique<MainQueue::Activity>();
    };
    std::unordered_map<Identifier, Entry> entries;
    Identifier next = 1;
    bool endsAtShutdown = false;
};

NSURLSessionDataTask::InFlight& NSURLSessionDataTask::inFlight() {
    static detail::Immortal<InFlight> tasks;
    return *tasks;
}

const ClassInfo& NSURLSessionDataTask::staticClass() {
    static const ClassInfo info("NSURLSessionDataTask", &NSObject::staticClass(), nullptr);
    return info;
}

NSURLSessionDataTask::NSURLSessionDataTask(Ref<NSURLRequest> request, Settings settings, Completion completion)
    : request_(std::move(request)), settings_(std::move(settings)), completion_(std::move(completion)) {}

NSURLSessionDataTask::~NSURLSessionDataTask() = default;

std::string NSURLSessionDataTask::address() const {
    return request_ ? request_->URL().absoluteString() : std::string();
}

void NSURLSessionDataTask::enterFlight() {
    InFlight& tasks = inFlight();
    if (!std::exchange(tasks.endsAtShutdown, true)) {
        Shutdown::addHandler([] {
            inFlight().endsAtShutdown = false;
            auto dropped = std::exchange(inFlight().entries, {});
        });
    }
    identifier_ = tasks.next++;
    tasks.entries[identifier_].task = Ref<NSURLSessionDataTask>(this);
}

void NSURLSessionDataTask::resume() {
    if (!isMainThread()) return dispatch_async_main([self = Ref<NSURLSessionDataTask>(this)] { self->resume(); });
    if (state_ != NSURLSessionTaskStateSuspended) return;
    state_ = NSURLSessionTaskStateRunning;
    enterFlight();
    auto reason =
        request_ ? reasonNotToSend(*request_) : networkError(NSURLErrorBadURL, "There is no request to send.", "");
    if (reason)
        finishSoon(identifier_, {nullptr, {}, reason});
    else
        startTransfer();
}

void NSURLSessionDataTask::cancel() {
    if (!isMainThread()) return dispatch_async_main([self = Ref<NSURLSessionDataTask>(this)] { self->cancel(); });
    if (state_ == NSURLSessionTaskStateSuspended)
        enterFlight();
    else if (state_ != NSURLSessionTaskStateRunning)
        return;
    state_ = NSURLSessionTaskStateCanceling;
    if (transfer_) Transport::shared().cancel(transfer_);
    finishSoon(identifier_, {});
}

void NSURLSessionDataTask::startTransfer() {
    TransferRequest transfer;
    transfer.url = address();
    transfer.method = request_->HTTPMethod();
    transfer.fields = request_->allHTTPHeaderFields();
    transfer.body = request_->HTTPBody();
    transfer.idleTimeout = request_->timeoutInterval();
    transfer.maximumBodyLength = settings_.maximumResponseLength;
    transfer.certificateAuthorityFile = settings_.certificateAuthorityFile;
    transfer.pinnedPublicKeys = settings_.pinnedPublicKeys;
    if (!transfer.pinnedPublicKeys.empty() && request_->URL().scheme() != "https") {
        constexpr const char* reason = "The key of the server is pinned, but its address is not secure.";
        return finishSoon(identifier_,
                          {nullptr, {}, networkError(NSURLErrorSecureConnectionFailed, reason, transfer.url)});
    }
    if (auto error = openDestination(transfer)) return finishSoon(identifier_, {nullptr, {}, error});

    auto completion = [identifier = identifier_, serializer = settings_.responseSerializer,
                       file = transfer.file ? transfer.file->path() : std::string(),
                       worker = WorkerThread::shared()](TransferResult result) {
        const bool quick = result.error || !file.empty() || serializer->decodesQuickly(result.body.length());
        auto decodeAndFinish = [identifier, serializer, file, transferred = std::move(result)] {
            finishSoon(identifier, decode(*serializer, file, transferred));
        };
        if (quick)
            decodeAndFinish();
        else
            worker->async(std::move(decodeAndFinish));
    };
    transfer_ = Transport::shared().start(std::move(transfer), std::move(completion));
}

Ref<NSError> NSURLSessionDataTask::openDestination(TransferRequest& transfer) const {
    if (!settings_.destination) return nullptr;
    transfer.file = std::make_shared<AtomicFile>(settings_.destination());
    const Ref<NSError> reason = transfer.file->error();
    return reason ? networkError(NSURLErrorCannotCreateFile, reason->localizedDescription(), transfer.url) : nullptr;
}

NSURLSessionDataTask::Outcome NSURLSessionDataTask::decode(const AFHTTPResponseSerializer& serializer,
                                                           const std::string& file, const TransferResult& result) {
    if (result.error) return {nullptr, {}, result.error};
    Outcome outcome;
    outcome.response = make<NSHTTPURLResponse>(NSURL::URLWithString(result.url), result.status, result.fields);
    if (!file.empty()) {
        outcome.error = serializer.validateResponse(*outcome.response, NSData());
        outcome.object = NSString(file);
        return outcome;
    }
    try {
        outcome.object = serializer.responseObjectForResponse(*outcome.response, result.body, outcome.error);
    } catch (const std::bad_alloc&) {
        outcome.error =
            networkError(NSURLErrorCannotDecodeContentData, "There is not enough memory for the answer.", result.url);
    }
    return outcome;
}

void NSURLSessionDataTask::finishSoon(Identifier identifier, Outcome outcome) {
    MainQueue::shared().async(
        [identifier, outcome = std::move(outcome)]() mutable { finish(identifier, std::move(outcome)); });
}

void NSURLSessionDataTask::finish(Identifier identifier, Outcome outcome) {
    TurnMeter::Part part("answers");
    // The activity ends last: whoever waits for rest sees what the completion set going.
    if (auto entry = inFlight().entries.extract(identifier)) entry.mapped().task->complete(std::move(outcome));
}

void NSURLSessionDataTask::complete(Outcome outcome) {
    // What was cancelled stays cancelled, even though its answer was on its way to us.
    if (state_ == NSURLSessionTaskStateCanceling) outcome = {nullptr, {}, networkError(NSURLErrorCancelled, address())};
    if (outcome.error) outcome.object = {};
    state_ = NSURLSessionTaskStateCompleted;
    if (auto completion = std::exchange(completion_, nullptr))
        completion(outcome.response, outcome.object, outcome.error);
}

}  // namespace flarebox
