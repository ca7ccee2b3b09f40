#pragma once

#include <Examples/Service/Service.h>
#include <Flarebox/Flarebox.h>
#include <Foundation/Clock.h>
#include <Networking/AFNetworkReachabilityManager.h>
#include <UIKit/Compositor.h>
#include <UIKit/UIHost.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

namespace flarebox::benchmarks {

/// Counts what a renderer would be asked to do.
class QuadCounter : public Compositor {
public:
    std::size_t quads = 0, textures = 0;

    TextureId createTexture(int, int) override { return ++lastTexture_; }
    void updateTexture(TextureId, const PixelRect&, const std::uint32_t*, int) override { ++textures; }
    void destroyTexture(TextureId) override {}
    void drawQuad(const TexturedQuad&) override { ++quads; }

private:
    TextureId lastTexture_ = 0;
};

/// The tab of the kit in a host without a screen, 1366 x 1024 points at scale 2, on a clock moved by hand: a list
/// loaded from a service on loopback, all pictures at hand, nothing under way.
class Panel {
public:
    static constexpr CGSize landscape = {1366, 1024}, portrait = {1024, 1366};
    static constexpr double frameTime = 1.0 / 60;

    /// Attached, closed, its first asset shown. Ends the process when that cannot be had.
    explicit Panel(std::size_t assets);
    ~Panel();
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;

    FlareboxView& tab() { return *tab_; }
    UIHost& host() { return *host_; }
    QuadCounter& compositor() { return compositor_; }
    template <class T>
    T& field(std::string_view name) {
        return dynamic_cast<T&>(*FlareboxView::staticClass().outlet(name)->get(*tab_));
    }

    /// What a host does each frame, apart from its own picture.
    void update();
    void draw() { host_->draw(compositor_); }
    void frame() {
        update();
        draw();
    }
    void advanceClock() { clock_.advance(frameTime); }
    /// Frames until nothing moves and nothing is left to draw.
    void rest();
    /// Opens the tab and waits until it has come to rest.
    void open();
    /// Throws the list with a finger; positive towards its end. It glides on from then on.
    void throwList(double pointsPerSecond);

private:
    void settle(const std::function<bool()>& condition);

    VirtualClock clock_;
    Ref<ManualNetworkMonitor> network_;
    std::unique_ptr<UIHost> host_;
    QuadCounter compositor_;
    Ref<FlareboxView> tab_;
};

}  // namespace flarebox::benchmarks
