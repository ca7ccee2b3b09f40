#include <Flarebox/Views/Shades.h>
#include <Foundation/Values.h>

namespace flarebox {
namespace {

constexpr float shadowStrength = 0.35F;
constexpr int shadowSteps = 12;

}  // namespace

const ClassInfo& PanelShadowView::staticClass() {
    static const ClassInfo info("PanelShadowView", &UIView::staticClass(), createObject<PanelShadowView>);
    return info;
}

void PanelShadowView::drawRect(Canvas& canvas, const CGRect& bounds) {
    // A straight ramp shows its end as an edge; falling off by the square, it vanishes.
    const CGFloat step = bounds.width() / shadowSteps;
    const auto strength = [](int at) {
        const float rest = 1 - static_cast<float>(at) / shadowSteps;
        return UIColor::blackColor().withAlpha(shadowStrength * rest * rest);
    };
    for (int i = 0; i < shadowSteps; ++i) {
        canvas.fillGradient(CGRectMake(bounds.minX() + i * step, bounds.minY(), step, bounds.height()), strength(i),
                            strength(i + 1), true);
    }
}

const ClassInfo& ListFadeView::staticClass() {
    static const Property properties[] = {
        {"atRightEnd", "TB",
         [](const NSObject& view) { return Value(static_cast<const ListFadeView&>(view).atRightEnd()); },
         [](NSObject& view, const Value& value) {
             static_cast<ListFadeView&>(view).setAtRightEnd(value.as<NSNumber>().boolValue());
         }},
    };
    static const ClassInfo info("ListFadeView", &UIView::staticClass(), createObject<ListFadeView>,
                                {.properties = properties});
    return info;
}

void ListFadeView::setAtRightEnd(bool atRightEnd) {
    atRightEnd_ = atRightEnd;
    setNeedsDisplay();
}

void ListFadeView::drawRect(Canvas& canvas, const CGRect& bounds) {
    const UIColor& panel = tintColor();
    const UIColor clear = panel.withAlpha(0);
    canvas.fillGradient(bounds, atRightEnd_ ? clear : panel, atRightEnd_ ? panel : clear, true);
}

}  // namespace flarebox
