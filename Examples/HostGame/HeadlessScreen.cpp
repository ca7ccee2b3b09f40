#include "Scene/CanvasPainter.h"
#include "Screen.h"

#include <Foundation/Clock.h>
#include <Host/Headless/HeadlessHost.h>
#include <UIKit/BitmapCanvas.h>
#include <UIKit/Canvas.h>

namespace flarebox::hostgame {
namespace {

constexpr std::uint32_t opaqueBlack = 0xFF000000;

class HeadlessScreen : public Screen {
public:
    HeadlessScreen(CGSize size, CGFloat scale) : size_(size), scale_(scale), host_(size, scale) {}

    UIHost& host() override { return host_; }
    CGSize size() const override { return size_; }
    bool handleInput(World&) override { return true; }
    bool isWatched() const override { return false; }

    void resize(CGSize size) override {
        size_ = size;
        host_.setScreen(size, scale_);
    }

    double draw(const World& world) override {
        const double start = Clock::real().uptime();
        host_.setBackground([&](SoftwareCompositor& picture) {
            picture.clear(opaqueBlack);
            const auto canvas =
                makeBitmapCanvas(picture.pixels().data(), picture.width(), picture.height(), picture.width(), scale_);
            paint(pictureOf(world, size_), *canvas);
        });
        host_.drawFrame();
        host_.setBackground(nullptr);
        return Clock::real().uptime() - start;
    }

    void drawPanel() override {
        if (host_.needsDisplay()) host_.drawFrame();
    }

    bool savePicture(const World& world, const std::string& path) override {
        draw(world);
        return host_.writePNG(path);
    }

private:
    CGSize size_;
    CGFloat scale_;
    HeadlessHost host_;
};

}  // namespace

std::unique_ptr<Screen> makeHeadlessScreen(const Options& options) {
    return std::make_unique<HeadlessScreen>(options.size, options.scale);
}

}  // namespace flarebox::hostgame
