#pragma once

#include <Fuzz/Support/ByteSource.h>

#include <Flarebox/Flarebox.h>
#include <Foundation/Clock.h>
#include <Host/Headless/HeadlessHost.h>
#include <Networking/NetworkMonitor.h>
#include <Tests/Support/TemporaryDirectory.h>

#include <memory>

namespace flarebox::fuzz {

/// A host without a screen with one tab, a clock that is moved by hand, and a service whose answers change.
class Stage {
public:
    Stage();
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    /// Somewhere on the screen or a little beside it.
    CGPoint point(ByteSource& source) const;
    /// Touches one of the tab's buttons.
    void tap(ByteSource& source);
    /// The host lets its tab go and makes another.
    void replaceTab();
    void restartCountdown() { isCountdownNew = true; }
    /// Runs frames, without any time passing, until nothing is under way.
    void settle();
    /// The network, the service, the screen, the settings.
    void changeSurroundings(ByteSource& source);
    /// Takes everything down and checks that nothing of it stays.
    void end();

    UIWindow& window() const;
    template <class T = UIView>
    T* field(std::string_view name) const {
        const Outlet* outlet = FlareboxView::staticClass().outlet(name);
        return outlet ? objectCast<T>(outlet->get(*tab)) : nullptr;
    }

    VirtualClock clock;
    std::unique_ptr<HeadlessHost> host;
    Ref<FlareboxView> tab;
    /// Whether the countdown was started anew by the last step.
    bool isCountdownNew = true;

private:
    testing::TemporaryDirectory documents_;
    Ref<ManualNetworkMonitor> network_;
    CGSize screen_{667, 375};
};

}  // namespace flarebox::fuzz
