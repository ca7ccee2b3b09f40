#include <Foundation/LogSink.h>
#include <UIKit/LayoutEngine.h>
#include <UIKit/UIViewState.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace flarebox {
namespace {

using enum NSLayoutAttribute;

/// Frames that are the layout of their view: they yield to required constraints only.
constexpr float heldPriority = 1000;
/// The frame of a root that is laid out by constraints: it yields to all of them.
constexpr float rootPriority = 0.5F;
/// Differences below it come from rounding.
constexpr CGFloat leastDifference = 1e-7;

float costOf(UILayoutPriority priority) {
    return priority >= UILayoutPriorityRequired ? ConstraintSolver::forbidden : priority;
}

ConstraintSolver::Cost costOf(const NSLayoutConstraint& constraint) {
    const float cost = costOf(constraint.priority());
    switch (constraint.relation()) {
        case NSLayoutRelation::LessThanOrEqual:
            return {cost, ConstraintSolver::free};
        case NSLayoutRelation::GreaterThanOrEqual:
            return {ConstraintSolver::free, cost};
        case NSLayoutRelation::Equal:
            break;
    }
    return {cost, cost};
}

CGFloat partOf(const CGRect& frame, std::size_t part) {
    const CGFloat parts[] = {frame.minX(), frame.minY(), frame.width(), frame.height()};
    return parts[part];
}

}  // namespace

LayoutEngine::~LayoutEngine() {
    for (NSLayoutConstraint* constraint : constraints_) {
        constraint->engine_ = nullptr;
        constraint->solverId_ = 0;
    }
    for (UIView* view : views_) reset(*view->layoutState_);
}

// Constraints.

void LayoutEngine::add(NSLayoutConstraint& constraint) {
    constraint.engine_ = this;
    constraint.solverId_ = 0;
    constraints_.push_back(&constraint);
    pending_.push_back(&constraint);
    needsSolving_ = true;
}

void LayoutEngine::remove(NSLayoutConstraint& constraint) {
    solver_.remove(constraint.solverId_);
    std::erase(constraints_, &constraint);
    std::erase(pending_, &constraint);
    constraint.engine_ = nullptr;
    constraint.solverId_ = 0;
    constraint.isBroken_ = false;
    needsSolving_ = true;
}

void LayoutEngine::constantChanged(NSLayoutConstraint& constraint) {
    solver_.setConstant(constraint.solverId_, -constraint.constant());
    needsSolving_ = true;
}

void LayoutEngine::priorityChanged(NSLayoutConstraint& constraint) {
    if (constraint.solverId_) {
        solver_.remove(constraint.solverId_);
        constraint.solverId_ = 0;
        pending_.push_back(&constraint);
    }
    needsSolving_ = true;
}

void LayoutEngine::adopt(LayoutEngine& other) {
    const std::vector<NSLayoutConstraint*> constraints = std::exchange(other.constraints_, {});
    for (UIView* view : std::exchange(other.views_, {})) reset(*view->layoutState_);
    for (NSLayoutConstraint* constraint : constraints) add(*constraint);
}

void LayoutEngine::giveSubtree(UIView& top, LayoutEngine& other) {
    const std::vector<NSLayoutConstraint*> constraints = constraints_;
    for (NSLayoutConstraint* constraint : constraints) {
        if (!constraint->owner_->isDescendantOfView(top)) continue;
        remove(*constraint);
        other.add(*constraint);
    }
    std::erase_if(views_, [&](UIView* view) {
        const bool leaves = view->isDescendantOfView(top);
        if (leaves) forget(*view);
        return leaves;
    });
}

bool LayoutEngine::speaksOf(const UIView& top) const {
    // What is pending or left out has not made its views known.
    if (!pending_.empty() || hasBroken_ || (top.layoutState_ && top.layoutState_->isRegistered)) return true;
    return std::ranges::any_of(top.subviews_, [this](const Ref<UIView>& view) { return speaksOf(*view); });
}

