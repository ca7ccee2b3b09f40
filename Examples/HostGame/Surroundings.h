#pragma once

#include "Options.h"

#include <Examples/Service/Service.h>
#include <Foundation/Clock.h>
#include <Foundation/NSAssertionHandler.h>
#include <Networking/NetworkMonitor.h>
#include <UIKit/UrlOpener.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace flarebox::hostgame {

/// A folder that goes, with everything in it, when this object does.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    /// Empty when the folder could not be made.
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// Says what is missing and goes on, so that a game without a session or a game UID can be tried in any build.
class ReportingAssertionHandler : public NSAssertionHandler {
public:
    void handleFailure(std::string_view function, std::string_view file, int line,
                       std::string_view description) override;
};

/// What the kit finds around it in this process: service, files, clock, network, permissions. The options say what is
/// real and what is a stand-in. Outlives everything of the kit. Main thread.
class Surroundings {
public:
    Surroundings() = default;
    ~Surroundings();
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    /// Once, before the kit is used. Answers what went wrong; empty when nothing did.
    std::string prepare(const Options& options);

    /// Null with the machine's own clock.
    VirtualClock* virtualClock() const { return clock_.get(); }
    /// Replaces the machine's own network status from the first call on.
    void setNetworkStatus(std::int64_t status);
    /// Stopped where the game talks to another one.
    examples::Service& service() { return service_; }
    /// None where links go to the desktop.
    std::vector<std::string> openedURLs() const;

private:
    std::string prepareService(const Options& options);
    std::string prepareFiles(const Options& options);
    std::string prepareDevice(const Options& options);
    void prepareNetwork(const Options& options);

    ReportingAssertionHandler assertions_;
    std::unique_ptr<TemporaryFolder> folder_;
    std::unique_ptr<VirtualClock> clock_;
    examples::Service service_;
    std::string apiURL_;
    Ref<ManualNetworkMonitor> monitor_;
    std::shared_ptr<RecordingUrlOpener> links_;
};

}  // namespace flarebox::hostgame
