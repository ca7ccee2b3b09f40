#pragma once

#include <Networking/Backend/Curl/CurlHandles.h>
#include <Networking/Backend/Curl/TransferQueue.h>
#include <Networking/Transport.h>

#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

namespace flarebox {

class CurlTransfer;

/// The network thread: from its construction to its destruction, which joins it.
/// The public operations may be called on any thread, everything else belongs to the network thread.
class TransferLoop {
public:
    using Identifier = Transport::Identifier;

    TransferLoop();
    ~TransferLoop();
    TransferLoop(const TransferLoop&) = delete;
    TransferLoop& operator=(const TransferLoop&) = delete;

    void start(Identifier identifier, TransferRequest request, Transport::Completion completion);
    void watch(Identifier identifier, std::unique_ptr<Transport::Watch> watch);
    /// Ends a transfer or a watch.
    void end(Identifier identifier);

private:
    struct NewWatch {
        Identifier identifier;
        std::unique_ptr<Transport::Watch> watch;
    };
    /// What other threads have asked for since the last look.
    struct Orders {
        std::vector<TransferQueue::Entry> transfers;
        std::vector<NewWatch> watches;
        std::vector<Identifier> ends;
        bool stop = false;
    };
    using Transfers = std::unordered_map<Identifier, std::unique_ptr<CurlTransfer>>;

    template <class Change>
    void order(Change change);
    void run();
    Orders takeOrders();
    void follow(Orders orders);
    void beginWaiting();
    void begin(TransferQueue::Entry entry);
    void finish(Identifier identifier, CURLcode code);
    /// Both tell whether there were any.
    bool finishEnded();
    bool finishIdle();
    void waitForEvents();
    int millisecondsToWait() const;
    void release(std::unique_ptr<CurlTransfer> transfer);
    EasyHandle takeSpareHandle();

    std::mutex mutex_;
    Orders orders_;

    MultiHandle multi_;
    std::string noProxy_;
    TransferQueue queue_;
    Transfers transfers_;
    std::unordered_map<CURL*, Identifier> identifiers_;
    std::unordered_map<Identifier, std::unique_ptr<Transport::Watch>> watches_;
    std::vector<curl_waitfd> descriptors_;
    std::vector<EasyHandle> spareHandles_;
    std::thread thread_;
};

}  // namespace flarebox
