#include <Host/Headless/Backend/PNGFile.h>
#include <Host/Headless/HeadlessHost.h>
#include <UIKit/UIScreen.h>

#include <cmath>

namespace flarebox {
namespace {

int pixels(CGFloat points, CGFloat scale) {
    return static_cast<int>(std::lround(points * (scale > 0 ? scale : 1)));
}

}  // namespace

HeadlessHost::HeadlessHost(CGSize screenSize, CGFloat scale)
    : UIHost(screenSize, scale), compositor_(pixels(screenSize.width, scale), pixels(screenSize.height, scale)) {}

HeadlessHost::~HeadlessHost() {
    releaseTextures(compositor_);
}

void HeadlessHost::drawFrame() {
    const UIScreen& screen = UIScreen::mainScreen();
    const int width = pixels(screen.bounds().width(), screen.scale()),
              height = pixels(screen.bounds().height(), screen.scale());
    if (width != compositor_.width() || height != compositor_.height()) compositor_.resize(width, height);
    if (paintBackground_)
        paintBackground_(compositor_);
    else
        compositor_.clear();
    draw(compositor_);
}

bool HeadlessHost::writePNG(const std::string& path) const {
    return flarebox::writePNG(path, compositor_.pixels(), compositor_.width(), compositor_.height());
}

}  // namespace flarebox
