#include <Foundation/Clock.h>
#include <Foundation/MainQueue.h>
#include <UIKit/UIView.h>
#include <UIKit/UIWindow.h>
#include <UIKit/ViewAnimations.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace flarebox {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Ref<UIView> view(UIView* parent, const CGRect& frame) {
    auto result = make<UIView>();
    result->setFrame(frame);
    if (parent) parent->addSubview(*result);
    return result;
}

std::vector<UIView*> order(const UIView& parent) {
    std::vector<UIView*> views;
    for (const auto& subview : parent.subviews()) views.push_back(subview.get());
    return views;
}

class Reporter : public UIView {
public:
    Reporter(std::string name, std::vector<std::string>& events) : name_(std::move(name)), events_(events) {}
    void didMoveToSuperview() override { events_.push_back(name_ + (superview() ? " in" : " out")); }
    void didMoveToWindow() override { events_.push_back(name_ + (window() ? " shown" : " gone")); }

private:
    std::string name_;
    std::vector<std::string>& events_;
};

TEST(View, SubviewsHaveOneParentAndAnOrder) {
    auto one = make<UIView>(), other = make<UIView>();
    auto a = view(one.get(), {}), b = view(one.get(), {}), c = view(one.get(), {});
    one->bringSubviewToFront(*a);
    EXPECT_THAT(order(*one), ElementsAre(b.get(), c.get(), a.get()));
    one->sendSubviewToBack(*a);
    one->addSubview(*b);
    EXPECT_THAT(order(*one), ElementsAre(a.get(), c.get(), b.get()));
    one->insertSubview(*b, 1);
    EXPECT_THAT(order(*one), ElementsAre(a.get(), b.get(), c.get()));
    other->insertSubview(*b, 99);
    EXPECT_THAT(order(*one), ElementsAre(a.get(), c.get()));
    EXPECT_EQ(b->superview(), other.get());
    other->bringSubviewToFront(*a);
    EXPECT_EQ(a->superview(), one.get());

    // A view inside itself, at any depth, is refused.
    c->addSubview(*other);
    ::testing::internal::CaptureStderr();
    b->addSubview(*one);
    b->addSubview(*b);
    EXPECT_NE(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(one->superview(), nullptr);
    EXPECT_TRUE(b->isDescendantOfView(*one));

    const Weak<UIView> weak(c);
    c->removeFromSuperview();
    c->removeFromSuperview();
    c = nullptr;
    EXPECT_FALSE(weak);
    EXPECT_EQ(other->superview(), nullptr);
}

TEST(View, HooksTellOfParentAndWindow) {
    std::vector<std::string> events;
    auto window = make<UIWindow>();
    auto outer = make<Reporter>("outer", events), inner = make<Reporter>("inner", events);
    outer->addSubview(*inner);
    EXPECT_THAT(std::exchange(events, {}), ElementsAre("inner in"));
    window->addSubview(*outer);
    EXPECT_THAT(std::exchange(events, {}), ElementsAre("outer shown", "inner shown", "outer in"));
    EXPECT_TRUE(inner->isVisibleInWindow());
    outer->setAlpha(0.005);
    EXPECT_FALSE(inner->isVisibleInWindow());
    outer->setAlpha(1);
    window->setHidden(true);
    EXPECT_FALSE(inner->isVisibleInWindow());
    window->bringSubviewToFront(*outer);
    EXPECT_THAT(events, IsEmpty());
    outer->removeFromSuperview();
    EXPECT_THAT(events, ElementsAre("outer gone", "inner gone", "outer out"));
    EXPECT_EQ(inner->window(), nullptr);
}

TEST(View, PointsAreConvertedThroughFramesAndScrolling) {
    auto root = view(nullptr, {{7, 9}, {500, 500}});
    auto list = view(root.get(), {{100, 50}, {200, 100}}), cell = view(list.get(), {{300, 10}, {40, 40}}),
         aside = view(root.get(), {{20, 30}, {10, 10}});
    list->setBoundsOrigin({250, 0});
    EXPECT_EQ(cell->convertPointToView({1, 2}, nullptr), (CGPoint{100 + 300 - 250 + 1, 50 + 10 + 2}));
    EXPECT_EQ(cell->convertPointToView({1, 2}, aside.get()), (CGPoint{151 - 20, 62 - 30}));
    EXPECT_EQ(aside->convertRectToView({{131, 32}, {3, 4}}, cell.get()), (CGRect{{1, 2}, {3, 4}}));
    EXPECT_EQ(cell->presentationRectInRoot(), (CGRect{{150, 60}, {40, 40}}));
    EXPECT_EQ(list->bounds(), (CGRect{{250, 0}, {200, 100}}));
    const CGFloat notANumber = std::numeric_limits<CGFloat>::quiet_NaN();
    cell->setFrame({{notANumber, 0}, {1, 1}});
    list->setBoundsOrigin({0, notANumber});
    EXPECT_EQ(cell->frame(), CGRectMake(300, 10, 40, 40));
    EXPECT_EQ(list->bounds().origin.x, 250);
    cell->setAlpha(notANumber);
    EXPECT_EQ(cell->alpha(), 0);
}

TEST(View, TheTopmostViewThatTakesInputIsHit) {
    auto root = view(nullptr, {{}, {100, 100}});
    auto below = view(root.get(), {{10, 10}, {50, 50}}), above = view(root.get(), {{40, 40}, {50, 50}}),
         child = view(above.get(), {{30, 30}, {40, 40}});
    EXPECT_EQ(root->hitTest({15, 15}), below.get());
    EXPECT_EQ(root->hitTest({50, 50}), above.get());
    EXPECT_EQ(root->hitTest({75, 75}), child.get());
    EXPECT_EQ(root->hitTest({95, 95}), root.get()) << "what sticks out of its parent is not hit";
    EXPECT_EQ(root->hitTest({100, 50}), nullptr);
    above->setBoundsOrigin({20, 20});
    EXPECT_EQ(root->hitTest({55, 55}), child.get());
    const std::function<void(bool)> switches[] = {[&](bool off) { above->setHidden(off); },
                                                  [&](bool off) { above->setAlpha(off ? 0.01 : 1); },
                                                  [&](bool off) { above->setUserInteractionEnabled(!off); }};
    for (const auto& setOff : switches) {
        setOff(true);
        EXPECT_EQ(root->hitTest({42, 42}), below.get());
        EXPECT_EQ(root->hitTest({70, 70}), root.get());
        setOff(false);
        EXPECT_EQ(root->hitTest({42, 42}), above.get());
    }
}

class ViewAnimation : public ::testing::Test {
protected:
    ViewAnimation() { Clock::setCurrent(&clock_); }
    ~ViewAnimation() override {
        ViewAnimations::removeAll();
        MainQueue::shared().removeAll();
        Clock::setCurrent(nullptr);
    }

    void pass(double seconds) {
        clock_.advance(seconds);
        ViewAnimations::tick(clock_.uptime());
        MainQueue::shared().run();
    }
    void slideTo(CGFloat x, double duration = 0.3, std::optional<bool>* result = nullptr) {
        UIView::animateWithDuration(
            duration,
            [&] {
                panel_->setFrame({{x, 0}, {200, 100}});
            },
            [result](bool finished) {
                if (result) *result = finished;
            });
    }
    CGFloat shownX() const { return panel_->presentationFrame().minX(); }

    VirtualClock clock_;
    Ref<UIView> root_ = view(nullptr, {{}, {500, 100}}), panel_ = view(root_.get(), {{-200, 0}, {200, 100}});
};

TEST_F(ViewAnimation, EasesFromWhatIsShownToWhatIsSet) {
    std::optional<bool> result;
    slideTo(0, 0.3, &result);
    EXPECT_EQ(panel_->frame().minX(), 0);
    EXPECT_EQ(shownX(), -200);
    EXPECT_TRUE(ViewAnimations::isAnimating());
    pass(0.03);
    const CGFloat start = shownX() + 200;
    EXPECT_GT(start, 0.5);
    EXPECT_LT(start, 10) << "it sets off slowly";
    pass(0.12);
    EXPECT_NEAR(shownX(), -100, 1e-6);
    pass(0.12);
    EXPECT_NEAR(-shownX(), start, 1e-6) << "and arrives as it set off";
    EXPECT_FALSE(result);
    pass(0.0300001);
    EXPECT_EQ(shownX(), 0);
    EXPECT_EQ(result, true);
    EXPECT_FALSE(ViewAnimations::isAnimating());
}

TEST_F(ViewAnimation, TurnsRoundInTheMiddle) {
    std::optional<bool> there, back;
    slideTo(0, 0.3, &there);
    pass(0.15);
    slideTo(-200, 0.3, &back);
    EXPECT_NEAR(shownX(), -100, 1e-6);
    pass(0);
    EXPECT_EQ(there, false);
    pass(0.15);
    EXPECT_NEAR(shownX(), -150, 1e-6);
    pass(0.2);
    EXPECT_EQ(shownX(), -200);
    EXPECT_EQ(back, true);
    // A change outside animations shows at once.
    slideTo(0, 0.3, &there);
    pass(0.1);
    panel_->setFrame({{-50, 0}, {200, 100}});
    EXPECT_EQ(shownX(), -50);
    pass(0);
    EXPECT_EQ(there, false);
    // The final value set twice in one animation is not two animations.
    UIView::animateWithDuration(
        0.2,
        [&] {
            slideTo(10, 0);
            panel_->setFrame({{20, 0}, {200, 100}});
            panel_->setFrame({{30, 0}, {200, 100}});
        },
        [&](bool finished) { there = finished; });
    pass(0.1);
    EXPECT_NEAR(shownX(), 20, 1e-6) << "half way from 10 to 30";
    pass(0.1001);
    EXPECT_EQ(there, true);
}

TEST_F(ViewAnimation, LayoutInsideItMovesAndWhatIsNewOrExceptedDoesNot) {
    using enum NSLayoutAttribute;
    panel_->setTranslatesAutoresizingMaskIntoConstraints(false);
    const auto leading = NSLayoutConstraint::constraintWithItem(*panel_, Leading, NSLayoutRelation::Equal, root_.get(),
                                                                Leading, 1, -200);
    root_->addConstraint(leading);
    root_->layoutIfNeeded();
    auto child = view(panel_.get(), {{10, 10}, {20, 20}}), other = view(panel_.get(), {{0, 0}, {20, 20}});
    Ref<UIView> late;
    leading->setConstant(0);
    UIView::animateWithDuration(0.3, [&] {
        root_->layoutIfNeeded();
        late = view(panel_.get(), {{50, 50}, {20, 20}});
        child->setAlpha(0);
        UIView::performWithoutAnimation([&] { other->setFrame({{5, 5}, {20, 20}}); });
    });
    EXPECT_EQ(panel_->frame().minX(), 0);
    EXPECT_EQ(shownX(), -200);
    EXPECT_EQ(late->presentationFrame(), late->frame());
    EXPECT_EQ(other->presentationFrame(), other->frame());
    EXPECT_EQ(child->presentationAlpha(), 1);
    pass(0.15);
    EXPECT_NEAR(child->presentationAlpha(), 0.5, 1e-9);
    EXPECT_NEAR(child->presentationRectInRoot().minX(), -90, 1e-6) << "what lies in a moving view moves with it";
    EXPECT_EQ(child->convertPointToView({}, nullptr), (CGPoint{10, 10}))
        << "but converting points tells of the final layout";
    EXPECT_EQ(root_->hitTest({-95 + 200.0, 5}), root_.get());
    EXPECT_EQ(root_->hitTest({50, 5}), panel_.get());
    pass(0.2);
    EXPECT_EQ(child->presentationAlpha(), 0);
}

TEST_F(ViewAnimation, EndsWithTheViewAndRunsItsCompletionWhateverHappens) {
    std::vector<std::string> ended;
    const auto note = [&](std::string name) {
        return [&ended, name](bool finished) { ended.push_back(name + (finished ? " finished" : " cut off")); };
    };
    UIView::animateWithDuration(
        0.3, [] {}, note("nothing"));
    UIView::animateWithDuration(
        0, [&] { panel_->setAlpha(0.5); }, note("at once"));
    UIView::animateWithDuration(-1, nullptr, note("null"));
    EXPECT_EQ(panel_->presentationAlpha(), 0.5);
    EXPECT_THAT(ended, IsEmpty()) << "completions never run within the call";
    pass(0);
    EXPECT_THAT(std::exchange(ended, {}), ElementsAre("nothing finished", "at once finished", "null finished"));

    UIView::animateWithDuration(
        0.3, [&] { panel_->setAlpha(0); }, note("view died"));
    pass(0.1);
    panel_->removeFromSuperview();
    panel_ = nullptr;
    pass(0);
    EXPECT_THAT(ended, ElementsAre("view died cut off"));
    EXPECT_FALSE(ViewAnimations::isAnimating());
}

}  // namespace
}  // namespace flarebox
