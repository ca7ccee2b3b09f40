#include <UIKit/BitmapCanvas.h>
#include <UIKit/LayerBitmap.h>

#include <algorithm>
#include <cmath>

namespace flarebox::detail {
namespace {

bool hasShadow(const CALayer& layer) {
    return !layer.shadow().color.isClear();
}
bool hasBorder(const CALayer& layer) {
    return layer.borderWidth() > 0 && !layer.borderColor().isClear();
}

struct Reach {
    int left = 0, top = 0, right = 0, bottom = 0;
};

/// How far the shadow shows beyond the view's edges, in pixels.
Reach shadowReach(const CALayer& layer, CGFloat scale) {
    if (!hasShadow(layer)) return {};
    const CALayer::Shadow& shadow = layer.shadow();
    const auto pixels = [scale](CGFloat points) { return std::max(0, static_cast<int>(std::ceil(points * scale))); };
    return {pixels(shadow.radius - shadow.offset.x), pixels(shadow.radius - shadow.offset.y),
            pixels(shadow.radius + shadow.offset.x), pixels(shadow.radius + shadow.offset.y)};
}

/// How far from its edges a view without content looks different from its middle, in points.
UIEdgeInsets edges(const CALayer& layer) {
    const CornerRadii& radii = layer.cornerRadii();
    const CGFloat border = hasBorder(layer) ? layer.borderWidth() : 0;
    // The same on all sides: a radius is cut down to half of the shorter side, which must not happen in the small
    // bitmap.
    const CGFloat edge = std::max({border, radii.topLeft, radii.topRight, radii.bottomLeft, radii.bottomRight});
    UIEdgeInsets insets{edge, edge, edge, edge};
    if (hasShadow(layer)) {
        // The shadow is its own shape, moved, and soft to both sides of its edge.
        const CALayer::Shadow& shadow = layer.shadow();
        insets.top += shadow.radius + std::max(0.0, shadow.offset.y);
        insets.left += shadow.radius + std::max(0.0, shadow.offset.x);
        insets.bottom += shadow.radius + std::max(0.0, -shadow.offset.y);
        insets.right += shadow.radius + std::max(0.0, -shadow.offset.x);
    }
    return insets;
}

/// Averages over `2 * half + 1` values along one line; values beyond its ends are 0.
void blurLine(const float* from, float* to, int count, std::ptrdiff_t step, int half) {
    float sum = 0;
    for (int index = 0; index < std::min(half, count); ++index) sum += from[index * step];
    const float share = 1.0F / static_cast<float>(2 * half + 1);
    for (int index = 0; index < count; ++index) {
        if (index + half < count) sum += from[(index + half) * step];
        if (index - half > 0) sum -= from[(index - half - 1) * step];
        to[index * step] = sum * share;
    }
}

/// Three box filters one after another come close to a Gaussian one, and reach exactly `reach` pixels.
void blur(std::vector<float>& values, int width, int height, int reach) {
    std::vector<float> other(values.size());
    for (int pass = 0; pass < 3; ++pass) {
        const int half = (reach + pass) / 3;
        if (half == 0) continue;
        for (int y = 0; y < height; ++y)
            blurLine(values.data() + std::ptrdiff_t{y} * width, other.data() + std::ptrdiff_t{y} * width, width, 1,
                     half);
        for (int x = 0; x < width; ++x) blurLine(other.data() + x, values.data() + x, height, width, half);
    }
}

void drawShadow(const CALayer& layer, const BitmapPlan& plan, CGSize size, std::vector<std::uint32_t>& pixels) {
    const CALayer::Shadow& shadow = layer.shadow();
    const auto canvas = makeBitmapCanvas(pixels.data(), plan.width, plan.height, plan.width, plan.scale);
    canvas->translate(plan.outsetX / plan.scale + shadow.offset.x, plan.outsetY / plan.scale + shadow.offset.y);
    canvas->fillRoundedRect({{}, size}, layer.cornerRadii(), UIColor::blackColor());

    std::vector<float> coverage(pixels.size());
    std::ranges::transform(pixels, coverage.begin(),
                           [](std::uint32_t pixel) { return static_cast<float>(pixel >> 24) / 255; });
    blur(coverage, plan.width, plan.height, static_cast<int>(std::lround(shadow.radius * plan.scale)));
    std::ranges::transform(coverage, pixels.begin(), [&](float value) {
        return premultiplied(shadow.color.withAlpha(shadow.color.alpha * value));
    });
}

}  // namespace

bool needsBitmap(const UIView& view) {
    const CALayer& layer = view.layer();
    return view.drawsContent() || layer.cornerRadii() != CornerRadii() || hasBorder(layer) || hasShadow(layer);
}

BitmapPlan planBitmap(const UIView& view, CGFloat scale, int maximumSize) {
    constexpr CGFloat roundingError = 1e-6;
    const CGSize size = view.bounds().size;
    BitmapPlan plan;
    plan.scale = scale;
    const auto measure = [&] {
        const Reach reach = shadowReach(view.layer(), plan.scale);
        plan.outsetX = reach.left;
        plan.outsetY = reach.top;
        plan.outsetRight = reach.right;
        plan.outsetBottom = reach.bottom;
        plan.width = std::max(1, static_cast<int>(std::ceil(size.width * plan.scale - roundingError))) + reach.left +
                     reach.right;
        plan.height = std::max(1, static_cast<int>(std::ceil(size.height * plan.scale - roundingError))) + reach.top +
                      reach.bottom;
        if (view.drawsContent()) return;

        const UIEdgeInsets inside = edges(view.layer());
        const auto pixels = [&plan](CGFloat points) { return static_cast<int>(std::ceil(points * plan.scale)) + 1; };
        const int left = reach.left + pixels(inside.left), right = reach.right + pixels(inside.right);
        const int top = reach.top + pixels(inside.top), bottom = reach.bottom + pixels(inside.bottom);
        // One line more than the edges: it is what gets stretched, between two like it that filtering may touch.
        if (plan.width > left + right + 1) {
            plan.left = left;
            plan.right = right;
            plan.width = left + right + 1;
        }
        if (plan.height > top + bottom + 1) {
            plan.top = top;
            plan.bottom = bottom;
            plan.height = top + bottom + 1;
        }
    };
    measure();
    const int longest = std::max(plan.width, plan.height);
    if (longest > maximumSize) {
        plan = BitmapPlan();
        plan.scale = scale * (maximumSize - 2) / longest;
        measure();
    }
    return plan;
}

void drawBitmap(UIView& view, const BitmapPlan& plan, std::vector<std::uint32_t>& pixels) {
    pixels.assign(static_cast<std::size_t>(plan.width) * static_cast<std::size_t>(plan.height), 0);
    const CALayer& layer = view.layer();
    CGSize size = view.bounds().size;
    if (plan.isStretchedX()) size.width = (plan.width - plan.outsetX - plan.outsetRight) / plan.scale;
    if (plan.isStretchedY()) size.height = (plan.height - plan.outsetY - plan.outsetBottom) / plan.scale;
    if (hasShadow(layer)) drawShadow(layer, plan, size, pixels);

    const auto canvas = makeBitmapCanvas(pixels.data(), plan.width, plan.height, plan.width, plan.scale);
    canvas->translate(plan.outsetX / plan.scale, plan.outsetY / plan.scale);
    const CGRect whole{{}, size};
    const CornerRadii& radii = layer.cornerRadii();
    if (!view.backgroundColor().isClear()) canvas->fillRoundedRect(whole, radii, view.backgroundColor());
    if (view.drawsContent()) {
        canvas->save();
        if (radii != CornerRadii()) canvas->clipRoundedRect(whole, radii);
        view.drawRect(*canvas, whole);
        canvas->restore();
    }
    if (hasBorder(layer)) canvas->strokeRoundedRect(whole, radii, layer.borderWidth(), layer.borderColor());
}

void copyRounded(const UIView::PixelBuffer& picture, const CGRect& outline, const CornerRadii& radii,
                 std::vector<std::uint32_t>& pixels) {
    pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
    for (int y = 0; y < picture.height; ++y) {
        std::copy_n(picture.pixels + std::ptrdiff_t{y} * picture.stride, picture.width,
                    pixels.begin() + std::ptrdiff_t{y} * picture.width);
    }
    // The square of a corner, seen from the centre of its circle.
    const auto round = [&](CGFloat cornerX, CGFloat cornerY, int towardsX, int towardsY, CGFloat radius) {
        if (!(radius > 0)) return;
        const CGFloat centerX = cornerX + towardsX * radius, centerY = cornerY + towardsY * radius;
        const auto first = [](CGFloat a, CGFloat b) {
            return std::max(0, static_cast<int>(std::floor(std::min(a, b))));
        };
        const auto last = [](CGFloat a, CGFloat b, int end) {
            return std::min(end, static_cast<int>(std::ceil(std::max(a, b))));
        };
        for (int y = first(cornerY, centerY); y < last(cornerY, centerY, picture.height); ++y) {
            for (int x = first(cornerX, centerX); x < last(cornerX, centerX, picture.width); ++x) {
                const CGFloat distance = std::hypot(x + 0.5 - centerX, y + 0.5 - centerY);
                const CGFloat share = std::clamp(radius - distance + 0.5, 0.0, 1.0);
                std::uint32_t& pixel = pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                                              static_cast<std::size_t>(x)];
                const auto part = [&](int shift) {
                    return static_cast<std::uint32_t>(std::lround((pixel >> shift & 255) * share)) << shift;
                };
                if (share < 1) pixel = part(24) | part(16) | part(8) | part(0);
            }
        }
    };
    round(outline.minX(), outline.minY(), 1, 1, radii.topLeft);
    round(outline.maxX(), outline.minY(), -1, 1, radii.topRight);
    round(outline.maxX(), outline.maxY(), -1, -1, radii.bottomRight);
    round(outline.minX(), outline.maxY(), 1, -1, radii.bottomLeft);
}

std::uint32_t premultiplied(const UIColor& color) {
    const float alpha = std::clamp(color.alpha, 0.0F, 1.0F);
    const auto byte = [](float value) {
        return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255));
    };
    return byte(alpha) << 24 | byte(color.red * alpha) << 16 | byte(color.green * alpha) << 8 |
           byte(color.blue * alpha);
}

void makeAlphaStraight(std::vector<std::uint32_t>& pixels) {
    for (std::uint32_t& pixel : pixels) {
        const std::uint32_t alpha = pixel >> 24;
        if (alpha == 255 || alpha == 0) continue;
        const auto straight = [&](int shift) {
            return std::min(255U, ((pixel >> shift & 255) * 255 + alpha / 2) / alpha) << shift;
        };
        pixel = alpha << 24 | straight(16) | straight(8) | straight(0);
    }
}

}  // namespace flarebox::detail
