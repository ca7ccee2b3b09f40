#include <Networking/Backend/Curl/TransferLoop.h>

#include <Foundation/Clock.h>
#include <Networking/Backend/Curl/CurlTransfer.h>

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace flarebox {

namespace {

constexpr long keptConnections = 16;
constexpr std::size_t keptHandles = 16;
constexpr double longestWait = 60;

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
    thread_ = std::thread([this] { run(); });
}

TransferLoop::~TransferLoop() {
    order([](Orders& orders) { orders.stop = true; });
    thread_.join();
}

template <class Change>
void TransferLoop::order(Change change) {
    {
        std::lock_guard lock(mutex_);
        change(orders_);
    }
    curl_multi_wakeup(multi_.get());
}

void TransferLoop::start(Identifier identifier, TransferRequest request, Transport::Completion completion) {
    order([&](Orders& orders) { orders.transfers.push_back({identifier, std::move(request), std::move(completion)}); });
}

void TransferLoop::watch(Identifier identifier, std::unique_ptr<Transport::Watch> watch) {
    order([&](Orders& orders) { orders.watches.push_back({identifier, std::move(watch)}); });
}

void TransferLoop::end(Identifier identifier) {
    order([&](Orders& orders) { orders.ends.push_back(identifier); });
}

void TransferLoop::run() {
    pthread_setname_np(pthread_self(), "flarebox-net");
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);

    for (Orders orders = takeOrders(); !orders.stop; orders = takeOrders()) {
        follow(std::move(orders));
        beginWaiting();
        int running = 0;
        curl_multi_perform(multi_.get(), &running);
        const bool ended = finishEnded();
        const bool timedOut = finishIdle();
        if (!ended && !timedOut) waitForEvents();
    }
    for (auto& [identifier, transfer] : transfers_) curl_multi_remove_handle(multi_.get(), transfer->handle());
    transfers_.clear();
    watches_.clear();
}

TransferLoop::Orders TransferLoop::takeOrders() {
    std::lock_guard lock(mutex_);
    return std::exchange(orders_, {});
}

void TransferLoop::follow(Orders orders) {
    for (auto& transfer : orders.transfers) queue_.add(std::move(transfer));
    for (auto& [identifier, watch] : orders.watches) {
        watch->readable();
        watches_.emplace(identifier, std::move(watch));
    }
    for (Identifier identifier : orders.ends) {
        watches_.erase(identifier);
        queue_.remove(identifier);
        if (auto transfer = transfers_.extract(identifier)) release(std::move(transfer.mapped()));
    }
}

void TransferLoop::beginWaiting() {
    while (auto entry = queue_.takeNext()) begin(std::move(*entry));
}

void TransferLoop::begin(TransferQueue::Entry entry) {
    auto transfer = std::make_unique<CurlTransfer>(takeSpareHandle(), std::move(entry.request),
                                                   std::move(entry.completion), noProxy_);
    CURL* handle = transfer->handle();
    identifiers_[handle] = entry.identifier;
    transfers_[entry.identifier] = std::move(transfer);
    if (curl_multi_add_handle(multi_.get(), handle) != CURLM_OK) finish(entry.identifier, CURLE_FAILED_INIT);
}

void TransferLoop::finish(Identifier identifier, CURLcode code) {
    auto transfer = transfers_.extract(identifier);
    if (!transfer) return;
    transfer.mapped()->completeWith(code);
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

bool TransferLoop::finishIdle() {
    const double now = Clock::real().uptime();
    std::vector<Identifier> idle;
    for (auto& [identifier, transfer] : transfers_) {
        if (transfer->deadline() <= now) idle.push_back(identifier);
    }
    for (Identifier identifier : idle) finish(identifier, CURLE_OPERATION_TIMEDOUT);
    return !idle.empty();
}

int TransferLoop::millisecondsToWait() const {
    double wait = longestWait;
    const double now = Clock::real().uptime();
    for (auto& [identifier, transfer] : transfers_) wait = std::min(wait, transfer->deadline() - now);
    return static_cast<int>(std::ceil(std::max(wait, 0.0) * 1000));
}

void TransferLoop::waitForEvents() {
    descriptors_.clear();
    for (auto& [identifier, watch] : watches_) {
        descriptors_.push_back({watch->descriptor(), CURL_WAIT_POLLIN, 0});
    }
    curl_multi_poll(multi_.get(), descriptors_.data(), static_cast<unsigned>(descriptors_.size()), millisecondsToWait(),
                    nullptr);
    for (auto& descriptor : descriptors_) {
        if (!descriptor.revents) continue;
        for (auto& [identifier, watch] : watches_) {
            if (watch->descriptor() == descriptor.fd) watch->readable();
        }
    }
}

void TransferLoop::release(std::unique_ptr<CurlTransfer> transfer) {
    queue_.ended(transfer->url(), transfer->isMultiplexed());
    curl_multi_remove_handle(multi_.get(), transfer->handle());
    identifiers_.erase(transfer->handle());
    if (spareHandles_.size() < keptHandles) spareHandles_.push_back(transfer->takeHandle());
}

EasyHandle TransferLoop::takeSpareHandle() {
    if (spareHandles_.empty()) return EasyHandle(curl_easy_init());
    EasyHandle handle = std::move(spareHandles_.back());
    spareHandles_.pop_back();
    return handle;
}

}  // namespace flarebox
