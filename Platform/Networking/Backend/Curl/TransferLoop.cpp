#include <Networking/Backend/Curl/TransferLoop.h>

#include <Foundation/Clock.h>
#include <Foundation/MainQueue.h>

#include <signal.h>
#include <sys/epoll.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace flarebox {

namespace {

constexpr long keptConnections = 16;
/// Copied into the kernel in some microseconds.
constexpr std::size_t quickBodyLength = 16 * 1024;

/// A service on the same machine is never asked through a proxy, whatever the environment says.
std::string hostsWithoutProxy() {
    const char* setting = std::getenv("no_proxy");
    if (!setting) setting = std::getenv("NO_PROXY");
    if (setting && std::string_view(setting) == "*") return setting;
    std::string hosts = "localhost,127.0.0.1,127.0.0.0/8,[::1]";
    if (setting && *setting) hosts.append(",").append(setting);
    return hosts;
}

void initialiseLibrary() {
    [[maybe_unused]] static const CURLcode once = curl_global_init(CURL_GLOBAL_DEFAULT);
}

}  // namespace

TransferLoop::TransferLoop() : noProxy_(hostsWithoutProxy()) {
    initialiseLibrary();
    multi_.reset(curl_multi_init());
    curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, keptConnections);
    sockets_.attachToMulti(multi_.get());
    static_cast<void>(events_.isUsable() && thread_.start("flarebox-net", [this] { run(); }));
}

TransferLoop::~TransferLoop() {
    if (isRunning()) order([](Orders& orders) { orders.stop = true; });
    thread_.join();
}

template <class Change>
void TransferLoop::order(Change change) {
    bool wasAsleep;
    {
        std::lock_guard lock(ordersMutex_);
        change(orders_);
        wasAsleep = std::exchange(asleep_, false);
    }
    if (wasAsleep) events_.wake();
}

void TransferLoop::start(Identifier identifier, TransferRequest request, Transport::Completion completion) {
    TransferQueue::Entry entry{identifier, std::move(request), std::move(completion)};
    if (std::unique_lock lock(mutex_, std::try_to_lock); lock && leavesQuickly(entry.request)) {
        queue_.add(std::move(entry));
        proceed();
        auto ended = std::exchange(ended_, {});
        lock.unlock();
        return complete(std::move(ended));
    }
    order([&](Orders& orders) { orders.transfers.push_back(std::move(entry)); });
}

bool TransferLoop::leavesQuickly(const TransferRequest& request) const {
    // A new connection takes look-ups and handshakes, and what is asked for without a body may come at once and be
    // long: none of it is for the caller's thread.
    const std::size_t length = request.body.length();
    return length > 0 && length <= quickBodyLength && queue_.isReadyAndIdle(request.url);
}

void TransferLoop::watch(Identifier identifier, std::unique_ptr<Transport::Watch> watch) {
    order([&](Orders& orders) { orders.watches.push_back({identifier, std::move(watch)}); });
}

void TransferLoop::end(Identifier identifier) {
    order([&](Orders& orders) { orders.ends.push_back(identifier); });
}

TransferLoop::Orders TransferLoop::takeOrders() {
    std::lock_guard lock(ordersMutex_);
    return std::exchange(orders_, {});
}

const std::vector<EventSet::Event>& TransferLoop::waitForEvents() {
    {
        std::lock_guard lock(ordersMutex_);
        asleep_ = orders_.areEmpty();
        if (!asleep_) return events_.look();
    }
    const auto& events = events_.wait();
    std::lock_guard lock(ordersMutex_);
    asleep_ = false;
    return events;
}

void TransferLoop::run() {
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);

    while (work(waitForEvents())) {
    }
    std::lock_guard lock(mutex_);
    for (auto& [identifier, transfer] : transfers_) curl_multi_remove_handle(multi_.get(), transfer->handle());
    transfers_.clear();
    watches_.clear();
}

