#include <UIKit/UIAccessibility.h>
#include <UIKit/UIWindow.h>

#include <algorithm>
#include <utility>

namespace flarebox {
namespace {

/// Points. What lies at the screen's edge may reach into it by an error of rounding.
constexpr CGFloat leastSeen = 0.5;

bool reducesMotion = false;

using Elements = std::vector<UIAccessibilityElement>;

UIAccessibilityRole roleOf(const UIView& view, bool isInList) {
    using enum UIAccessibilityRole;
    if (view.accessibilityContainerType() == UIAccessibilityContainerType::List) return List;
    if (view.accessibilityContainerType() == UIAccessibilityContainerType::Alert) return Alert;
    if (isInList) return ListItem;
    static constexpr std::pair<UIAccessibilityTraits, UIAccessibilityRole> roles[] = {
        {UIAccessibilityTraits::Adjustable, Adjustable},    {UIAccessibilityTraits::Button, Button},
        {UIAccessibilityTraits::StartsMediaSession, Video}, {UIAccessibilityTraits::Image, Image},
        {UIAccessibilityTraits::StaticText, Text},          {UIAccessibilityTraits::UpdatesFrequently, Progress},
    };
    for (const auto& [trait, role] : roles) {
        if (contains(view.accessibilityTraits(), trait)) return role;
    }
    return None;
}

/// An element, and those inside it.
struct Group {
    UIAccessibilityElement element;
    std::vector<Group> members;
};

bool encloses(const CGRect& outer, const CGRect& inner) {
    return inner.minX() >= outer.minX() && inner.maxX() <= outer.maxX() && inner.minY() >= outer.minY() &&
           inner.maxY() <= outer.maxY();
}

/// Row by row: what lies at the height of the highest one that is left stands in its row. What lies behind all the
/// others comes first.
void sortForReading(std::vector<Group>& groups) {
    const auto frameOf = [](const Group& group) -> const CGRect& { return group.element.frame; };
    std::ranges::stable_sort(groups, {}, [&](const Group& group) { return frameOf(group).minY(); });
    for (auto row = groups.begin(); row != groups.end();) {
        const CGRect highest = frameOf(*row);
        const bool isBackdrop =
            std::all_of(row, groups.end(), [&](const Group& each) { return encloses(highest, frameOf(each)); });
        const auto end = std::stable_partition(
            row, groups.end(), [&](const Group& each) { return !isBackdrop && frameOf(each).midY() < highest.maxY(); });
        // An element without height would have no row at all.
        const auto next = end == row ? row + 1 : end;
        std::stable_sort(row, next,
                         [&](const Group& a, const Group& b) { return frameOf(a).minX() < frameOf(b).minX(); });
        row = next;
    }
}

void collect(UIView& view, bool isInList, std::vector<Group>& groups) {
    const auto collectBelow = [&](bool isList, std::vector<Group>& members) {
        for (const auto& subview : view.subviews()) collect(*subview, isList, members);
    };
    if (view.isHidden()) return;
    const UIAccessibilityContainerType container = view.accessibilityContainerType();
    const bool isContainer = container != UIAccessibilityContainerType::None;
    if (!isContainer && !view.isAccessibilityElement()) return collectBelow(isInList, groups);
    const bool isGroup = container == UIAccessibilityContainerType::SemanticGroup;
    const CGRect frame = visibleRectOf(view);
    if (frame.width() < leastSeen || frame.height() < leastSeen) return;
    if (!isGroup && !uncoveredPointOf(view)) return;
    Group group{{Ref<UIView>(&view), view.accessibilityLabel(), view.accessibilityValue(), view.accessibilityTraits(),
                 roleOf(view, isInList), frame},
                {}};
    if (isContainer) collectBelow(container == UIAccessibilityContainerType::List, group.members);
    if (isGroup && group.members.empty()) return;
    groups.push_back(std::move(group));
}

void list(std::vector<Group>& groups, Elements& elements) {
    sortForReading(groups);
    for (Group& group : groups) {
        const bool isGroup = group.element.role == UIAccessibilityRole::None && !group.members.empty();
        if (!isGroup) elements.push_back(std::move(group.element));
        list(group.members, elements);
    }
}

/// Of two views, of which none lies within the other.
bool isDrawnAfter(const UIView& view, const UIView& other) {
    const UIView* branch = &view;
    while (branch->superview() && !other.isDescendantOfView(*branch->superview())) branch = branch->superview();
    const UIView* const common = branch->superview();
    if (!common) return false;
    const UIView* otherBranch = &other;
    while (otherBranch->superview() != common) otherBranch = otherBranch->superview();
    const auto place = [&](const UIView* each) {
        return std::ranges::find(common->subviews(), each, &Ref<UIView>::get);
    };
    return place(branch) > place(otherBranch);
}

bool isSeeThrough(const UIView& view) {
    return view.backgroundColor().isClear() && !view.drawsContent() && !view.showsPixelBuffer();
}

bool isUncovered(const UIView& view, UIWindow& window, CGPoint point) {
    const UIView* hit = window.hitTest(point);
    if (hit && hit->isDescendantOfView(view)) return true;
    while (hit && isSeeThrough(*hit)) hit = hit->superview();
    // What takes no touches, a label for example, may lie over what does.
    return !hit || hit->isDescendantOfView(view) || view.isDescendantOfView(*hit) || isDrawnAfter(view, *hit);
}

}  // namespace

std::string_view nameOf(UIAccessibilityRole role) {
    static constexpr std::string_view names[] = {"",      "text",     "button", "image",     "adjustable",
                                                 "video", "progress", "list",   "list item", "alert"};
    return names[static_cast<std::size_t>(role)];
}

Elements accessibilityElementsOf(UIWindow& window) {
    std::vector<Group> groups;
    collect(window, false, groups);
    Elements elements;
    list(groups, elements);
    return elements;
}

bool UIAccessibilityIsReduceMotionEnabled() {
    return reducesMotion;
}

void UIAccessibilitySetReduceMotion(bool reduce) {
    reducesMotion = reduce;
}

CGRect visibleRectOf(const UIView& view) {
    if (!view.isVisibleInWindow()) return {};
    CGRect rect = view.presentationRectInRoot();
    for (const UIView* each = view.superview(); each; each = each->superview()) {
        const bool cuts = each->clipsToBounds() || !each->superview();
        if (cuts) rect = rect.intersection(each->presentationRectInRoot());
    }
    return rect;
}

std::optional<CGPoint> uncoveredPointOf(UIView& view) {
    UIWindow* const window = view.window();
    const CGRect rect = visibleRectOf(view);
    if (!window || rect.isEmpty()) return std::nullopt;
    // In parts of the rectangle: its middle, then half-way to its corners and near its edges.
    static constexpr CGPoint places[] = {{0.5, 0.5},  {0.25, 0.25}, {0.75, 0.25}, {0.25, 0.75}, {0.75, 0.75},
                                         {0.5, 0.06}, {0.06, 0.5},  {0.94, 0.5},  {0.5, 0.94}};
    for (const CGPoint& place : places) {
        const CGPoint point{rect.minX() + rect.width() * place.x, rect.minY() + rect.height() * place.y};
        if (isUncovered(view, *window, point)) return point;
    }
    return std::nullopt;
}

}  // namespace flarebox
