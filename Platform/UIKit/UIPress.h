#pragma once

#include <cstdint>

namespace flarebox {

/// What is pressed on a game controller, a remote control or a keyboard; the platform's numbers. Select activates what
/// has the focus, Menu goes back.
enum class UIPressType : std::int64_t {
    UpArrow = 0,
    DownArrow = 1,
    LeftArrow = 2,
    RightArrow = 3,
    Select = 4,
    Menu = 5,
    PlayPause = 6,
    PageUp = 30,
    PageDown = 31
};

}  // namespace flarebox
