#pragma once

#include <Foundation/Export.h>
#include <Host/SDL/SDLCompositor.h>
#include <UIKit/UIHost.h>

#include <cstdint>
#include <map>
#include <memory>
#include <set>

struct SDL_Window;
struct SDL_Renderer;
union SDL_Event;

namespace flarebox {

class SDLControllers;

/// The panel in a window of a game on SDL2.
///
///     SDLHost host(window, renderer);                                  // once, before the tab is made
///     if (host.handleEvent(event) == InputResult::Consumed) continue;  // each event; what is ignored is the game's
///     host.update();                                                   // each frame
///     host.draw();                                                     // each frame, over the game's picture, before
///     SDL_RenderPresent
///
/// A point is a unit of the window's size; on a display of high density a point has more than one pixel. The
/// orientation follows the window: wide is landscape, tall is portrait. Window and renderer must outlive the host;
/// where one of them is null, SDL refuses all calls and nothing is shown. Main thread.
class FLAREBOX_EXPORT SDLHost : public UIHost {
public:
    /// On the thread that handles SDL's events, which becomes the main thread.
    SDLHost(SDL_Window* window, SDL_Renderer* renderer);
    ~SDLHost() override;

    /// Takes mouse, touch, wheel, keys, game controllers, and what concerns the window, whose events are never
    /// consumed. Handles a renderer's lost device. A game that sets a logical size may go on doing so.
    ///
    /// Keys and controllers are the game's until it calls `takeFocus`. Then the cross and the left stick go about, on
    /// and on while they are held, the button at the bottom activates, the one at the right goes back, the shoulder
    /// buttons change modes, the right stick turns models. SDL reports controllers that the game has opened.
    InputResult handleEvent(const SDL_Event& event);

    using UIHost::draw;
    /// Draws with the renderer into the window, whatever render target is set, and leaves the renderer's state as it
    /// was.
    void draw();

private:
    InputResult handleMouseButton(const SDL_Event& event);
    InputResult handleMouseMotion(const SDL_Event& event);
    InputResult handleWheel(const SDL_Event& event);
    InputResult handleFinger(const SDL_Event& event);
    InputResult handleKey(const SDL_Event& event);
    void handleWindow(const SDL_Event& event);
    bool isForeign(const SDL_Event& event) const;

    void followWindow();
    void cancelPointers();
    InputResult press(int pointer, CGPoint point);
    InputResult release(int pointer, CGPoint point);
    int pointerOf(std::int64_t finger);
    CGPoint pointFromEvent(float x, float y) const;
    CGPoint pointFromFinger(float x, float y) const;

    SDL_Window* window_;
    SDL_Renderer* renderer_;
    SDLCompositor compositor_;
    /// Beside everything until it has moved.
    CGPoint mouse_{-1, -1};
    /// Pointers that are down; fingers count from 1.
    std::set<int> pressed_;
    std::map<std::int64_t, int> fingers_;
    /// SDL reports the first finger as a mouse too, ahead of the finger; it is handled once and both reports get the
    /// same answer.
    bool isMouseFromTouch_ = false;
    InputResult mouseResult_ = InputResult::Ignored;
    /// Buttons beside the left one, and keys, that went down on the panel: their end belongs to the panel as well.
    std::set<int> panelButtons_, panelKeys_;
    std::unique_ptr<SDLControllers> controllers_;
};

}  // namespace flarebox
