#include "Engine.h"

#include <algorithm>
#include <cmath>

namespace engine {
namespace {

/// Pixels whose centres lie between the two.
struct Span {
    int from, to;
    Span(float low, float high, float clipLow, float clipHigh, int size)
        : from(static_cast<int>(std::ceil(std::max({low, clipLow, 0.0F}) - 0.5F))),
          to(static_cast<int>(std::ceil(std::min({high, clipHigh, static_cast<float>(size)}) - 0.5F))) {}
};

std::size_t place(int x, int y, int width) {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
}

}  // namespace

void Renderer::resize(int width, int height) {
    width_ = width;
    height_ = height;
    picture_.assign(place(0, height, width), Color());
    resetClip();
}

void Renderer::clear(int red, int green, int blue) {
    std::ranges::fill(picture_, Color{static_cast<float>(red) / 255, static_cast<float>(green) / 255,
                                      static_cast<float>(blue) / 255, 1});
}

std::uint32_t Renderer::pixel(int x, int y) const {
    const Color& color = picture_[place(x, y, width_)];
    const auto byte = [](float part) { return static_cast<std::uint32_t>(std::lround(part * 255)); };
    return byte(color.red) << 16 | byte(color.green) << 8 | byte(color.blue);
}

Sprite Renderer::makeSprite(int width, int height) {
    auto free = std::ranges::find(sprites_, 0, &Image::width);
    if (free == sprites_.end()) free = sprites_.emplace(free);
    *free = {width, height, std::vector<Color>(place(0, height, width))};
    return static_cast<Sprite>(free - sprites_.begin());
}

void Renderer::fillSprite(Sprite sprite, int x, int y, int width, int height, const std::vector<std::uint8_t>& rgba) {
    Image& image = sprites_.at(static_cast<std::size_t>(sprite));
    const std::uint8_t* from = rgba.data();
    for (int row = y; row < y + height; ++row) {
        for (int column = x; column < x + width; ++column, from += 4) {
            const float alpha = static_cast<float>(from[3]) / 255;
            const auto part = [&](int index) { return static_cast<float>(from[index]) / 255 * alpha; };
            image.colors[place(column, row, image.width)] = {part(0), part(1), part(2), alpha};
        }
    }
}

void Renderer::freeSprite(Sprite sprite) {
    sprites_.at(static_cast<std::size_t>(sprite)) = Image();
}

int Renderer::spriteCount() const {
    return static_cast<int>(std::ranges::count_if(sprites_, [](const Image& image) { return image.width > 0; }));
}

const Renderer::Color& Renderer::Image::at(int x, int y) const {
    return colors[place(x, y, width)];
}

Renderer::Color Renderer::Image::sample(float x, float y, const Rect& bounds) const {
    const float u = std::clamp(x - 0.5F, bounds.x, bounds.x + bounds.width - 1);
    const float v = std::clamp(y - 0.5F, bounds.y, bounds.y + bounds.height - 1);
    const int left = static_cast<int>(u), top = static_cast<int>(v);
    const int right = std::min(left + 1, static_cast<int>(bounds.x + bounds.width) - 1);
    const int bottom = std::min(top + 1, static_cast<int>(bounds.y + bounds.height) - 1);
    const float across = u - static_cast<float>(left), down = v - static_cast<float>(top);
    const auto mix = [&](float Color::*part) {
        const float upper = std::lerp(at(left, top).*part, at(right, top).*part, across);
        const float lower = std::lerp(at(left, bottom).*part, at(right, bottom).*part, across);
        return std::lerp(upper, lower, down);
    };
    return {mix(&Color::red), mix(&Color::green), mix(&Color::blue), mix(&Color::alpha)};
}

void Renderer::drawSprite(Sprite sprite, const Rect& source, const Rect& target, float alpha) {
    const Image& image = sprites_.at(static_cast<std::size_t>(sprite));
    const Span columns(target.x, target.x + target.width, clip_.x, clip_.x + clip_.width, width_);
    const Span rows(target.y, target.y + target.height, clip_.y, clip_.y + clip_.height, height_);
    for (int y = rows.from; y < rows.to; ++y) {
        const float v = source.y + (static_cast<float>(y) + 0.5F - target.y) / target.height * source.height;
        for (int x = columns.from; x < columns.to; ++x) {
            const float u = source.x + (static_cast<float>(x) + 0.5F - target.x) / target.width * source.width;
            const Color color = image.sample(u, v, source);
            Color& below = picture_[place(x, y, width_)];
            const auto over = [&](float Color::*channel) {
                below.*channel = color.*channel * alpha + below.*channel * (1 - color.alpha * alpha);
            };
            over(&Color::red), over(&Color::green), over(&Color::blue);
        }
    }
}

}  // namespace engine
