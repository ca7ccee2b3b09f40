#pragma once

#include <Benchmarks/Wire/Client.h>
#include <Flarebox/Models/FXEngagementData.h>
#include <UIKit/UIHost.h>

#include <condition_variable>
#include <functional>
#include <mutex>

namespace flarebox::benchmarks {

/// The event that both clients report.
Ref<FXEngagementData> sampleEvent();

/// The product: the service client for events, its session manager for models, under a host.
class KitClient : public Client {
public:
    /// How the host spends the time between two calls of `update`.
    enum class Host { CallsAgainAtOnce, SleepsUntilWoken };

    /// The service client reads its address once: one base address a process.
    KitClient(const std::string& baseURL, Host host);
    ~KitClient() override;

    std::vector<double> reportEvents(int count) override;
    void reportEventsAtOnce(int count, int inFlight) override;
    void downloadModels(int count, int inFlight, const std::string& folder) override;

private:
    void pumpUntil(const bool& done);
    void sleep();
    /// Runs `count` exchanges, so many at once; `start(n, completion)` starts the nth.
    using Completion = std::function<void(bool succeeded)>;
    void runAtOnce(int count, int inFlight, const std::function<void(int, Completion)>& start);

    std::string baseURL_;
    Host kind_;
    UIHost host_;
    std::mutex mutex_;
    std::condition_variable woken_;
    bool wakeUp_ = false;
};

}  // namespace flarebox::benchmarks
