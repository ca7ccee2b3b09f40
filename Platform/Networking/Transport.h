#pragma once

#include <Foundation/AtomicFile.h>
#include <Foundation/NSError.h>
#include <Foundation/NSURLRequest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace flarebox {

class TransferLoop;
namespace detail {
template <class T>
class Immortal;
}

/// One exchange, as it goes over the wire. Address, method and fields have been checked.
struct TransferRequest {
    std::string url;
    std::string method;
    HeaderFields fields;
    NSData body;
    /// Seconds without a byte after which the transfer fails; 0 for the default.
    double idleTimeout = 0;
    /// Where the body of a successful answer goes, as it arrives; null: into the result. Committed before the
    /// completion.
    std::shared_ptr<AtomicFile> file;
    /// Bytes of the answer's body, decompressed, beyond which the transfer fails.
    std::uint64_t maximumBodyLength = 0;
    /// File with the certificates (PEM) to trust; empty for those of the system.
    std::string certificateAuthorityFile;
    /// The keys that a server may have, as "sha256//…;sha256//…"; empty for any that is certified.
    std::string pinnedPublicKeys;
};

/// What came of it: an error, or an answer of whatever status.
struct TransferResult {
    Ref<NSError> error;
    /// The address that answered, after redirects. The same holds for status and fields; fields of one name are joined.
    std::string url;
    int status = 0;
    HeaderFields fields;
    /// Absent where the body went to a file.
    NSData body;
};

/// The one thread on which everything of the network happens, but for a short request with a body to a server that
/// answers already and is at rest: that one leaves at once, on the main thread, unless the network thread is busy. It
/// starts with the first use, is joined by Shutdown::run() within milliseconds whatever the servers do, and starts
/// again when used after that.
class Transport {
public:
    using Identifier = std::uint64_t;
    /// Runs once, on the network thread, or on the main thread within `start` when the transfer fails at once, and
    /// never after the shutdown. It must not use the transport. A transfer that is cancelled at that very moment
    /// may still complete. Must be quick: every other transfer waits for it.
    using Completion = std::function<void(TransferResult)>;

    /// Something else that wants to know when a descriptor can be read, without a thread of its own.
    class Watch {
    public:
        virtual ~Watch() = default;
        virtual int descriptor() const = 0;
        /// Called once when the watch begins and whenever there is something to read. Network thread, like the
        /// destructor; without one the main thread.
        virtual void readable() = 0;
    };

    static constexpr double defaultIdleTimeout = 60;
    static constexpr int maximumRedirects = 5;
    /// Transfers to one host that run at once, and downloads to files beside them; more of them wait for their turn.
    static constexpr int connectionsPerHost = 6, downloadsPerHost = 64;

    static Transport& shared();

    /// Main thread, like all of these.
    Identifier start(TransferRequest request, Completion completion);
    /// Ends a transfer without its completion. An identifier of one that has ended is ignored.
    void cancel(Identifier transfer);

    /// Where the system gives no thread for it, the watch is told once, at once, and let go.
    Identifier watch(std::unique_ptr<Watch> watch);
    void unwatch(Identifier watch);

private:
    friend class detail::Immortal<Transport>;
    Transport() = default;
    ~Transport() = default;
    /// Started if need be; null when the system does not give what it takes.
    TransferLoop* loop();

    std::unique_ptr<TransferLoop> loop_;
    Identifier next_ = 1;
};

}  // namespace flarebox
