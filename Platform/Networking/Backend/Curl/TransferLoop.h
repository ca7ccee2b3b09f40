#pragma once

#include <Foundation/Thread.h>
#include <Networking/Backend/Curl/CurlHandles.h>
#include <Networking/Backend/Curl/CurlSockets.h>
#include <Networking/Backend/Curl/CurlTransfer.h>
#include <Networking/Backend/Curl/TransferQueue.h>
#include <Networking/Backend/Epoll/EventSet.h>
#include <Networking/Transport.h>

#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace flarebox {

/// The transfers and the thread that carries them on: from its construction to its destruction, which joins it.
/// The public operations may be called on any thread. What the library is told and tells happens under one lock, which
/// the thread lets go of while it sleeps: so a request that needs no preparation leaves at once on the caller's thread,
/// without waiting for another one to be woken.
class TransferLoop {
public:
    using Identifier = Transport::Identifier;

    TransferLoop();
    ~TransferLoop();
    TransferLoop(const TransferLoop&) = delete;
    TransferLoop& operator=(const TransferLoop&) = delete;

    /// Whether the system gave what it takes. Without, nothing else may be called.
    bool isRunning() const { return thread_.isRunning(); }

    /// Never waits for the network thread.
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

        bool areEmpty() const { return transfers.empty() && watches.empty() && ends.empty() && !stop; }
    };
    using Transfers = std::unordered_map<Identifier, std::unique_ptr<CurlTransfer>>;

    template <class Change>
    void order(Change change);
    Orders takeOrders();
    bool leavesQuickly(const TransferRequest& request) const;

    void run();
    const std::vector<EventSet::Event>& waitForEvents();
    bool work(const std::vector<EventSet::Event>& events);
    static void complete(std::vector<CurlTransfer::Ended> ended);
    void follow(Orders orders);
    void handle(const EventSet::Event& event);
    /// Begins what may begin and finishes what has ended, until neither is left.
    void proceed();
    void begin(TransferQueue::Entry entry);
    void finish(Identifier identifier, CURLcode code);
    /// Whether there were any.
    bool finishEnded();
    void finishIdle();
    void setAlarm();
    void release(std::unique_ptr<CurlTransfer> transfer);

    std::mutex ordersMutex_;
    Orders orders_;
    /// Whether the network thread has to be woken to see an order.
    bool asleep_ = false;
    EventSet events_;

    /// Guards everything from here on, except against the thread's beginning and end.
    std::mutex mutex_;
    CurlSockets sockets_{events_};
    MultiHandle multi_;
    std::string noProxy_;
    TransferQueue queue_;
    Transfers transfers_;
    std::unordered_map<CURL*, Identifier> identifiers_;
    std::unordered_map<Identifier, std::unique_ptr<Transport::Watch>> watches_;
    /// What is completed once the lock is let go of: whoever learns of an answer may want to send again at once.
    std::vector<CurlTransfer::Ended> ended_;
    Thread thread_;
};

}  // namespace flarebox
