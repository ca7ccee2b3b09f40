#include <Flarebox/C/Hosts.h>
#include <UIKit/UIAccessibility.h>
#include <UIKit/UIFocusSystem.h>
#include <UIKit/UIScreen.h>
#include <UIKit/UIWindow.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace flarebox::c {
namespace {

static_assert(static_cast<int>(UIAccessibilityRole::Text) == FLAREBOX_ROLE_TEXT);
static_assert(static_cast<int>(UIAccessibilityRole::Alert) == FLAREBOX_ROLE_ALERT);

std::uint32_t stateOf(const UIAccessibilityElement& element) {
    std::uint32_t state = element.view->window()->focusSystem().hasRing(*element.view) ? FLAREBOX_STATE_FOCUSED : 0;
    if (contains(element.traits, UIAccessibilityTraits::NotEnabled)) state |= FLAREBOX_STATE_DISABLED;
    if (contains(element.traits, UIAccessibilityTraits::Selected)) state |= FLAREBOX_STATE_SELECTED;
    return state;
}

void visit(const UIAccessibilityElement& element, flarebox_element_visitor visitor, void* context) {
    const std::string name = element.label.string(), value = element.value.string();
    const CGFloat larger = UIScreen::mainScreen().interfaceScale();
    const CGRect& frame = element.frame;
    const flarebox_element told = {
        sizeof told,
        element.view->accessibilityNumber(),
        name.c_str(),
        value.c_str(),
        static_cast<std::int32_t>(element.role),
        stateOf(element),
        {frame.minX() * larger, frame.minY() * larger, frame.width() * larger, frame.height() * larger}};
    visitor(context, &told);
}

/// Runs `action` on the view of the element, if it is there.
template <class Action>
bool act(flarebox_host* host, std::uint64_t id, const Action& action) {
    bool isDone = false;
    with(hosts(), host, [&](Host& object) {
        const auto elements = object.panel.accessibilityElements();
        const auto isMeant = [id](const auto& element) { return element.view->accessibilityNumber() == id; };
        const auto found = std::ranges::find_if(elements, isMeant);
        isDone = found != elements.end() && action(object.panel, *found->view);
        if (!isDone)
            failed(FLAREBOX_FAILED, found == elements.end() ? "there is no such element, or not any more"
                                                            : "nothing of the kind can be done with the element");
    });
    return isDone;
}

}  // namespace

}  // namespace flarebox::c

using namespace flarebox;
using namespace flarebox::c;

extern "C" {

std::size_t flarebox_host_visit_elements(flarebox_host* host, flarebox_element_visitor visitor, void* context) {
    std::size_t count = 0;
    with(hosts(), host, [&](Host& object) {
        const auto elements = object.panel.accessibilityElements();
        count = elements.size();
        for (const auto& element : elements)
            if (visitor && element.view->window()) visit(element, visitor, context);
    });
    return count;
}

bool flarebox_host_activate_element(flarebox_host* host, std::uint64_t id) {
    return act(host, id, [](UIHost& panel, UIView& view) { return panel.accessibilityActivate(view); });
}

bool flarebox_host_adjust_element(flarebox_host* host, std::uint64_t id, std::int32_t steps) {
    return act(host, id, [&](UIHost& panel, UIView& view) { return panel.accessibilityAdjust(view, steps); });
}

flarebox_result flarebox_host_take_focus(flarebox_host* host) {
    return with(hosts(), host, [](Host& object) { object.panel.takeFocus(); });
}
flarebox_result flarebox_host_give_back_focus(flarebox_host* host) {
    return with(hosts(), host, [](Host& object) { object.panel.giveBackFocus(); });
}
bool flarebox_host_has_focus(flarebox_host* host) {
    bool has = false;
    with(hosts(), host, [&](Host& object) { has = object.panel.hasFocus(); });
    return has;
}
bool flarebox_host_press(flarebox_host* host, std::int32_t press) {
    const bool isKnown = (press >= FLAREBOX_PRESS_UP && press <= FLAREBOX_PRESS_PLAY_PAUSE) ||
                         press == FLAREBOX_PRESS_PAGE_UP || press == FLAREBOX_PRESS_PAGE_DOWN;
    if (!isKnown) return refused("there is no such press");
    return consumes(host, [&](UIHost& panel) { return panel.press(static_cast<UIPressType>(press)); });
}
bool flarebox_host_stick_moved(flarebox_host* host, double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) return refused("a deflection is two numbers");
    return consumes(host, [&](UIHost& panel) { return panel.stickMoved({x, y}); });
}

flarebox_result flarebox_host_set_interface_scale(flarebox_host* host, double scale) {
    if (!(scale >= 1 && scale <= 3)) return failed(FLAREBOX_INVALID_ARGUMENT, "the scale has to be from 1 to 3");
    return with(hosts(), host, [&](Host& object) { object.panel.setInterfaceScale(scale); });
}

flarebox_result flarebox_host_set_safe_area(flarebox_host* host, double top, double left, double bottom, double right) {
    const double least = std::min({top, left, bottom, right});
    if (!(least >= 0) || !std::isfinite(top + left + bottom + right))
        return failed(FLAREBOX_INVALID_ARGUMENT, "the insets have to be points, not less than 0");
    return with(hosts(), host, [&](Host& object) { object.panel.setSafeAreaInsets({top, left, bottom, right}); });
}

flarebox_result flarebox_host_set_reduce_motion(flarebox_host* host, bool reduce) {
    return with(hosts(), host, [&](Host& object) { object.panel.setReduceMotion(reduce); });
}

}  // extern "C"
