#include <Networking/Transport.h>

#include <Foundation/Immortal.h>
#include <Foundation/Shutdown.h>
#include <Networking/Backend/Curl/TransferLoop.h>

namespace flarebox {

Transport& Transport::shared() {
    static detail::Immortal<Transport> transport;
    return *transport;
}

TransferLoop& Transport::loop() {
    if (!loop_) {
        loop_ = std::make_unique<TransferLoop>();
        Shutdown::addHandler([this] { loop_.reset(); });
    }
    return *loop_;
}

Transport::Identifier Transport::start(TransferRequest request, Completion completion) {
    loop().start(next_, std::move(request), std::move(completion));
    return next_++;
}

void Transport::cancel(Identifier transfer) {
    if (loop_) loop_->end(transfer);
}

Transport::Identifier Transport::watch(std::unique_ptr<Watch> watch) {
    loop().watch(next_, std::move(watch));
    return next_++;
}

void Transport::unwatch(Identifier watch) {
    if (loop_) loop_->end(watch);
}

}  // namespace flarebox
