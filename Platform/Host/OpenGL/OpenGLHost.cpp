#include <Host/OpenGL/OpenGLHost.h>
#include <UIKit/UIScreen.h>

#include <cmath>
#include <utility>

namespace flarebox {

OpenGLHost::OpenGLHost(OpenGLResolver resolve, CGSize size, CGFloat scale)
    : UIHost(size, scale), compositor_(std::move(resolve)) {
    resize(size, scale);
}

OpenGLHost::~OpenGLHost() {
    releaseTextures(compositor_);
}

void OpenGLHost::draw() {
    const UIScreen& screen = UIScreen::mainScreen();
    const auto pixels = [&screen](CGFloat points) { return static_cast<int>(std::lround(points * screen.scale())); };
    compositor_.setTargetSize(pixels(screen.bounds().width()), pixels(screen.bounds().height()));
    UIHost::draw(compositor_);
}

void OpenGLHost::contextLost() {
    compositor_.contextLost();
    releaseTextures(compositor_);
}

}  // namespace flarebox
