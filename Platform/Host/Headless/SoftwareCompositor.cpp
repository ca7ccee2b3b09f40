#include <Host/Headless/SoftwareCompositor.h>

#include <algorithm>
#include <cmath>

namespace flarebox {
namespace {

/// value * factor / 255 for four bytes at once, rounded; `factor` from 0 to 255.
std::uint32_t scaledPixel(std::uint32_t pixel, std::uint32_t factor) {
    const auto half = [factor](std::uint32_t pair) {
        pair = pair * factor + 0x00800080;
        return (pair + (pair >> 8 & 0x00FF00FF)) >> 8 & 0x00FF00FF;
    };
    return half(pixel & 0x00FF00FF) | half(pixel >> 8 & 0x00FF00FF) << 8;
}

std::uint32_t over(std::uint32_t source, std::uint32_t below) {
    const std::uint32_t alpha = source >> 24;
    if (alpha == 255) return source;
    return alpha == 0 && source == 0 ? below : source + scaledPixel(below, 255 - alpha);
}

/// Between two pixels; `part` from 0 to 256.
std::uint32_t mixed(std::uint32_t from, std::uint32_t to, std::uint32_t part) {
    const auto half = [part](std::uint32_t a, std::uint32_t b) {
        return (a * (256 - part) + b * part) >> 8 & 0x00FF00FF;
    };
    return half(from & 0x00FF00FF, to & 0x00FF00FF) | half(from >> 8 & 0x00FF00FF, to >> 8 & 0x00FF00FF) << 8;
}

bool isWhole(CGFloat value) {
    return std::abs(value - std::round(value)) < 1e-6;
}

/// Where along one axis a target pixel looks into the texture, between which two texels.
struct Sample {
    int first, second;
    std::uint32_t part;
};

Sample sample(int pixel, CGFloat place, CGFloat length, int source, int sourceLength) {
    const CGFloat position = (pixel + 0.5 - place) / length * sourceLength - 0.5;
    const CGFloat clamped = std::clamp(position, 0.0, static_cast<CGFloat>(sourceLength - 1));
    const int first = static_cast<int>(clamped);
    const int second = std::min(first + 1, sourceLength - 1);
    return {source + first, source + second, static_cast<std::uint32_t>(std::lround((clamped - first) * 256))};
}

}  // namespace

SoftwareCompositor::SoftwareCompositor(int width, int height) {
    resize(width, height);
}

void SoftwareCompositor::resize(int width, int height) {
    width_ = std::max(1, width);
    height_ = std::max(1, height);
    target_.assign(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), 0);
}

void SoftwareCompositor::clear(std::uint32_t pixel) {
    std::ranges::fill(target_, pixel);
}

TextureId SoftwareCompositor::createTexture(int width, int height) {
    if (width <= 0 || height <= 0) return 0;
    auto place = std::ranges::find(textures_, 0, &Texture::width);
    if (place == textures_.end()) place = textures_.emplace(place);
    place->width = width;
    place->height = height;
    place->pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0);
    return static_cast<TextureId>(place - textures_.begin() + 1);
}

SoftwareCompositor::Texture* SoftwareCompositor::textureOf(TextureId texture) {
    const bool exists = texture >= 1 && texture <= textures_.size() && textures_[texture - 1].width > 0;
    return exists ? &textures_[texture - 1] : nullptr;
}

void SoftwareCompositor::updateTexture(TextureId id, const PixelRect& region, const std::uint32_t* pixels, int stride) {
    Texture* texture = textureOf(id);
    const bool fits = texture && region.x >= 0 && region.y >= 0 && region.x + region.width <= texture->width &&
                      region.y + region.height <= texture->height;
    if (!fits || !pixels) return;
    for (int row = 0; row < region.height; ++row) {
        const std::uint32_t* from = pixels + std::ptrdiff_t{row} * stride;
        std::copy_n(from, region.width,
                    texture->pixels.begin() + std::ptrdiff_t{region.y + row} * texture->width + region.x);
    }
}

void SoftwareCompositor::destroyTexture(TextureId id) {
    if (Texture* texture = textureOf(id)) *texture = Texture();
}

std::size_t SoftwareCompositor::textureCount() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(textures_, [](const Texture& texture) { return texture.width > 0; }));
}

void SoftwareCompositor::drawQuad(const TexturedQuad& quad) {
    const Texture* texture = textureOf(quad.texture);
    const PixelRect& source = quad.source;
    if (!texture) return;
    const PixelRect area = coveredPixels(quad, texture->width, texture->height, width_, height_);
    if (area.isEmpty()) return;
    const CGRect& place = quad.destination;
    const bool isCopied = isWhole(place.minX()) && isWhole(place.minY()) &&
                          std::abs(place.width() - source.width) < 1e-6 &&
                          std::abs(place.height() - source.height) < 1e-6;
    if (isCopied)
        drawCopied(*texture, quad, area);
    else
        drawFiltered(*texture, quad, area);
}

void SoftwareCompositor::drawCopied(const Texture& texture, const TexturedQuad& quad, const PixelRect& area) {
    const auto opacity = static_cast<std::uint32_t>(std::lround(std::clamp(quad.opacity, 0.0F, 1.0F) * 255));
    const int dx = quad.source.x - static_cast<int>(std::lround(quad.destination.minX()));
    const int dy = quad.source.y - static_cast<int>(std::lround(quad.destination.minY()));
    for (int y = area.y; y < area.y + area.height; ++y) {
        std::uint32_t* to = target_.data() + std::ptrdiff_t{y} * width_ + area.x;
        const std::uint32_t* from = texture.pixels.data() + std::ptrdiff_t{y + dy} * texture.width + area.x + dx;
        for (int x = 0; x < area.width; ++x)
            to[x] = over(opacity == 255 ? from[x] : scaledPixel(from[x], opacity), to[x]);
    }
}

void SoftwareCompositor::drawFiltered(const Texture& texture, const TexturedQuad& quad, const PixelRect& area) {
    const auto opacity = static_cast<std::uint32_t>(std::lround(std::clamp(quad.opacity, 0.0F, 1.0F) * 255));
    const CGRect& place = quad.destination;
    for (int y = area.y; y < area.y + area.height; ++y) {
        const Sample down = sample(y, place.minY(), place.height(), quad.source.y, quad.source.height);
        const std::uint32_t* upper = texture.pixels.data() + std::ptrdiff_t{down.first} * texture.width;
        const std::uint32_t* lower = texture.pixels.data() + std::ptrdiff_t{down.second} * texture.width;
        std::uint32_t* row = target_.data() + std::ptrdiff_t{y} * width_;
        for (int x = area.x; x < area.x + area.width; ++x) {
            const Sample across = sample(x, place.minX(), place.width(), quad.source.x, quad.source.width);
            const std::uint32_t pixel = mixed(mixed(upper[across.first], upper[across.second], across.part),
                                              mixed(lower[across.first], lower[across.second], across.part), down.part);
            row[x] = over(scaledPixel(pixel, opacity), row[x]);
        }
    }
}

}  // namespace flarebox
