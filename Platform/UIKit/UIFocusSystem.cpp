#include <UIKit/UIAccessibility.h>
#include <UIKit/UIFocusSystem.h>
#include <UIKit/UIWindow.h>
#include <UIKit/ViewAnimations.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace flarebox {
namespace {

/// Seconds that a focused view which has gone may take to come back, or to be replaced, before another is chosen.
constexpr double graceTime = 0.3;
/// Sticks that nobody touches are seldom quite in the middle.
constexpr CGFloat deadZone = 0.2;
constexpr double longestStep = 0.1;
/// How much more a step aside counts than one in the direction of the arrow.
constexpr CGFloat asideWeight = 2, acrossWeight = 0.3;

bool isArrow(UIPressType type) {
    return type <= UIPressType::RightArrow;
}

/// What a presented controller knows the press by.
std::string_view keyFor(UIPressType type) {
    switch (type) {
        case UIPressType::Menu:
            return "escape";
        case UIPressType::PlayPause:
            return "space";
        case UIPressType::LeftArrow:
            return "left";
        case UIPressType::RightArrow:
            return "right";
        default:
            return "";
    }
}

/// The rectangles as if the arrow pointed to the right.
CGRect turned(const CGRect& rect, UIPressType arrow) {
    switch (arrow) {
        case UIPressType::LeftArrow:
            return CGRectMake(-rect.maxX(), rect.minY(), rect.width(), rect.height());
        case UIPressType::DownArrow:
            return CGRectMake(rect.minY(), rect.minX(), rect.height(), rect.width());
        case UIPressType::UpArrow:
            return CGRectMake(-rect.maxY(), rect.minX(), rect.height(), rect.width());
        default:
            return rect;
    }
}

/// How far it is from one rectangle to another in the arrow's direction; infinite where that lies elsewhere.
CGFloat distance(const CGRect& from, const CGRect& to, UIPressType arrow) {
    const CGRect here = turned(from, arrow), there = turned(to, arrow);
    if (there.midX() < here.midX() + 1) return std::numeric_limits<CGFloat>::infinity();
    const CGFloat ahead = std::max(0.0, there.minX() - here.maxX());
    const CGFloat aside = std::max({0.0, there.minY() - here.maxY(), here.minY() - there.maxY()});
    // Of several that lie ahead the one across from the middle, rather than one whose corner is a little nearer.
    const CGFloat across = std::max({0.0, there.minY() - here.midY(), here.midY() - there.maxY()});
    const CGFloat between = std::hypot(there.midX() - here.midX(), there.midY() - here.midY());
    return ahead + asideWeight * aside + acrossWeight * across + between / 10;
}

CGFloat distance(CGPoint from, const CGRect& to) {
    return std::hypot(to.midX() - from.x, to.midY() - from.y);
}

}  // namespace

/// Light within dark, so that one of them stands out from whatever is behind.
class UIFocusSystem::Ring {
public:
    Ring() : view_(make<UIView>()), light_(make<UIView>()) {
        view_->setAccessibilityIdentifier("focusRing");
        view_->setUserInteractionEnabled(false);
        view_->layer().setBorderWidth(width + 2 * edge);
        view_->layer().setBorderColor(UIColor::rgb(0x0D0F13));
        light_->layer().setBorderWidth(width);
        light_->layer().setBorderColor(UIColor::whiteColor());
        view_->addSubview(*light_);
    }
    const Ref<UIView>& view() const { return view_; }

    void place(const CGRect& focused, CGFloat radius, const CGRect& limits) {
        constexpr CGFloat outset = gap + width + 2 * edge;
        const CGRect outer = focused.inset(-outset, -outset).intersection(limits);
        const CGFloat own = std::min({radius, focused.width() / 2, focused.height() / 2});
        view_->setFrame(outer);
        light_->setFrame(CGRectMake(edge, edge, outer.width() - 2 * edge, outer.height() - 2 * edge));
        view_->layer().setCornerRadius(std::max(own, leastRadius) + outset);
        light_->layer().setCornerRadius(std::max(own, leastRadius) + outset - edge);
    }

private:
    static constexpr CGFloat gap = 1, width = 2, edge = 1, leastRadius = 2;
    Ref<UIView> view_, light_;
};

UIFocusSystem::UIFocusSystem(UIWindow& window) : window_(window) {}
UIFocusSystem::~UIFocusSystem() = default;

