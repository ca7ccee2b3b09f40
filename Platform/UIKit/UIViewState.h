#pragma once

#include <UIKit/Compositor.h>
#include <UIKit/ConstraintSolver.h>
#include <UIKit/DisplayList.h>
#include <UIKit/LayerBitmap.h>
#include <UIKit/UIView.h>

#include <array>
#include <memory>
#include <optional>

namespace flarebox {

class LayoutEngine;

namespace detail {
class LayerTextures;
/// Rises with every picture drawn: what carries this very number has changed since the last one.
inline std::uint64_t changeStampInForce = 1;
}  // namespace detail

/// What constraints know of a view.
struct UIView::LayoutState {
    /// Left and top in the superview, width, height.
    enum Part : std::uint8_t { Left, Top, Width, Height };
    static constexpr std::size_t parts = 4;

    /// By axis, horizontal first.
    std::array<UILayoutPriority, 2> hugging{UILayoutPriorityDefaultLow, UILayoutPriorityDefaultLow};
    std::array<UILayoutPriority, 2> resistance{UILayoutPriorityDefaultHigh, UILayoutPriorityDefaultHigh};

    /// Of a root: the engine of the tree, from its first constraint on.
    std::unique_ptr<LayoutEngine> ownEngine;

    /// Whether some constraint of the tree's engine names the view or a view that is placed through it.
    bool isRegistered = false;
    /// Waits in the engine's list of views whose frame or content size changed; in that of views to get their frame.
    bool isQueued = false, hasNewContentSize = false, isMoved = false;
    std::array<ConstraintSolver::Variable, parts> variables{};
    /// Hold the frame's parts, where the frame is the layout.
    std::array<ConstraintSolver::ConstraintId, parts> held{};
    /// Hold the content size, by axis; how far it may be exceeded or undercut is up to the priorities.
    std::array<ConstraintSolver::ConstraintId, 2> content{};
};

/// What the renderer keeps of a view: the bitmap as the compositor has it.
struct UIView::RenderState {
    explicit RenderState(std::shared_ptr<detail::LayerTextures> store) : textures(std::move(store)) {}
    ~RenderState();
    RenderState(const RenderState&) = delete;
    RenderState& operator=(const RenderState&) = delete;

    std::shared_ptr<detail::LayerTextures> textures;
    /// Textures of an earlier round are gone.
    std::uint64_t round = 0;
    TextureId texture = 0;
    int width = 0, height = 0;
    /// Of the view when it was drawn, in points.
    CGSize drawnSize;
    detail::BitmapPlan plan;
    bool isMiddleClear = false;

    /// The view, or its content, is a carrier of the list in force.
    void setCarries(detail::DisplayList::Carries what);
    /// Only where the view or its content is shown, or how strong, is out of date.
    static void markMoved(UIView& view, detail::DisplayList::Carries what);

private:
    /// The last list in which the view, or its content, was a carrier.
    std::array<std::uint64_t, 2> carriesInList_{};
};

/// What assistive technology, and keys in its place, are told beyond what the view's class knows.
struct UIView::Accessibility {
    NSString label, value;
    UIAccessibilityTraits traits = UIAccessibilityTraits::None;
    std::optional<bool> isElement;
    UIAccessibilityContainerType containerType = UIAccessibilityContainerType::None;
    /// 0 until asked for.
    std::uint64_t number = 0;
    Weak<UIView> nextResponder;
};

/// What is on screen while it differs from what is set.
struct UIView::AnimationState {
    std::optional<CGRect> frame;
    std::optional<CGFloat> alpha;
    bool isRunning() const { return frame || alpha; }
};

}  // namespace flarebox
