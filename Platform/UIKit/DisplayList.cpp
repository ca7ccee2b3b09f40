#include <UIKit/DisplayList.h>
#include <UIKit/UIView.h>

#include <cmath>

namespace flarebox::detail {
namespace {

constexpr float leastVisibleOpacity = 0.01F;

}  // namespace

void DisplayList::clear(const CGRect& target, CGFloat scale) {
    scale_ = scale;
    carriers_.clear();
    items_.clear();
    carriers_.push_back({nullptr, Carries::View, root, target, 1, {}});
}

DisplayList::Carrier DisplayList::addCarrier(const UIView& view, Carries carries, Carrier within, const CGRect& clip,
                                             float opacity) {
    carriers_.push_back({&view, carries, within, clip, opacity, {}});
    carriers_.back().origin = originOf(carriers_.back());
    return static_cast<Carrier>(carriers_.size() - 1);
}

CGPoint DisplayList::originOf(const CarrierState& carrier) const {
    if (carrier.carries == Carries::View) {
        const CGPoint origin = carrier.view->presentationFrame().origin;
        return {origin.x * scale_, origin.y * scale_};
    }
    return contentOrigin(*carrier.view, scale_);
}

CGPoint DisplayList::contentOrigin(const UIView& view, CGFloat scale) {
    const CGPoint origin = view.bounds().origin;
    return {-std::round(origin.x * scale), -std::round(origin.y * scale)};
}

bool DisplayList::placeCarriers() {
    placements_.clear();
    placements_.push_back({{}, carriers_.front().clip, 1});
    for (std::size_t index = 1; index < carriers_.size(); ++index) {
        const CarrierState& carrier = carriers_[index];
        const Placement within = placements_[carrier.within];
        const CGPoint moved = originOf(carrier) - carrier.origin;
        float opacity = within.opacity * carrier.opacity;
        if (carrier.carries == Carries::View) opacity *= static_cast<float>(carrier.view->presentationAlpha());
        const CGRect clip = within.clip.intersection(carrier.clip.offset(within.moved.x, within.moved.y));
        // Bitmaps were made ahead as far as the clip is large.
        const bool isFar = std::abs(moved.x) > clip.width() || std::abs(moved.y) > clip.height();
        if (isFar && !clip.isEmpty()) return false;
        placements_.push_back({within.moved + moved, clip, opacity});
    }
    return true;
}

bool DisplayList::place() {
    if (!placeCarriers()) return false;
    quads_.clear();
    for (const Item& item : items_) {
        const Placement& carrier = placements_[item.carrier];
        TexturedQuad quad = item.quad;
        quad.opacity *= carrier.opacity;
        if (quad.opacity < leastVisibleOpacity) continue;
        quad.destination = quad.destination.offset(carrier.moved.x, carrier.moved.y);
        quad.clip = quad.clip.offset(carrier.moved.x, carrier.moved.y).intersection(carrier.clip);
        if (!quad.destination.intersection(quad.clip).isEmpty()) quads_.push_back(quad);
    }
    return true;
}

}  // namespace flarebox::detail