UIFocusSystem::Level& UIFocusSystem::level() {
    const auto presented = window_.presentedViewControllers();
    levels_.resize(presented.size() + 1);
    UIViewController* const owner = presented.empty() ? nullptr : presented.back().get();
    Level& level = levels_.back();
    // Another one may have taken the place of the one that was there.
    if (level.owner.get() != owner) level = Level(), level.owner = Weak<UIViewController>(owner);
    return level;
}

void UIFocusSystem::take() {
    isTaken_ = showsRing_ = true;
    findFocus(false);
}

void UIFocusSystem::giveBack() {
    isTaken_ = false;
    stick_ = {};
    levels_.clear();
    hideRing();
}

bool UIFocusSystem::takesPresses() const {
    return isTaken_ || !window_.presentedViewControllers().empty();
}

UIView* UIFocusSystem::focusedView() const {
    const bool isCurrent = levels_.size() == window_.presentedViewControllers().size() + 1;
    return isCurrent && takesPresses() ? levels_.back().focused.get() : nullptr;
}

void UIFocusSystem::hideRing() {
    showsRing_ = false;
    placeRing();
}

// Where the focus is.

bool UIFocusSystem::canFocus(UIView& view) {
    return view.canBecomeFocused() && uncoveredPointOf(view);
}

std::vector<Ref<UIView>> UIFocusSystem::candidates() const {
    std::vector<Ref<UIView>> views;
    for (const UIAccessibilityElement& element : accessibilityElementsOf(window_)) {
        if (element.view->canBecomeFocused()) views.push_back(element.view);
    }
    return views;
}

void UIFocusSystem::requestFocus(UIView& view) {
    if (takesPresses()) level().wanted = Weak<UIView>(&view);
}

void UIFocusSystem::focus(UIView& view) {
    const Ref<UIView> kept(&view);
    for (UIView* each = view.superview(); each; each = each->superview()) each->revealFocused(view);
    Level& level = this->level();
    level.focused = kept;
    level.wanted = nullptr;
    level.lastRect = visibleRectOf(view);
    level.lostSince = -1;
}

UIView* UIFocusSystem::preferredView() const {
    UIView* view = nullptr;
    if (!window_.presentedViewControllers().empty())
        view = window_.presentedViewControllers().back()->view().preferredFocusedView();
    for (std::size_t i = window_.subviews().size(); i-- > 0 && !view;)
        view = window_.subviews()[i]->preferredFocusedView();
    return view && canFocus(*view) ? view : nullptr;
}

/// Sees to it that something is focused; without haste only where it is clear what.
bool UIFocusSystem::findFocus(bool now) {
    Level& level = this->level();
    UIView* const wanted = level.wanted.get();
    if (wanted && canFocus(*wanted)) return focus(*wanted), true;
    UIView* const focused = level.focused.get();
    if (focused && canFocus(*focused)) return true;
    const bool isFirst = level.lastRect.isEmpty();
    if (UIView* preferred = isFirst ? preferredView() : nullptr) return focus(*preferred), true;
    if (!now) return false;
    const std::vector<Ref<UIView>> views = candidates();
    if (views.empty()) return false;
    if (isFirst) return focus(*views.front()), true;
    const CGPoint last{level.lastRect.midX(), level.lastRect.midY()};
    focus(
        **std::ranges::min_element(views, {}, [&](const auto& each) { return distance(last, visibleRectOf(*each)); }));
    return true;
}

// Presses.

bool UIFocusSystem::press(UIPressType type) {
    if (!takesPresses()) return false;
    const bool isModal = !window_.presentedViewControllers().empty();
    // What fades out takes no more presses, and leaves none to others.
    if (isModal && window_.presentedViewControllers().back()->isBeingDismissed()) return true;
    const bool wasHidden = !std::exchange(showsRing_, true);
    const bool hasFocus = findFocus(true);
    if (isArrow(type) || type == UIPressType::Select) {
        if (!hasFocus) return pressOthers(type) || isModal;
        if (!wasHidden) return pressFocused(type);
        return true;
    }
    if (const Ref<UIView> focused{level().focused.get()}; hasFocus && focused->pressBegan(type)) return true;
    if (pressOthers(type) || isModal) return true;
    if (type != UIPressType::Menu) return false;
    giveBack();
    return true;
}

