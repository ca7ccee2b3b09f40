#include <Benchmarks/Wire/KitClient.h>
#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Managers/FlareboxManager.h>
#include <Foundation/Clock.h>
#include <Foundation/MainQueue.h>

#include <utility>

namespace flarebox::benchmarks {

Ref<FXEngagementData> sampleEvent() {
    const Ref<FXEngagementData> event = FXEngagementData::init();
    event->setAction("click");
    event->setAdvertiser("advertiser-5021");
    event->setAsset("3f1c0d52-8f7e-4a39-9d0b-5b6d1f9c2a11");
    event->setCampaign("autumn-tour");
    event->setDesktop("1");
    event->setDeveloper("developer-77");
    event->setDeviceId("00000000-0000-0000-0000-000000000000");
    event->setDuration("12.5");
    event->setGame("7d9d2f3e-0d4f-4c41-8c3f-0e6f4a1b2c3d");
    event->setGeneric("0");
    event->setIpAddr("127.0.0.1");
    event->setMobile("0");
    event->setSession("b52f6a0c-6c59-4f5d-a1a5-7f0f3f1f9e10");
    event->setVersion("1.4.2");
    return event;
}

KitClient::KitClient(const std::string& baseURL, Host host) : baseURL_(baseURL), kind_(host), host_({1366, 1024}, 1) {
    flareboxBundle().setInfoDictionaryValue("API_URL", baseURL);
    if (host == Host::CallsAgainAtOnce) return;
    MainQueue::shared().setWakeUp([this] {
        {
            std::lock_guard lock(mutex_);
            wakeUp_ = true;
        }
        // Without the lock: whoever wakes would have to wait for it.
        woken_.notify_one();
    });
}

KitClient::~KitClient() {
    MainQueue::shared().setWakeUp(nullptr);
}

void KitClient::sleep() {
    std::unique_lock lock(mutex_);
    woken_.wait(lock, [this] { return wakeUp_; });
    wakeUp_ = false;
}

void KitClient::pumpUntil(const bool& done) {
    while (!done) {
        host_.update();
        if (!done && kind_ == Host::SleepsUntilWoken && !MainQueue::shared().hasDueWork()) sleep();
    }
}

std::vector<double> KitClient::reportEvents(int count) {
    std::vector<double> durations;
    durations.reserve(static_cast<std::size_t>(count));
    const Ref<FXEngagementData> event = sampleEvent();
    for (int number = 0; number < count; ++number) {
        bool done = false;
        const double start = Clock::real().uptime();
        FlareboxManager::sharedInstance().sendEngagement(event, [&](const Ref<NSError>& error) {
            durations.push_back(Clock::real().uptime() - start);
            require(!error, "an event was not reported");
            done = true;
        });
        pumpUntil(done);
    }
    return durations;
}

void KitClient::runAtOnce(int count, int inFlight, const std::function<void(int, Completion)>& start) {
    int started = 0, completed = 0;
    bool done = false;
    Completion next = [&](bool succeeded) {
        require(succeeded, "an exchange failed");
        done = ++completed == count;
        if (started < count) start(started++, std::cref(next));
    };
    while (started < inFlight) start(started++, std::cref(next));
    pumpUntil(done);
}

void KitClient::reportEventsAtOnce(int count, int inFlight) {
    const Ref<FXEngagementData> event = sampleEvent();
    runAtOnce(count, inFlight, [&](int, Completion completion) {
        FlareboxManager::sharedInstance().sendEngagement(
            event, [completion = std::move(completion)](const Ref<NSError>& error) { completion(!error); });
    });
}

void KitClient::downloadModels(int count, int inFlight, const std::string& folder) {
    const auto manager = AFURLSessionManager::manager();
    runAtOnce(count, inFlight, [&](int number, Completion completion) {
        const std::string name = std::to_string(number);
        const auto request = NSURLRequest::requestWithURL(NSURL::URLWithString(baseURL_ + "/models/" + name));
        manager
            ->downloadTaskWithRequest(
                request, [path = folder + "/" + name] { return path; },
                [completion = std::move(completion)](const Ref<NSHTTPURLResponse>&, const Value&,
                                                     const Ref<NSError>& error) { completion(!error); })
            ->resume();
    });
}

}  // namespace flarebox::benchmarks
