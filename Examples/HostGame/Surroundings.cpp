#include "Surroundings.h"

#include <AdSupport/ASIdentifierManager.h>
#include <Flarebox/Core/FlareboxBundle.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSProcessInfo.h>
#include <Foundation/NSUserDefaults.h>
#include <Networking/AFNetworkReachabilityManager.h>
#include <UIKit/UIApplication.h>

#include <cstdio>

#include <stdlib.h>

namespace flarebox::hostgame {
namespace {

bool isOnThisMachine(const std::string& url) {
    const std::string host = NSURL::URLWithString(url).host();
    return host == "localhost" || host == "::1" || host == "[::1]" || host.starts_with("127.");
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    std::error_code error;
    std::string pattern = (std::filesystem::temp_directory_path(error) / "flarebox-hostgame-XXXXXX").string();
    if (!error && mkdtemp(pattern.data())) path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
}

void ReportingAssertionHandler::handleFailure(std::string_view, std::string_view, int, std::string_view description) {
    std::fprintf(stderr, "flarebox-hostgame: %s\n", std::string(description).c_str());
}

Surroundings::~Surroundings() {
    NSAssertionHandler::setCurrentHandler(nullptr);
    UIApplication::sharedApplication().setUrlOpener(nullptr);
    if (clock_) Clock::setCurrent(nullptr);
}

std::string Surroundings::prepare(const Options& options) {
    NSAssertionHandler::setCurrentHandler(&assertions_);
    if (options.hasVirtualClock) {
        clock_ = std::make_unique<VirtualClock>();
        Clock::setCurrent(clock_.get());
    }
    if (options.isHeadless) {
        links_ = std::make_shared<RecordingUrlOpener>();
        for (const std::string& scheme : options.schemes) links_->addScheme(scheme);
        UIApplication::sharedApplication().setUrlOpener(links_);
    }
    for (auto step : {&Surroundings::prepareFiles, &Surroundings::prepareDevice, &Surroundings::prepareService}) {
        if (std::string error = (this->*step)(options); !error.empty()) return error;
    }
    prepareNetwork(options);
    return {};
}

// A headless run is a test or a demonstration: it leaves the player's own files alone unless it is told which to use.
std::string Surroundings::prepareFiles(const Options& options) {
    NSProcessInfo::processInfo().setProcessName("flarebox-hostgame");
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    if (options.defaults && !defaults.setFile(*options.defaults)) {
        const Ref<NSError> error = defaults.lastError();
        return error ? error->localizedDescription() : "cannot read " + *options.defaults;
    }
    if (!options.defaults && options.isHeadless) defaults.setFile("");

    if (options.documents) {
        NSFileManager::defaultManager().setDocumentsDirectory(*options.documents);
    } else if (options.isHeadless) {
        folder_ = std::make_unique<TemporaryFolder>();
        if (folder_->path().empty()) return "cannot make a temporary folder";
        NSFileManager::defaultManager().setDocumentsDirectory((folder_->path() / "Documents").string());
    }
    return {};
}

std::string Surroundings::prepareDevice(const Options& options) {
    ASIdentifierManager& manager = ASIdentifierManager::sharedManager();
    if (options.isTrackingEnabled) manager.setAdvertisingTrackingEnabled(*options.isTrackingEnabled);
    if (options.advertisingIdentifier)
        manager.setAdvertisingIdentifier(NSUUID::UUIDWithString(*options.advertisingIdentifier));
    return {};
}

std::string Surroundings::prepareService(const Options& options) {
    if (!options.apiURL && !service_.start()) return "cannot start the local service";
    apiURL_ = options.apiURL.value_or(service_.baseURL());
    flareboxBundle().setInfoDictionaryValue("API_URL", apiURL_);
    return {};
}

void Surroundings::prepareNetwork(const Options& options) {
    if (options.network) return setNetworkStatus(*options.network);
    if (!isOnThisMachine(apiURL_)) return;
    // A service on this machine is reached without any network.
    AFNetworkReachabilityManager::sharedManager().setMonitor(
        NetworkMonitor::systemMonitor(NetworkMonitor::Loopback::Counts));
}

void Surroundings::setNetworkStatus(std::int64_t number) {
    const auto status = static_cast<AFNetworkReachabilityStatus>(number);
    if (monitor_) return monitor_->setStatus(status);
    monitor_ = make<ManualNetworkMonitor>(status);
    AFNetworkReachabilityManager::sharedManager().setMonitor(monitor_);
}

std::vector<std::string> Surroundings::openedURLs() const {
    return links_ ? links_->openedURLs() : std::vector<std::string>();
}

}  // namespace flarebox::hostgame
