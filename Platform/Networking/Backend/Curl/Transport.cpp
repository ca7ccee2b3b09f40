#include <Networking/Transport.h>

#include <Foundation/Immortal.h>
#include <Foundation/Shutdown.h>
#include <Networking/Backend/Curl/TransferLoop.h>
#include <Networking/NetworkError.h>

#include <utility>

namespace flarebox {

Transport& Transport::shared() {
    static detail::Immortal<Transport> transport;
    return *transport;
}

TransferLoop* Transport::loop() {
    if (loop_) return loop_.get();
    auto loop = std::make_unique<TransferLoop>();
    if (!loop->isRunning()) return nullptr;
    loop_ = std::move(loop);
    Shutdown::addHandler([this] { loop_.reset(); });
    return loop_.get();
}

Transport::Identifier Transport::start(TransferRequest request, Completion completion) {
    if (TransferLoop* const running = loop()) {
        running->start(next_, std::move(request), std::move(completion));
    } else {
        TransferResult result;
        result.error = networkError(NSURLErrorCannotConnectToHost,
                                    "The system gives no thread or no files for the network.", request.url);
        completion(std::move(result));
    }
    return next_++;
}

void Transport::cancel(Identifier transfer) {
    if (loop_) loop_->end(transfer);
}

Transport::Identifier Transport::watch(std::unique_ptr<Watch> watch) {
    if (TransferLoop* const running = loop())
        running->watch(next_, std::move(watch));
    else
        watch->readable();
    return next_++;
}

void Transport::unwatch(Identifier watch) {
    if (loop_) loop_->end(watch);
}

}  // namespace flarebox