bool TransferLoop::work(const std::vector<EventSet::Event>& events) {
    std::unique_lock lock(mutex_);
    Orders orders = takeOrders();
    if (orders.stop) return false;
    for (const EventSet::Event& event : events) handle(event);
    follow(std::move(orders));
    proceed();
    finishIdle();
    auto ended = std::exchange(ended_, {});
    lock.unlock();
    complete(std::move(ended));
    return true;
}

void TransferLoop::complete(std::vector<CurlTransfer::Ended> ended) {
    MainQueue::Batch together;
    for (auto& [completion, result] : ended) completion(std::move(result));
}

void TransferLoop::follow(Orders orders) {
    for (auto& transfer : orders.transfers) queue_.add(std::move(transfer));
    for (auto& [identifier, watch] : orders.watches) {
        events_.watch(watch->descriptor(), EPOLLIN);
        watch->readable();
        watches_.emplace(identifier, std::move(watch));
    }
    for (Identifier identifier : orders.ends) {
        watches_.erase(identifier);
        queue_.remove(identifier);
        if (auto transfer = transfers_.extract(identifier)) release(std::move(transfer.mapped()));
    }
}

void TransferLoop::handle(const EventSet::Event& event) {
    for (auto& [identifier, watch] : watches_) {
        if (watch->descriptor() == event.descriptor) return watch->readable();
    }
    sockets_.handle(event);
}

void TransferLoop::proceed() {
    do {
        while (auto entry = queue_.takeNext()) begin(std::move(*entry));
        sockets_.runTimer();
    } while (finishEnded());
    setAlarm();
}

void TransferLoop::begin(TransferQueue::Entry entry) {
    auto transfer = std::make_unique<CurlTransfer>(noProxy_, std::move(entry.request), std::move(entry.completion));
    CURL* handle = transfer->handle();
    sockets_.attachToEasy(handle);
    identifiers_[handle] = entry.identifier;
    transfers_[entry.identifier] = std::move(transfer);
    sockets_.endTalkative();
    if (curl_multi_add_handle(multi_.get(), handle) != CURLM_OK) finish(entry.identifier, CURLE_FAILED_INIT);
}

void TransferLoop::finish(Identifier identifier, CURLcode code) {
    auto transfer = transfers_.extract(identifier);
    if (!transfer) return;
    ended_.push_back(transfer.mapped()->endWith(code));
    release(std::move(transfer.mapped()));
}

bool TransferLoop::finishEnded() {
    bool any = false;
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
        auto identifier = identifiers_.find(message->easy_handle);
        if (message->msg != CURLMSG_DONE || identifier == identifiers_.end()) continue;
        finish(identifier->second, message->data.result);
        any = true;
    }
    return any;
}

void TransferLoop::finishIdle() {
    const double now = Clock::real().uptime();
    std::vector<Identifier> idle;
    for (auto& [identifier, transfer] : transfers_) {
        if (transfer->deadline() <= now) idle.push_back(identifier);
    }
    for (Identifier identifier : idle) finish(identifier, CURLE_OPERATION_TIMEDOUT);
    if (!idle.empty()) proceed();
}

void TransferLoop::setAlarm() {
    double next = sockets_.timer();
    for (auto& [identifier, transfer] : transfers_) next = std::min(next, transfer->deadline());
    events_.wakeBy(next);
}

void TransferLoop::release(std::unique_ptr<CurlTransfer> transfer) {
    using End = TransferQueue::End;
    const End answered = transfer->isMultiplexed() ? End::AnsweredMultiplexed : End::Answered;
    const TransferRequest& request = transfer->request();
    queue_.ended(request.url, TransferQueue::laneOf(request), transfer->hasAnswer() ? answered : End::Failed);
    curl_multi_remove_handle(multi_.get(), transfer->handle());
    identifiers_.erase(transfer->handle());
}

}  // namespace flarebox