bool LayoutEngine::isAmbiguous(const UIView& view) const {
    if (isHeld(view)) return false;
    if (!view.layoutState_ || !view.layoutState_->isRegistered) return true;
    return std::ranges::any_of(view.layoutState_->variables, [this](ConstraintSolver::Variable variable) {
        return !variable || solver_.isAmbiguous(variable);
    });
}

/// Says `first - multiplier * second - constant` to the solver.
void LayoutEngine::insert(NSLayoutConstraint& constraint) {
    UIView &first = *constraint.heldFirst_, *second = constraint.heldSecond_;
    const UIView* ancestor = commonAncestor(first, second);
    sum_.clear();
    addAttribute(first, constraint.firstAttribute_, ancestor, 1);
    if (second) addAttribute(*second, constraint.secondAttribute_, ancestor, -constraint.multiplier_);
    std::erase_if(sum_, [](const ConstraintSolver::Term& term) { return term.coefficient == 0; });
    constraint.solverId_ = solver_.add(sum_, -constraint.constant_, costOf(constraint));
}

void LayoutEngine::insertPending() {
    // Required ones first: the solver then finds its way with fewer steps.
    std::ranges::stable_partition(pending_,
                                  [](const NSLayoutConstraint* c) { return c->priority_ >= UILayoutPriorityRequired; });
    for (NSLayoutConstraint* constraint : pending_) insert(*constraint);
    pending_.clear();
    if (!hasBroken_) return;
    for (NSLayoutConstraint* constraint : constraints_) {
        if (!constraint->solverId_) insert(*constraint);
    }
}

void LayoutEngine::leaveOut(const ConstraintSolver::Conflict& conflict) {
    std::string others;
    for (const ConstraintSolver::ConstraintId id : conflict.others)
        others += (others.empty() ? " " : ", ") + nameOf(id);
    const std::string name = nameOf(conflict.offender);
    const auto found = std::ranges::find(constraints_, conflict.offender, &NSLayoutConstraint::solverId_);
    if (found != constraints_.end()) {
        NSLayoutConstraint& constraint = **found;
        constraint.solverId_ = 0;
        hasBroken_ = true;
        if (std::exchange(constraint.isBroken_, true)) return;
    }
    for (UIView* view : views_) {
        for (auto& id : view->layoutState_->content) id = id == conflict.offender ? 0 : id;
    }
    LogSink::write(LogLevelError, name + " cannot be met and is left out. It contradicts" +
                                      (others.empty() ? " itself" : others) +
                                      ". Remove one of them, or give one a priority below required");
}

void LayoutEngine::noteMended() {
    hasBroken_ = false;
    for (NSLayoutConstraint* constraint : constraints_) {
        if (!constraint->isBroken_) continue;
        constraint->isBroken_ = constraint->solverId_ == 0;
        hasBroken_ |= constraint->isBroken_;
    }
}

std::string LayoutEngine::nameOf(ConstraintSolver::ConstraintId id) const {
    for (const NSLayoutConstraint* constraint : constraints_) {
        if (constraint->solverId_ == id) return constraint->description();
    }
    for (const UIView* view : views_) {
        if (std::ranges::find(view->layoutState_->content, id) == view->layoutState_->content.end()) continue;
        const std::string& identifier = view->accessibilityIdentifier();
        return "the content size of " + (identifier.empty() ? view->description() : identifier);
    }
    return "a frame";
}

// Sums of variables.

const UIView* LayoutEngine::commonAncestor(const UIView& first, const UIView* second) {
    if (!second) return first.superview_ ? first.superview_ : &first;
    const UIView* ancestor = &first;
    while (!second->isDescendantOfView(*ancestor)) ancestor = ancestor->superview_;
    return ancestor;
}

