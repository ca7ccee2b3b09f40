#pragma once

#include <Benchmarks/Wire/Client.h>

#include <curl/curl.h>

#include <cstdio>
#include <memory>
#include <utility>

namespace flarebox::benchmarks {

/// An event as names and values.
using PlainEvent = std::vector<std::pair<std::string, std::string>>;

/// The peer: the library used directly, by hand, as its own examples do, on the caller's thread. Each event is written
/// as JSON by code made for it alone; what it receives is not decoded.
class CurlClient : public Client {
public:
    CurlClient(std::string baseURL, PlainEvent event);
    ~CurlClient() override;

    std::vector<double> reportEvents(int count) override;
    void reportEventsAtOnce(int count, int inFlight) override;
    void downloadModels(int count, int inFlight, const std::string& folder) override;

private:
    template <auto Function>
    struct Calling {
        template <class T>
        void operator()(T* handle) const {
            Function(handle);
        }
    };
    using Easy = std::unique_ptr<CURL, Calling<curl_easy_cleanup>>;
    using Multi = std::unique_ptr<CURLM, Calling<curl_multi_cleanup>>;
    using Lines = std::unique_ptr<curl_slist, Calling<curl_slist_free_all>>;
    using File = std::unique_ptr<std::FILE, Calling<std::fclose>>;

    /// A handle and what its transfer receives.
    struct Transfer {
        Easy easy;
        std::string body;
        std::string answer;
        File file;
    };

    static std::vector<std::unique_ptr<Transfer>> makeTransfers(int count);
    void prepareEvent(Transfer& transfer) const;
    void downloadOneByOne(int count, const std::string& folder);
    void prepareDownload(Transfer& transfer, int number, const std::string& folder) const;
    /// Runs `count` transfers on as many handles as there are in `transfers`; `next(transfer, n)` prepares the nth.
    template <class Next>
    void runAtOnce(Multi& multi, std::vector<std::unique_ptr<Transfer>>& transfers, int count, const Next& next);

    std::string baseURL_;
    PlainEvent event_;
    Lines fields_;
    /// For one transfer after the other: it keeps its connection.
    Transfer sequential_;
    Multi events_;
    Multi models_;
};

}  // namespace flarebox::benchmarks