bool UIFocusSystem::pressFocused(UIPressType type) {
    const Ref<UIView> focused(level().focused.get());
    if (type == UIPressType::Select) {
        focused->accessibilityActivate();
        return true;
    }
    const bool isSideways = type == UIPressType::LeftArrow || type == UIPressType::RightArrow;
    if (isSideways && focused->accessibilityAdjust(type == UIPressType::LeftArrow ? -1 : 1)) return true;
    move(*focused, type);
    return true;
}

/// Those that are shown over everything, or else what stands in the window, the topmost first.
bool UIFocusSystem::pressOthers(UIPressType type) {
    if (!window_.presentedViewControllers().empty()) return window_.keyDown(keyFor(type));
    const std::vector<Ref<UIView>> views(window_.subviews().rbegin(), window_.subviews().rend());
    return std::ranges::any_of(views, [&](const Ref<UIView>& view) { return view->pressBegan(type); });
}

void UIFocusSystem::move(UIView& from, UIPressType arrow) {
    for (UIView* each = from.superview(); each; each = each->superview()) {
        UIView* const next = each->viewToFocusAfter(from, arrow);
        if (next) return focus(*next);
    }
    const CGRect here = visibleRectOf(from);
    UIView* nearest = nullptr;
    CGFloat least = std::numeric_limits<CGFloat>::infinity();
    const auto views = candidates();
    for (const Ref<UIView>& view : views) {
        const CGFloat way = view.get() == &from ? least : distance(here, visibleRectOf(*view), arrow);
        if (way >= least) continue;
        least = way;
        nearest = view.get();
    }
    if (nearest) focus(*nearest);
}

bool UIFocusSystem::focusNext(bool backwards) {
    if (!takesPresses()) return false;
    const bool wasHidden = !std::exchange(showsRing_, true);
    if (!findFocus(true)) return !window_.presentedViewControllers().empty();
    if (wasHidden) return true;
    const auto views = candidates();
    const auto here = std::ranges::find(views, level().focused.get(), &Ref<UIView>::get);
    if (here == views.end()) return true;
    const auto step = backwards ? views.size() - 1 : 1;
    focus(*views[(static_cast<std::size_t>(here - views.begin()) + step) % views.size()]);
    return true;
}

bool UIFocusSystem::stickMoved(CGPoint deflection) {
    const auto taken = [](CGFloat part) { return std::abs(part) > deadZone ? std::clamp(part, -1.0, 1.0) : 0.0; };
    stick_ = takesPresses() ? CGPoint{taken(deflection.x), taken(deflection.y)} : CGPoint();
    return takesPresses();
}

// Frames.

void UIFocusSystem::update(double now) {
    const double step = std::clamp(now - std::exchange(lastUpdate_, now), 0.0, longestStep);
    // What took presses of its own accord may have gone.
    if (!takesPresses()) showsRing_ = false;
    if (showsRing_) {
        Level& level = this->level();
        if (level.lostSince < 0) level.lostSince = now;
        const bool isLate = now - level.lostSince >= graceTime && !ViewAnimations::isAnimating();
        if (findFocus(isLate)) this->level().lostSince = -1;
    }
    if (stick_ != CGPoint() && takesPresses()) runStick(step);
    placeRing();
}

void UIFocusSystem::runStick(double step) {
    const Ref<UIView> focused(focusedView());
    if (focused && focused->stickHeld(stick_, step)) return;
    // What lies below something presented is out of reach.
    if (!window_.presentedViewControllers().empty()) return;
    const std::vector<Ref<UIView>> views(window_.subviews().rbegin(), window_.subviews().rend());
    static_cast<void>(
        std::ranges::any_of(views, [&](const Ref<UIView>& view) { return view->stickHeld(stick_, step); }));
}

void UIFocusSystem::placeRing() {
    UIView* const focused = showsRing_ ? focusedView() : nullptr;
    const CGRect rect = focused ? visibleRectOf(*focused) : CGRect();
    if (rect.isEmpty()) {
        if (ring_) window_.removeOverlay(*ring_->view());
        return;
    }
    if (!ring_) ring_ = std::make_unique<Ring>();
    level().lastRect = rect;
    ring_->place(rect, focused->focusRingRadius(), {{}, window_.bounds().size});
    window_.addOverlay(*ring_->view());
}

}  // namespace flarebox