/// Places count from the ancestor's upper left corner.
void LayoutEngine::addAttribute(UIView& item, NSLayoutAttribute attribute, const UIView* ancestor, double factor) {
    if (attribute == NSLayoutAttribute::Width) return addPart(item, State::Width, factor);
    if (attribute == NSLayoutAttribute::Height) return addPart(item, State::Height, factor);
    const bool isVertical = attribute == NSLayoutAttribute::Top || attribute == Bottom || attribute == CenterY;
    for (UIView* view = &item; view != ancestor; view = view->superview_)
        addPart(*view, isVertical ? State::Top : State::Left, factor);
    if (attribute == Right || attribute == Trailing || attribute == Bottom)
        addPart(item, isVertical ? State::Height : State::Width, factor);
    if (attribute == CenterX || attribute == CenterY)
        addPart(item, isVertical ? State::Height : State::Width, factor / 2);
}

void LayoutEngine::addPart(UIView& view, int part, double factor) {
    const ConstraintSolver::Variable wanted = variable(view, part);
    const auto found = std::ranges::find(sum_, wanted, &ConstraintSolver::Term::variable);
    if (found != sum_.end())
        found->coefficient += factor;
    else
        sum_.push_back({wanted, factor});
}

// Views.

LayoutEngine::State& LayoutEngine::registered(UIView& view) {
    State& state = view.layoutState();
    if (state.isRegistered) return state;
    state.isRegistered = true;
    state.hasNewContentSize = true;
    views_.push_back(&view);
    queue(view);
    return state;
}

/// The view keeps its priorities, and loses everything that ties it to this engine.
void LayoutEngine::forget(UIView& view) {
    State& state = *view.layoutState_;
    for (const auto id : state.held) solver_.remove(id);
    for (const auto id : state.content) solver_.remove(id);
    for (const auto variable : state.variables) {
        if (!variable) continue;
        viewOfVariable_[variable] = nullptr;
        solver_.removeVariable(variable);
    }
    if (state.isQueued) std::erase(queued_, &view);
    if (state.isMoved) std::erase(moved_, &view);
    reset(state);
}

void LayoutEngine::reset(State& state) {
    state.isRegistered = state.isQueued = state.isMoved = state.hasNewContentSize = false;
    state.variables = {};
    state.held = {};
    state.content = {};
}

void LayoutEngine::queue(UIView& view) {
    needsSolving_ = true;
    if (std::exchange(view.layoutState_->isQueued, true)) return;
    queued_.push_back(&view);
}

void LayoutEngine::setMoved(UIView& view) {
    if (std::exchange(view.layoutState_->isMoved, true)) return;
    moved_.push_back(&view);
}

bool LayoutEngine::isHeld(const UIView& view) const {
    return view.translatesMask_ || &view == &root_;
}

ConstraintSolver::Variable LayoutEngine::variable(UIView& view, int part) {
    State& state = registered(view);
    auto& variable = state.variables[static_cast<std::size_t>(part)];
    if (variable) return variable;
    variable = solver_.addVariable();
    if (viewOfVariable_.size() <= variable) viewOfVariable_.resize(variable + 1);
    viewOfVariable_[variable] = &view;
    hold(view, part);
    return variable;
}

void LayoutEngine::hold(UIView& view, int part) {
    const auto index = static_cast<std::size_t>(part);
    State& state = *view.layoutState_;
    if (!isHeld(view) || !state.variables[index]) return;
    const float priority = view.translatesMask_ ? heldPriority : rootPriority;
    const ConstraintSolver::Term term{state.variables[index], 1};
    state.held[index] = solver_.add({&term, 1}, -partOf(view.frame_, index), {priority, priority});
}

void LayoutEngine::frameChanged(UIView& view) {
    if (!appliesFrames_) queue(view);
}

