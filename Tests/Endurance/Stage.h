#pragma once

#include <Examples/Service/Service.h>
#include <Flarebox/Flarebox.h>
#include <Foundation/Clock.h>
#include <Host/Headless/HeadlessHost.h>
#include <Networking/NetworkMonitor.h>
#include <Tests/Support/TemporaryDirectory.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace flarebox::endurance {

/// The service that every stage of this process plays against.
examples::Service& sharedService();

/// A host without a screen with one tab, and somebody who does with both whatever a host, a player, a network and a
/// service may do, at random.
class Stage {
public:
    /// Time passes by hand, or by itself. `serviceURL` is that of another process's service; empty for the shared one.
    enum class Time : std::uint8_t { Virtual, Real };
    explicit Stage(std::uint32_t seed, Time time = Time::Virtual, const std::string& serviceURL = {});
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    /// What comes to mind next.
    void act();
    /// The network goes away for a moment or a while, or comes back; the service behaves differently.
    void disturb();
    /// Everything out there works again.
    void heal();
    /// So many frames, with virtual time passing between them.
    void frames(int count);
    /// Frames without virtual time until the condition holds; false when that takes `seconds`.
    bool settle(const std::function<bool()>& condition, double seconds = 60);
    bool settleIdle(double seconds = 60);
    /// Takes host and tab down in a random order, with whatever is under way, and looks for what should not be left.
    /// Empty when all is well.
    std::string end();

    /// Attaches the tab and waits until it shows its first asset.
    bool showLoadedTab();
    void selectAsset(std::size_t index);
    /// Shows the asset in every mode, drawing so many frames of each; the tab is left in the last.
    void showInAllModes(std::size_t asset, int frameCount);
    std::string documents() const { return documents_.path(); }
    std::size_t below(std::size_t count) { return count ? random_() % count : 0; }
    bool once(std::size_t in) { return below(in) == 0; }
    template <class T = UIView>
    T* field(std::string_view name) const {
        const Outlet* outlet = FlareboxView::staticClass().outlet(name);
        return outlet && tab ? objectCast<T>(outlet->get(*tab)) : nullptr;
    }

    VirtualClock clock;
    std::unique_ptr<HeadlessHost> host;
    Ref<FlareboxView> tab;
    /// What is drawn on a thread and in a context of its own costs a host its first second.
    bool has3D = true;

private:
    void callTab();
    void look();
    void touch();
    void play();
    void replaceTab();
    void ask();
    std::function<void()> counted();
    void takeDown();

    Time time_;
    std::mt19937 random_;
    testing::TemporaryDirectory documents_, settings_;
    Ref<ManualNetworkMonitor> network_;
    std::vector<Weak<FlareboxView>> tabs_;
    struct Calls {
        bool isOver = false;
        int late = 0;
    };
    std::shared_ptr<Calls> calls_ = std::make_shared<Calls>();
};

}  // namespace flarebox::endurance
