#pragma once

#include <Foundation/Export.h>
#include <Host/OpenGL/OpenGLCompositor.h>
#include <UIKit/UIHost.h>

namespace flarebox {

/// The panel in a game that owns an OpenGL context: OpenGL 3.3 core, OpenGL ES 3.0, or later.
///
///     OpenGLHost host(SDL_GL_GetProcAddress, {960, 540}, 2);              // once, before the tab is made
///     if (host.pointerDown(0, point) == InputResult::Consumed) continue;  // input, as UIHost describes it
///     host.resize({width, height}, scale);                                // when the window has another size
///     host.update();                                                      // each frame
///     host.draw();                                                        // each frame, over the game's picture
///
/// Nothing is linked but what the resolver answers. The context has to be current while the host draws and when it
/// goes; a host whose context goes first is told so with `contextLost`. Main thread.
class FLAREBOX_EXPORT OpenGLHost : public UIHost {
public:
    /// Size in points, scale in pixels per point. Makes no call into OpenGL yet.
    OpenGLHost(OpenGLResolver resolve, CGSize size, CGFloat scale);
    ~OpenGLHost() override;

    using UIHost::draw;
    /// Draws into the framebuffer that is bound for drawing, the game's own or the window's, into as many of its pixels
    /// as the screen has, from the lower left corner. Every state of the context is then as it was.
    void draw();

    /// Before a context goes, or after it went: nothing is given back, and everything is made again in the context that
    /// is current when the host draws next.
    void contextLost();

private:
    OpenGLCompositor compositor_;
};

}  // namespace flarebox
