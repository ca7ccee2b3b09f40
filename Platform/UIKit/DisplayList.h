#pragma once

#include <UIKit/Compositor.h>
#include <UIKit/Geometry.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace flarebox {
class UIView;
}

namespace flarebox::detail {

/// What a tree of views shows, as rectangles that carriers take with them: a carrier is a view that moves or fades, or
/// the content of one that scrolls. As long as nothing else happens a frame takes new places from the carriers alone,
/// and neither walks the tree nor looks at a view that is carried. All coordinates are pixels.
class DisplayList {
public:
    using Carrier = std::uint32_t;
    static constexpr Carrier root = 0;
    /// Where nothing is cut off.
    static constexpr CGRect everywhere = {{-1e9, -1e9}, {2e9, 2e9}};

    /// What takes rectangles with it: the view by its frame and opacity, or its content by the bounds' origin.
    enum class Carries : std::uint8_t { View, Content };

    /// Begins anew; the root shows nothing outside `target`.
    void clear(const CGRect& target, CGFloat scale);
    /// `clip` and `opacity` are those that `within` gives the view, or its content; the view's own opacity comes on top
    /// of it for a view. The view has to live as long as the list is used.
    Carrier addCarrier(const UIView& view, Carries carries, Carrier within, const CGRect& clip, float opacity);
    /// Clip and opacity are those within the carrier.
    void add(const TexturedQuad& quad, Carrier carrier) { items_.push_back({quad, carrier}); }

    /// Works out the rectangles from where the carriers are now. False when one has moved so far that what it carries
    /// may be missing.
    bool place();
    /// What `place` worked out: those in sight, in the order in which they are drawn.
    std::span<const TexturedQuad> quads() const { return quads_; }
    /// How far a view's content lies from the view, in whole pixels: its text stays sharp, and shows the same whether
    /// the list was made there or moved there.
    static CGPoint contentOrigin(const UIView& view, CGFloat scale);

private:
    struct CarrierState {
        const UIView* view;
        Carries carries;
        Carrier within;
        /// Within the carrier that this one is in.
        CGRect clip;
        float opacity;
        /// Where it was when the list was made.
        CGPoint origin;
    };
    /// A carrier as it is now: how far it has come, and what it has from all around it.
    struct Placement {
        CGPoint moved;
        CGRect clip;
        float opacity;
    };
    struct Item {
        TexturedQuad quad;
        Carrier carrier;
    };

    CGPoint originOf(const CarrierState& carrier) const;
    bool placeCarriers();

    CGFloat scale_ = 1;
    std::vector<CarrierState> carriers_;
    std::vector<Placement> placements_;
    std::vector<Item> items_;
    std::vector<TexturedQuad> quads_;
};

}  // namespace flarebox::detail
