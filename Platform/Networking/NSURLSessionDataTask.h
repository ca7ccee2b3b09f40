#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <Foundation/NSURLRequest.h>
#include <Networking/AFHTTPResponseSerializer.h>
#include <Networking/NSHTTPURLResponse.h>

#include <cstdint>
#include <functional>
#include <string>

namespace flarebox {

enum NSURLSessionTaskState : int {
    NSURLSessionTaskStateRunning = 0,
    /// Not yet resumed.
    NSURLSessionTaskStateSuspended = 1,
    /// Cancelled; the completion is still to be called.
    NSURLSessionTaskStateCanceling = 2,
    NSURLSessionTaskStateCompleted = 3,
};

/// One request and what becomes of it. Made by a session manager; lives, once resumed, until its completion has been
/// called, whoever else holds it. Main thread; `resume` and `cancel` called elsewhere take effect there at its next
/// turn.
class FLAREBOX_EXPORT NSURLSessionDataTask : public NSObject {
    FLAREBOX_CLASS(NSURLSessionDataTask)
public:
    /// Called on the main queue, exactly once for a task that was resumed or cancelled, unless a shutdown comes first.
    /// `response` is null when none arrived; `responseObject` is absent with an error.
    using Completion = std::function<void(const Ref<NSHTTPURLResponse>& response, const Value& responseObject,
                                          const Ref<NSError>& error)>;

    /// What a manager lays down for its tasks.
    struct Settings {
        Ref<AFHTTPResponseSerializer> responseSerializer;
        std::uint64_t maximumResponseLength;
        std::string certificateAuthorityFile, pinnedPublicKeys;
        /// Where the body goes; asked on the main thread when the task is resumed. Null: to the serializer.
        std::function<std::string()> destination;
    };

    NSURLSessionDataTask(Ref<NSURLRequest> request, Settings settings, Completion completion);
    ~NSURLSessionDataTask() override;

    /// Null when the task was made without a request.
    const Ref<NSURLRequest>& originalRequest() const { return request_; }
    NSURLSessionTaskState state() const { return state_; }

    /// Starts the task; a task that has been started or cancelled is left alone.
    void resume();
    /// Ends the task with the error NSURLErrorCancelled; nothing happens to one that has completed.
    void cancel();

private:
    struct Outcome {
        Ref<NSHTTPURLResponse> response;
        Value object;
        Ref<NSError> error;
    };
    struct InFlight;
    using Identifier = std::uint64_t;

    static InFlight& inFlight();
    static void finish(Identifier identifier, Outcome outcome);
    static void finishSoon(Identifier identifier, Outcome outcome);
    static Outcome decode(const AFHTTPResponseSerializer& serializer, const std::string& file,
                          const struct TransferResult& result);

    void enterFlight();
    void startTransfer();
    Ref<NSError> openDestination(struct TransferRequest& transfer) const;
    void complete(Outcome outcome);
    std::string address() const;

    Ref<NSURLRequest> request_;
    Settings settings_;
    Completion completion_;
    NSURLSessionTaskState state_ = NSURLSessionTaskStateSuspended;
    Identifier identifier_ = 0;
    std::uint64_t transfer_ = 0;
};

}  // namespace flarebox
