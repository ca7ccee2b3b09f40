#include <Tests/Views/StatesTesting.h>
#include <UIKit/UIAccessibility.h>
#include <UIKit/UIControl.h>

#include <gmock/gmock.h>

#include <map>

namespace flarebox::testing {
namespace {

using ::testing::ElementsAre;

class AccessibilityTest : public StatesTest {
protected:
    /// "button Close", one after the other, with what is peculiar of their state behind.
    std::string spoken() {
        std::string lines;
        for (const UIAccessibilityElement& element : accessibilityElementsOf(window())) {
            std::string line = std::string(nameOf(element.role)) + " " + element.label.string();
            if (contains(element.traits, UIAccessibilityTraits::Selected)) line += ", selected";
            if (contains(element.traits, UIAccessibilityTraits::NotEnabled)) line += ", disabled";
            lines += line + "; ";
        }
        return lines;
    }
    /// Whether a touch on the view does something, of itself or with what is around it.
    static bool responds(const UIView& view) {
        return dynamic_cast<const UIControl*>(&view) || dynamic_cast<const UICollectionViewCell*>(&view) ||
               dynamic_cast<const SCNView*>(&view);
    }
    /// What a finger finds anywhere on the screen, and nobody is told of.
    std::vector<std::string> untold() {
        const auto elements = accessibilityElementsOf(window());
        std::map<UIView*, std::string> missing;
        for (CGFloat y = 2; y < 375; y += 6) {
            for (CGFloat x = 2; x < 667; x += 6) {
                UIView* view = window().hitTest({x, y});
                while (view && !responds(*view)) view = view->superview();
                const bool isTold = !view || std::ranges::any_of(elements, [&](const UIAccessibilityElement& each) {
                    return each.view.get() == view && !each.label.text().empty() && !nameOf(each.role).empty();
                });
                if (!isTold)
                    missing[view] = view->description() + " at " + std::to_string(x) + ", " + std::to_string(y);
            }
        }
        std::vector<std::string> names;
        for (const auto& [view, name] : missing) names.push_back(name);
        return names;
    }
};

TEST_F(AccessibilityTest, EveryStateIsToldInReadingOrder) {
    const std::string top = "text Flarebox; button Close; ", open = "button Close Flarebox; ";
    const std::string noModes = "button 2D picture, disabled; button 3D model, disabled; button Video, disabled; ";
    const std::string modes = "button 2D picture, selected; button 3D model; button Video; ";
    const std::string list =
        "button Previous products; list Products; list item Product 1, selected; list item Product 2; "
        "list item Product 3; button Next products; ";
    const std::string asset = "text Product 1; text What it is; button Get coupon; button Buy; " + list + open;
    const std::string bar = "button Play, disabled; adjustable Position, disabled; button Sound off, disabled; ";
    const std::string left = "button Open Kestrin App; button Close; " + modes + open;
    const std::map<std::string, std::string> expected = {
        {"closed", "button Open Flarebox; "},
        {"failed", top + "text Something went wrong; " + noModes + open},
        {"empty",
         top + noModes + "text Nothing here yet; text New products for this game will show up here soon.; " + open},
        {"loading", top + noModes + "progress Loading; " + open},
        {"picture", top + "image Product 1; " + modes + asset},
        {"offline", top + "image Product 1; text You have no internet connection; " + modes + asset},
        {"model", top +
                      "adjustable Product 1; button Full screen; button 2D picture; button 3D model, selected; "
                      "button Video; " +
                      asset},
        {"model, full screen", "adjustable Product 1; button Leave full screen; "},
        {"video", top +
                      "video Product 1; button Play video; button 2D picture; button 3D model; "
                      "button Video, selected; " +
                      asset},
        {"video, full screen",
         "video Video; button Done; progress Loading; button Pause; "
         "adjustable Position, disabled; button Sound off; "},
        {"broken video, full screen",
         "button Done; text This video cannot be played; "
         "text The video does not exist any more.; " +
             bar},
        {"no model", top +
                         "button 2D picture; button 3D model, selected; text There is no 3D model of this product; "
                         "button Video, disabled; text Product 2; text What it is; button Get coupon; "
                         "button Buy, disabled; button Previous products; list Products; "
                         "list item Product 2, selected; list item Product 3; list item Product 4; "
                         "button Next products; " +
                         open},
        {"saving a coupon", top + "progress Loading; text Saving coupon...; " + modes + open},
        {"coupon saved", top + "text Coupon saved to My coupons in the Kestrin App; " + left},
        {"coupon failed", top + "text The network connection was lost.; " + left},
        {"alert", "alert Sure?; text Sure?; text Really?; button Cancel; button OK; "},
    };
    std::size_t states = 0;
    visitStates([&](const std::string& state) {
        ++states;
        EXPECT_THAT(untold(), ElementsAre());
        const auto found = expected.find(state);
        EXPECT_EQ(spoken(), found == expected.end() ? "an unknown state" : found->second);
    });
    EXPECT_EQ(states, expected.size());
}

}  // namespace
}  // namespace flarebox::testing
