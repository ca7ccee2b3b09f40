#include <Foundation/LogSink.h>
#include <UIKit/LayoutEngine.h>
#include <UIKit/UIView.h>
#include <UIKit/UIViewState.h>

#include <algorithm>

namespace flarebox {
namespace {

/// Views that keep asking for layout while they are laid out are left for the next frame after that many rounds.
constexpr int maximumLayoutPasses = 10;

}  // namespace

// Constraints.

void UIView::setTranslatesAutoresizingMaskIntoConstraints(bool translates) {
    if (translates == translatesMask_) return;
    translatesMask_ = translates;
    if (LayoutEngine* engine = treeEngine()) engine->holdingChanged(*this);
    setNeedsLayout();
}

void UIView::addConstraint(const Ref<NSLayoutConstraint>& constraint) {
    if (!constraint || constraint->owner_ == this) return;
    if (const char* reason = constraint->reasonToRefuse(*this)) {
        LogSink::write(LogLevelError, constraint->description() + " is refused: " + reason);
        return;
    }
    const Ref<NSLayoutConstraint> kept = constraint;
    if (kept->owner_) kept->owner_->removeConstraint(*kept);
    constraints_.push_back(kept);
    kept->owner_ = this;
    kept->heldFirst_ = kept->firstItem();
    kept->heldSecond_ = kept->secondItem();
    makeTreeEngine().add(*kept);
    setNeedsLayout();
}

void UIView::addConstraints(std::span<const Ref<NSLayoutConstraint>> constraints) {
    for (const auto& constraint : constraints) addConstraint(constraint);
}

void UIView::removeConstraint(NSLayoutConstraint& constraint) {
    if (constraint.owner_ != this) return;
    const Ref<NSLayoutConstraint> kept(&constraint);
    releaseConstraint(constraint);
    std::erase(constraints_, kept);
    setNeedsLayout();
}

void UIView::removeConstraints(std::span<const Ref<NSLayoutConstraint>> constraints) {
    // A copy: the span may well be this view's own.
    const std::vector<Ref<NSLayoutConstraint>> doomed(constraints.begin(), constraints.end());
    for (const auto& constraint : doomed) {
        if (constraint) removeConstraint(*constraint);
    }
}

void UIView::releaseConstraint(NSLayoutConstraint& constraint) {
    if (constraint.engine_) constraint.engine_->remove(constraint);
    constraint.owner_ = nullptr;
    constraint.heldFirst_ = constraint.heldSecond_ = nullptr;
}

bool UIView::holdsItemsOf(const NSLayoutConstraint& constraint) const {
    return constraint.heldFirst_->isDescendantOfView(*this) ||
           (constraint.heldSecond_ && constraint.heldSecond_->isDescendantOfView(*this));
}

/// What ties this view and those below it to the rest of the tree goes; what holds them together moves to an engine of
/// their own.
void UIView::dropConstraintsWithOutside() {
    LayoutEngine* engine = treeEngine();
    if (!engine || !engine->speaksOf(*this)) return;
    for (UIView* ancestor = superview_; ancestor; ancestor = ancestor->superview_) {
        for (std::size_t index = ancestor->constraints_.size(); index-- > 0;) {
            NSLayoutConstraint& constraint = *ancestor->constraints_[index];
            if (holdsItemsOf(constraint)) ancestor->removeConstraint(constraint);
        }
    }
    auto own = std::make_unique<LayoutEngine>(*this);
    engine->giveSubtree(*this, *own);
    if (!own->isEmpty()) layoutState().ownEngine = std::move(own);
}

LayoutEngine* UIView::treeEngine() {
    UIView& top = root();
    if (top.lostEngine_) {
        top.lostEngine_ = false;
        auto engine = std::make_unique<LayoutEngine>(top);
        top.collectConstraints(*engine);
        if (!engine->isEmpty()) top.layoutState().ownEngine = std::move(engine);
    }
    return top.layoutState_ ? top.layoutState_->ownEngine.get() : nullptr;
}

bool UIView::hasAmbiguousLayout() const {
    if (translatesMask_) return false;
    const UIView* top = this;
    while (top->superview_) top = top->superview_;
    const LayoutEngine* engine = top->layoutState_ ? top->layoutState_->ownEngine.get() : nullptr;
    return !engine || engine->isAmbiguous(*this);
}

LayoutEngine& UIView::makeTreeEngine() {
    if (LayoutEngine* engine = treeEngine()) return *engine;
    UIView& top = root();
    top.layoutState().ownEngine = std::make_unique<LayoutEngine>(top);
    return *top.layoutState_->ownEngine;
}

void UIView::collectConstraints(LayoutEngine& engine) {
    for (const auto& constraint : constraints_) engine.add(*constraint);
    for (const auto& subview : subviews_) subview->collectConstraints(engine);
}

UIView::LayoutState& UIView::layoutState() {
    if (!layoutState_) layoutState_ = std::make_unique<LayoutState>();
    return *layoutState_;
}

// Content size.

CGSize UIView::intrinsicContentSize() const {
    return {UIViewNoIntrinsicMetric, UIViewNoIntrinsicMetric};
}

void UIView::invalidateIntrinsicContentSize() {
    if (!layoutState_ || !layoutState_->isRegistered) return;
    treeEngine()->contentSizeChanged(*this);
    setNeedsLayout();
}

UILayoutPriority UIView::contentHuggingPriority(UILayoutConstraintAxis axis) const {
    return layoutState_ ? layoutState_->hugging[static_cast<std::size_t>(axis)] : UILayoutPriorityDefaultLow;
}

UILayoutPriority UIView::contentCompressionResistancePriority(UILayoutConstraintAxis axis) const {
    return layoutState_ ? layoutState_->resistance[static_cast<std::size_t>(axis)] : UILayoutPriorityDefaultHigh;
}

void UIView::setContentHuggingPriority(UILayoutPriority priority, UILayoutConstraintAxis axis) {
    layoutState().hugging[static_cast<std::size_t>(axis)] = std::clamp(priority, 1.0F, UILayoutPriorityRequired);
    if (layoutState_->isRegistered) treeEngine()->contentPriorityChanged(*this);
}

void UIView::setContentCompressionResistancePriority(UILayoutPriority priority, UILayoutConstraintAxis axis) {
    layoutState().resistance[static_cast<std::size_t>(axis)] = std::clamp(priority, 1.0F, UILayoutPriorityRequired);
    if (layoutState_->isRegistered) treeEngine()->contentPriorityChanged(*this);
}

// Layout.

void UIView::setNeedsLayout() {
    if (needsLayout_) return;
    needsLayout_ = true;
    markLayoutNeededAbove();
}

void UIView::markLayoutNeededAbove() {
    for (UIView* view = superview_; view && !view->subtreeNeedsLayout_; view = view->superview_)
        view->subtreeNeedsLayout_ = true;
}

void UIView::layoutIfNeeded() {
    const Ref<UIView> kept(this);
    for (int pass = 0; pass < maximumLayoutPasses; ++pass) {
        LayoutEngine* engine = treeEngine();
        if (engine && engine->needsSolving()) engine->solve();
        if (!needsLayout_ && !subtreeNeedsLayout_) return;
        layoutSubtree();
    }
}

void UIView::layoutSubtree() {
    if (needsLayout_) {
        needsLayout_ = false;
        layoutSubviews();
    }
    if (!subtreeNeedsLayout_) return;
    subtreeNeedsLayout_ = false;
    // By index, since layout may add and remove sub-views.
    for (std::size_t index = 0; index < subviews_.size(); ++index) {
        const Ref<UIView> subview = subviews_[index];
        if (subview->needsLayout_ || subview->subtreeNeedsLayout_) subview->layoutSubtree();
    }
}

void UIView::layoutSubviews() {}

}  // namespace flarebox
