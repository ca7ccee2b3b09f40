#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A small engine of somebody else's, which knows nothing of the kit: sprites, a clip, and events, all in pixels from
/// the upper left corner. It draws into memory.
namespace engine {

struct Rect {
    float x = 0, y = 0, width = 0, height = 0;
};

enum class EventKind : std::uint8_t { MouseDown, MouseUp, MouseMove, MouseLeave, Wheel, KeyPress, Resize, Deactivate };
enum class Key : std::uint8_t { None, Escape, Enter, Space, Left, Right, Letter };

struct Event {
    EventKind kind = EventKind::MouseMove;
    /// Of the mouse.
    float x = 0, y = 0;
    /// Notches of the wheel, away from the player where positive.
    float notches = 0;
    Key key = Key::None;
};

using Sprite = int;  ///< negative: none

class Renderer {
public:
    Renderer(int width, int height) { resize(width, height); }

    void resize(int width, int height);
    int width() const { return width_; }
    int height() const { return height_; }
    /// Fills the picture; red, green and blue from 0 to 255.
    void clear(int red, int green, int blue);
    /// Red, green and blue of a pixel, as 0xRRGGBB.
    std::uint32_t pixel(int x, int y) const;

    Sprite makeSprite(int width, int height);
    /// Bytes in the order red, green, blue, alpha, row after row; the colours are not multiplied by the alpha.
    void fillSprite(Sprite sprite, int x, int y, int width, int height, const std::vector<std::uint8_t>& rgba);
    void freeSprite(Sprite sprite);
    int spriteCount() const;
    /// For what is drawn next.
    void setClip(const Rect& clip) { clip_ = clip; }
    void resetClip() { clip_ = {0, 0, static_cast<float>(width_), static_cast<float>(height_)}; }
    /// Draws a part of the sprite, in its pixels, into a rectangle of the picture.
    void drawSprite(Sprite sprite, const Rect& part, const Rect& place, float alpha);

private:
    struct Color {
        float red = 0, green = 0, blue = 0, alpha = 0;
    };
    struct Image {
        int width = 0, height = 0;
        /// Premultiplied, from 0 to 1, to be mixed.
        std::vector<Color> colors;
        const Color& at(int x, int y) const;
        Color sample(float x, float y, const Rect& bounds) const;
    };

    int width_ = 0, height_ = 0;
    std::vector<Color> picture_;
    std::vector<Image> sprites_;
    Rect clip_;
};

}  // namespace engine