void LayoutEngine::holdingChanged(UIView& view) {
    if (!view.layoutState_ || !view.layoutState_->isRegistered) return;
    State& state = *view.layoutState_;
    for (auto& id : state.held) solver_.remove(std::exchange(id, 0));
    for (std::size_t part = 0; part < State::parts; ++part) hold(view, static_cast<int>(part));
    state.hasNewContentSize = true;
    queue(view);
}

void LayoutEngine::contentSizeChanged(UIView& view) {
    view.layoutState_->hasNewContentSize = true;
    queue(view);
}

void LayoutEngine::contentPriorityChanged(UIView& view) {
    for (std::size_t axis = 0; axis < 2; ++axis) dropContentSize(*view.layoutState_, axis);
    contentSizeChanged(view);
}

void LayoutEngine::dropContentSize(State& state, std::size_t axis) {
    solver_.remove(std::exchange(state.content[axis], 0));
}

void LayoutEngine::takeContentSize(UIView& view) {
    State& state = *view.layoutState_;
    state.hasNewContentSize = false;
    const CGSize size =
        isHeld(view) ? CGSize{UIViewNoIntrinsicMetric, UIViewNoIntrinsicMetric} : view.intrinsicContentSize();
    for (const std::size_t axis : {0U, 1U}) {
        const CGFloat length = axis == 0 ? size.width : size.height;
        if (!(length >= 0) || !std::isfinite(length)) {
            dropContentSize(state, axis);
        } else if (state.content[axis]) {
            solver_.setConstant(state.content[axis], -length);
        } else {
            const ConstraintSolver::Term term{variable(view, axis == 0 ? State::Width : State::Height), 1};
            state.content[axis] =
                solver_.add({&term, 1}, -length, {costOf(state.hugging[axis]), costOf(state.resistance[axis])});
        }
    }
}

void LayoutEngine::updateQueued() {
    // By index: asking for a content size may register more.
    for (std::size_t index = 0; index < queued_.size(); ++index) {
        UIView& view = *queued_[index];
        State& state = *view.layoutState_;
        state.isQueued = false;
        if (state.hasNewContentSize) takeContentSize(view);
        for (std::size_t part = 0; part < State::parts; ++part) {
            if (state.held[part]) solver_.setConstant(state.held[part], -partOf(view.frame_, part));
        }
        if (!view.translatesMask_) setMoved(view);
    }
    queued_.clear();
}

// Solving.

void LayoutEngine::solve() {
    needsSolving_ = false;
    insertPending();
    updateQueued();
    const auto conflicts = solver_.solve();
    for (const auto& conflict : conflicts) leaveOut(conflict);
    if (hasBroken_) noteMended();
    applyFrames();
}

void LayoutEngine::applyFrames() {
    for (const ConstraintSolver::Variable variable : solver_.takeChanged()) {
        UIView* view = viewOfVariable_[variable];
        if (view && !view->translatesMask_) setMoved(*view);
    }
    appliesFrames_ = true;
    for (UIView* view : moved_) {
        view->layoutState_->isMoved = false;
        view->setFrame(solvedFrame(*view));
    }
    moved_.clear();
    appliesFrames_ = false;
}

CGRect LayoutEngine::solvedFrame(const UIView& view) const {
    CGRect frame = view.frame_;
    const State& state = *view.layoutState_;
    const auto take = [&](CGFloat& length, int part, CGFloat least) {
        const ConstraintSolver::Variable variable = state.variables[static_cast<std::size_t>(part)];
        if (!variable || !solver_.isDetermined(variable)) return;
        const CGFloat value = std::max(solver_.value(variable), least);
        if (std::abs(value - length) > leastDifference) length = value;
    };
    constexpr CGFloat anywhere = -std::numeric_limits<CGFloat>::max();
    take(frame.origin.x, State::Left, anywhere);
    take(frame.origin.y, State::Top, anywhere);
    take(frame.size.width, State::Width, 0);
    take(frame.size.height, State::Height, 0);
    return frame;
}

}  // namespace flarebox
