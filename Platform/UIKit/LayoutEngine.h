#pragma once

#include <UIKit/ConstraintSolver.h>
#include <UIKit/UIView.h>

#include <string>
#include <vector>

namespace flarebox {

/// Solves the constraints of one tree of views and gives the views their frames. Every view that constraints speak of
/// has up to four variables: left and top in its superview, width and height; moving a view thus leaves everything in
/// it alone. Scrolling does not count: constraints relate to a view's content as it lies unscrolled. A frame's part
/// that no constraint determines stays as it is. Main thread.
class LayoutEngine {
public:
    explicit LayoutEngine(UIView& root) : root_(root) {}
    ~LayoutEngine();
    LayoutEngine(const LayoutEngine&) = delete;
    LayoutEngine& operator=(const LayoutEngine&) = delete;

    void add(NSLayoutConstraint& constraint);
    void remove(NSLayoutConstraint& constraint);
    void constantChanged(NSLayoutConstraint& constraint);
    void priorityChanged(NSLayoutConstraint& constraint);
    /// The frame of a registered view was set.
    void frameChanged(UIView& view);
    /// The frame of a view is its layout from now on, or no longer.
    void holdingChanged(UIView& view);
    void contentSizeChanged(UIView& view);
    void contentPriorityChanged(UIView& view);

    /// Takes over all constraints of a tree that has become part of this one.
    void adopt(LayoutEngine& other);
    /// Hands over those of a part of this tree that leaves it.
    void giveSubtree(UIView& top, LayoutEngine& other);
    bool isEmpty() const { return constraints_.empty(); }
    /// False only where no constraint names the view or one below it.
    bool speaksOf(const UIView& top) const;

    /// Whether a view that is laid out by constraints could as well lie elsewhere, or be of another size.
    bool isAmbiguous(const UIView& view) const;

    bool needsSolving() const { return needsSolving_; }
    /// Brings the frames of all views of the tree up to date. Constraints that contradict others are left out until
    /// they no longer do, and are named in the log.
    void solve();

private:
    using State = UIView::LayoutState;

    // Sums of variables.
    void addAttribute(UIView& item, NSLayoutAttribute attribute, const UIView* ancestor, double factor);
    void addPart(UIView& view, int part, double factor);
    static const UIView* commonAncestor(const UIView& first, const UIView* second);

    // Views.
    State& registered(UIView& view);
    void forget(UIView& view);
    static void reset(State& state);
    void queue(UIView& view);
    bool isHeld(const UIView& view) const;
    ConstraintSolver::Variable variable(UIView& view, int part);
    void hold(UIView& view, int part);
    void takeContentSize(UIView& view);
    void dropContentSize(State& state, std::size_t axis);
    void updateQueued();
    void setMoved(UIView& view);
    void applyFrames();
    CGRect solvedFrame(const UIView& view) const;

    // Constraints.
    void insert(NSLayoutConstraint& constraint);
    void insertPending();
    void leaveOut(const ConstraintSolver::Conflict& conflict);
    void noteMended();
    std::string nameOf(ConstraintSolver::ConstraintId id) const;

    UIView& root_;
    ConstraintSolver solver_;
    /// In the order they were added; those without a place in the solver are pending or broken.
    std::vector<NSLayoutConstraint*> constraints_, pending_;
    std::vector<UIView*> views_, queued_, moved_;
    std::vector<UIView*> viewOfVariable_;
    ConstraintSolver::Terms sum_;
    bool needsSolving_ = false, hasBroken_ = false, appliesFrames_ = false;
};

}  // namespace flarebox
