#include <Tests/UIKit/Bitmap.h>

#include <Foundation/Clock.h>
#include <Foundation/MainQueue.h>
#include <UIKit/UIActivityIndicatorView.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>
#include <UIKit/UITouch.h>
#include <UIKit/UIWindow.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace flarebox::testing {
namespace {

class PressTarget : public NSObject {
    FLAREBOX_CLASS(PressTarget)
public:
    void press(UIButton* sender) {
        ++presses;
        lastSender = sender;
    }
    void forget() { onForget(); }

    int presses = 0;
    UIButton* lastSender = nullptr;
    std::function<void()> onForget = [] {};
};

const ClassInfo& PressTarget::staticClass() {
    static constexpr Action actions[] = {action<&PressTarget::press>("press:"),
                                         action<&PressTarget::forget>("forget:")};
    static const ClassInfo info("PressTarget", &NSObject::staticClass(), nullptr, {.actions = actions});
    return info;
}

Ref<UIButton> makeButton(const CGRect& frame = CGRectMake(0, 0, 100, 40)) {
    auto button = make<UIButton>();
    button->setFrame(frame);
    return button;
}

/// A finger that goes down at the first point, moves over the others and goes up at the last.
void drag(UIView& view, const std::vector<CGPoint>& points) {
    const auto touch = make<UITouch>(0, view, points.front(), 0);
    view.touchesBegan(*touch);
    for (std::size_t i = 1; i < points.size(); ++i) {
        touch->update(UITouchPhase::Moved, points[i], 0);
        view.touchesMoved(*touch);
    }
    touch->update(UITouchPhase::Ended, points.back(), 0);
    view.touchesEnded(*touch);
}

Bitmap drawn(UIView& view, CGFloat scale = 1) {
    const CGRect bounds = view.bounds();
    Bitmap bitmap(static_cast<int>(bounds.width() * scale), static_cast<int>(bounds.height() * scale));
    view.drawRect(*bitmap.canvas(scale), bounds);
    return bitmap;
}

TEST(Control, APressCountsOnOrNearTheControl) {
    struct Case {
        const char* name;
        std::vector<CGPoint> path;
        bool counts;
    };
    const Case cases[] = {
        {"a tap", {{50, 20}}, true},
        {"a tap at the edge", {{0, 0}}, true},
        {"slipping off a little", {{50, 20}, {50, 55}}, true},
        {"dragging away", {{50, 20}, {50, 90}}, false},
        {"dragging away and back", {{50, 20}, {50, 90}, {50, 20}}, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto button = makeButton();
        const auto target = make<PressTarget>();
        int outside = 0;
        button->addTarget(*target, "press:", UIControlEvents::TouchUpInside);
        button->addAction([&outside] { ++outside; }, UIControlEvents::TouchUpOutside);
        drag(*button, c.path);
        EXPECT_EQ(target->presses, c.counts ? 1 : 0);
        EXPECT_EQ(outside, c.counts ? 0 : 1);
        EXPECT_EQ(target->lastSender, c.counts ? button.get() : nullptr);
        EXPECT_FALSE(button->isHighlighted());
    }
}

TEST(Control, HighlightFollowsTheFinger) {
    const auto button = makeButton();
    const auto touch = make<UITouch>(0, *button, CGPoint{10, 10}, 0);
    button->touchesBegan(*touch);
    EXPECT_TRUE(button->isHighlighted());
    touch->update(UITouchPhase::Moved, {10, 200}, 0);
    button->touchesMoved(*touch);
    EXPECT_FALSE(button->isHighlighted());
    touch->update(UITouchPhase::Moved, {10, 10}, 0);
    button->touchesMoved(*touch);
    EXPECT_TRUE(button->isHighlighted());
    button->touchesCancelled(*touch);
    EXPECT_FALSE(button->isHighlighted());
}

TEST(Control, DisabledOnesSwallowTouches) {
    const auto parent = make<UIButton>();
    const auto button = makeButton();
    parent->addSubview(*button);
    const auto target = make<PressTarget>();
    parent->addTarget(*target, "press:", UIControlEvents::TouchUpInside);
    button->addTarget(*target, "press:", UIControlEvents::TouchUpInside);
    button->setEnabled(false);
    drag(*button, {{50, 20}});
    EXPECT_EQ(target->presses, 0);

    button->setEnabled(true);
    const auto touch = make<UITouch>(0, *button, CGPoint{10, 10}, 0);
    button->touchesBegan(*touch);
    button->setEnabled(false);
    EXPECT_FALSE(button->isHighlighted());
    button->touchesEnded(*touch);
    EXPECT_EQ(target->presses, 0) << "disabled while pressed";
}

TEST(Control, TargetsAreHeldWeaklyAndOnce) {
    const auto button = makeButton();
    auto target = make<PressTarget>();
    button->addTarget(*target, "press:", UIControlEvents::TouchUpInside);
    button->addTarget(*target, "press:", UIControlEvents::TouchUpInside);
    drag(*button, {{5, 5}});
    EXPECT_EQ(target->presses, 1);
    button->removeTarget(*target, "press:");
    drag(*button, {{5, 5}});
    EXPECT_EQ(target->presses, 1);

    const Weak<PressTarget> weak(target);
    button->addTarget(*target, "press:", UIControlEvents::TouchUpInside);
    target = nullptr;
    EXPECT_FALSE(weak);
    drag(*button, {{5, 5}});

    target = make<PressTarget>();
    button->addTarget(*target, "noSuchAction:", UIControlEvents::TouchUpInside);
    drag(*button, {{5, 5}});
}

TEST(Control, AnActionMayEndTheControl) {
    auto button = makeButton();
    const auto target = make<PressTarget>();
    target->onForget = [&button] { button = nullptr; };
    button->addTarget(*target, "forget:", UIControlEvents::TouchUpInside);
    button->addTarget(*target, "press:", UIControlEvents::TouchUpInside);
    const Ref<UIButton> heldByTheDispatcher = button;
    drag(*heldByTheDispatcher, {{5, 5}});
    EXPECT_FALSE(button);
    EXPECT_EQ(target->presses, 1);
}

TEST(Control, SmallOnesAreEasyToHit) {
    const auto button = makeButton(CGRectMake(0, 0, 12, 100));
    EXPECT_TRUE(button->pointInside({-9, 50}));
    EXPECT_FALSE(button->pointInside({-11, 50}));
    EXPECT_FALSE(button->pointInside({6, -1})) << "long enough already";
    button->setMinimumHitSize(0);
    EXPECT_FALSE(button->pointInside({-1, 50}));
}

TEST(Button, ValuesByState) {
    const auto button = makeButton();
    const auto both = [](UIControlState a, UIControlState b) {
        return static_cast<UIControlState>(static_cast<int>(a) | static_cast<int>(b));
    };
    const UIColor red = UIColor::rgb(0xFF0000), green = UIColor::rgb(0x00FF00), blue = UIColor::rgb(0x0000FF);
    EXPECT_FALSE(button->currentTitle());
    EXPECT_EQ(button->titleColorForState(UIControlState::Normal), UIColor::whiteColor());

    button->setTitle("Play");
    button->setTitle("Gone", UIControlState::Disabled);
    EXPECT_EQ(button->titleForState(UIControlState::Selected), "Play");
    EXPECT_EQ(button->titleForState(both(UIControlState::Selected, UIControlState::Disabled)), "Gone");
    button->setEnabled(false);
    EXPECT_EQ(button->currentTitle(), "Gone");
    EXPECT_EQ(button->titleLabel().text(), "Gone");

    button->setTitleColor(red);
    EXPECT_EQ(button->titleColorForState(UIControlState::Highlighted), red);
    button->setTintColor(green, UIControlState::Selected);
    EXPECT_EQ(button->titleColorForState(UIControlState::Selected), green);
    EXPECT_EQ(button->tintColorForState(UIControlState::Selected), green);
    EXPECT_EQ(button->tintColorForState(UIControlState::Normal), UIColor::whiteColor());
    button->setTitleColor(blue, UIControlState::Selected);
    EXPECT_EQ(button->titleColorForState(UIControlState::Selected), blue);
    button->setTintColor(red);
    EXPECT_EQ(button->tintColorForState(UIControlState::Disabled), red);

    button->setIcon(VectorIcon::named("play"));
    button->setIcon(VectorIcon::named("pause"), UIControlState::Selected);
    EXPECT_EQ(button->iconForState(UIControlState::Disabled)->name(), "play");
    EXPECT_EQ(button->iconForState(UIControlState::Selected)->name(), "pause");
}

TEST(Button, IsAsLargeAsItsContent) {
    const auto button = makeButton();
    EXPECT_EQ(button->intrinsicContentSize().width, 0);
    button->setTitle("Get coupon");
    const CGSize title = button->intrinsicContentSize();
    EXPECT_GT(title.width, 60);
    button->setContentInsets({1, 2, 3, 4});
    EXPECT_EQ(button->intrinsicContentSize(), (CGSize{title.width + 6, title.height + 4}));
    button->setContentInsets({});
    button->setIcon(VectorIcon::named("coupon"));
    EXPECT_EQ(button->intrinsicContentSize(), (CGSize{title.width + 26, 20}));
    button->setIconPlacement(UIButtonIconPlacement::Above);
    EXPECT_EQ(button->intrinsicContentSize(), (CGSize{title.width, title.height + 26}));
    button->setTitle("");
    EXPECT_EQ(button->intrinsicContentSize(), (CGSize{20, 20}));
    button->titleLabel().setFont(UIFont::systemFontOfSize(30));
    button->setTitle("Get coupon");
    EXPECT_GT(button->intrinsicContentSize().width, title.width * 1.8);
}

TEST(Button, ShowsItsState) {
    const auto button = makeButton();
    button->setBackgroundColor(UIColor::rgb(0xFF6A3D), UIControlState::Normal);
    button->setTitle("Get coupon");
    EXPECT_EQ(drawn(*button).at(50, 3), 0xFFFF6A3DU);
    button->setHighlighted(true);
    EXPECT_EQ(drawn(*button).at(50, 3), 0xFFEB6138U) << "8 % darker";
    EXPECT_EQ(drawn(*button).at(0, 20), 0U) << "and a little smaller";
    button->layer().setBorderWidth(1);
    EXPECT_EQ(drawn(*button).at(0, 20), 0xFFEB6138U) << "an outline keeps its place";
    button->setHighlighted(false);

    button->setSelectionBarEdge(UIButtonBarEdge::Left);
    EXPECT_EQ(drawn(*button).at(1, 20), 0xFFFF6A3DU);
    button->setSelected(true);
    button->setTintColor(UIColor::rgb(0x00FF00), UIControlState::Selected);
    EXPECT_EQ(drawn(*button).at(0, 20), 0xFF00FF00U);
    EXPECT_EQ(drawn(*button).at(1, 20), 0xFF00FF00U);
    EXPECT_EQ(drawn(*button).at(2, 20), 0xFFFF6A3DU);
}

TEST(Button, ContentStaysInside) {
    for (const char* icon : {"", "cube3d"}) {
        for (const auto placement : {UIButtonIconPlacement::Leading, UIButtonIconPlacement::Above}) {
            for (const CGSize size : {CGSize{35, 48}, CGSize{104, 34}, CGSize{22, 20}, CGSize{70, 96}}) {
                const auto button = makeButton(CGRectMake(0, 0, size.width, size.height));
                button->setIcon(VectorIcon::named(icon));
                button->setIconPlacement(placement);
                button->setDesignHeight(48);
                button->setTitle("Ein sehr langer Titel");
                button->titleLabel().setAdjustsFontSizeToFitWidth(true);
                Bitmap bitmap(200, 200);
                auto canvas = bitmap.canvas();
                canvas->translate(50, 50);
                button->drawRect(*canvas, button->bounds());
                EXPECT_FALSE(bitmap.ink().isEmpty());
                EXPECT_TRUE(bitmap.isWithin({{50, 50}, size})) << icon << " " << size.width;
            }
        }
    }
}

TEST(Label, HeightFollowsWidth) {
    const auto label = make<UILabel>();
    EXPECT_EQ(label->intrinsicContentSize(), (CGSize{0, 0}));
    label->setFont(UIFont::systemFontOfSize(12));
    label->setText("A description that takes up some lines when there is little room for it in the panel");
    const CGSize single = label->intrinsicContentSize();
    label->setNumberOfLines(3);
    EXPECT_EQ(label->intrinsicContentSize(), single) << "not laid out yet";
    label->setFrame(CGRectMake(0, 0, single.width / 2 + 20, 10));
    EXPECT_NEAR(label->intrinsicContentSize().height, single.height * 2, 1);
    label->setFrame(CGRectMake(0, 0, 40, 10));
    EXPECT_NEAR(label->intrinsicContentSize().height, single.height * 3, 2);
    EXPECT_EQ(label->intrinsicContentSize().width, single.width) << "it may grow back";
    label->setFrame(CGRectMake(0, 0, 2000, 10));
    EXPECT_EQ(label->intrinsicContentSize(), single);
    label->setPreferredMaxLayoutWidth(40);
    EXPECT_NEAR(label->intrinsicContentSize().height, single.height * 3, 2);
    label->setText(NSString());
    EXPECT_EQ(label->intrinsicContentSize(), (CGSize{0, 0}));
}

TEST(Label, ShrinksTheFontInsteadOfCutting) {
    const auto label = make<UILabel>();
    label->setFont(UIFont::systemFontOfSize(20));
    label->setText("HHHHHHHHHH");
    label->setFrame({{0, 0}, label->intrinsicContentSize()});
    const int height = drawn(*label, 2).ink().height();
    label->setFrame(CGRectMake(0, 0, label->frame().width() * 0.7, 30));
    EXPECT_NEAR(drawn(*label, 2).ink().height(), height, 1);
    label->setAdjustsFontSizeToFitWidth(true);
    EXPECT_NEAR(drawn(*label, 2).ink().height(), height * 0.7, 2);
    label->setFrame(CGRectMake(0, 0, label->frame().width() * 0.3, 30));
    EXPECT_NEAR(drawn(*label, 2).ink().height(), height * 0.5, 2) << "no smaller than half";
}

TEST(Label, StandsInTheMiddleWithItsSign) {
    const auto label = make<UILabel>();
    label->setFont(UIFont::systemFontOfSize(16));
    label->setTextAlignment(NSTextAlignment::Center);
    label->setText("HHHH");
    label->setFrame(CGRectMake(0, 0, 200, 60));
    const auto plain = drawn(*label).ink();
    EXPECT_NEAR(plain.top, 59 - plain.bottom, 2);
    EXPECT_NEAR(plain.left, 199 - plain.right, 2);
    const CGFloat width = label->intrinsicContentSize().width;
    label->setIcon(VectorIcon::named("warningTriangle"));
    EXPECT_GT(label->intrinsicContentSize().width, width + 16);
    const auto withSign = drawn(*label).ink();
    EXPECT_NEAR(withSign.left, 199 - withSign.right, 3);
    EXPECT_GT(withSign.width(), plain.width() + 16);
}

TEST(ImageView, PlacesThePicture) {
    const auto image = UIImage::imageWithPixels(40, 20, std::vector<std::uint32_t>(800, 0xFF808080));
    struct Case {
        UIViewContentMode mode;
        int width, height;
    };
    for (const Case& c : {Case{UIViewContentMode::ScaleToFill, 60, 60}, Case{UIViewContentMode::ScaleAspectFit, 60, 30},
                          Case{UIViewContentMode::ScaleAspectFill, 60, 60}}) {
        const auto view = make<UIImageView>();
        view->setFrame(CGRectMake(0, 0, 60, 60));
        view->setContentMode(c.mode);
        EXPECT_FALSE(view->drawsContent());
        view->setImage(image);
        EXPECT_TRUE(view->drawsContent());
        const auto ink = drawn(*view).ink();
        EXPECT_EQ(ink.width(), c.width);
        EXPECT_EQ(ink.height(), c.height);
        EXPECT_EQ(view->intrinsicContentSize(), (CGSize{40, 20}));
        view->setImage(nullptr);
        EXPECT_TRUE(drawn(*view).ink().isEmpty());
    }
}

TEST(ImageView, LeavesAGapToItsRing) {
    const auto view = make<UIImageView>();
    view->setFrame(CGRectMake(0, 0, 66, 66));
    view->layer().setCornerRadius(33);
    view->setBorderGap(2);
    view->setImage(UIImage::imageWithPixels(1, 1, {0xFF808080}));
    for (const CGFloat ring : {0.0, 1.0}) {
        view->layer().setBorderWidth(ring);
        const Bitmap bitmap = drawn(*view, 2);
        EXPECT_EQ(bitmap.ink().left, 6);
        EXPECT_EQ(bitmap.ink().width(), 120);
        EXPECT_EQ(bitmap.alpha(12, 12), 0) << "round";
    }
}

TEST(ImageView, LetsThePictureGo) {
    const auto view = make<UIImageView>();
    view->setFrame(CGRectMake(0, 0, 10, 10));
    auto image = UIImage::imageWithPixels(100, 100, std::vector<std::uint32_t>(10'000, 0xFFFFFFFF));
    const Weak<UIImage> weak(image);
    view->setImage(image);
    drawn(*view);
    image = nullptr;
    EXPECT_TRUE(weak);
    view->setImage(nullptr);
    EXPECT_FALSE(weak);
}

class ActivityIndicator : public ::testing::Test {
protected:
    ActivityIndicator() {
        MainQueue::shared().removeAll();
        Clock::setCurrent(&clock_);
    }
    ~ActivityIndicator() override {
        MainQueue::shared().removeAll();
        Clock::setCurrent(nullptr);
    }
    /// Returns how often something was due.
    int advance(double seconds) {
        int ran = 0;
        for (int i = 0; i < std::lround(seconds * 120); ++i) {
            clock_.advance(1.0 / 120);
            ran += MainQueue::shared().run();
        }
        return ran;
    }

    VirtualClock clock_;
};

TEST_F(ActivityIndicator, HidesUnlessItIsMoving) {
    const auto indicator = make<UIActivityIndicatorView>();
    EXPECT_TRUE(indicator->isHidden());
    indicator->startAnimating();
    EXPECT_FALSE(indicator->isHidden());
    EXPECT_TRUE(indicator->isAnimating());
    indicator->stopAnimating();
    EXPECT_TRUE(indicator->isHidden());
    indicator->setHidesWhenStopped(false);
    EXPECT_FALSE(indicator->isHidden());
}

TEST_F(ActivityIndicator, TurnsOnceASecondWhileItCanBeSeen) {
    const auto window = make<UIWindow>();
    window->setFrame(CGRectMake(0, 0, 100, 100));
    const auto indicator = make<UIActivityIndicatorView>();
    indicator->setFrame(CGRectMake(0, 0, 28, 28));
    indicator->startAnimating();
    EXPECT_EQ(advance(1), 0) << "in no window";

    window->addSubview(*indicator);
    const int before = indicator->leadingSpoke();
    const auto picture = drawn(*indicator).pixels;
    EXPECT_NEAR(advance(0.25), 3, 1);
    EXPECT_EQ(indicator->leadingSpoke(), (before + 3) % 12);
    EXPECT_NE(drawn(*indicator).pixels, picture);
    EXPECT_NEAR(advance(0.75), 9, 1);
    EXPECT_EQ(indicator->leadingSpoke(), before);
    EXPECT_EQ(drawn(*indicator).pixels, picture);
    EXPECT_TRUE(drawn(*indicator).isWithin(indicator->bounds()));

    window->setHidden(true);
    advance(1);
    EXPECT_LE(advance(4), 8) << "covered, it only looks now and then whether it can be seen";
    window->setHidden(false);
    advance(0.5);
    EXPECT_NEAR(advance(1), 12, 1);

    indicator->stopAnimating();
    EXPECT_EQ(advance(1), 0);
    indicator->startAnimating();
    indicator->removeFromSuperview();
    EXPECT_EQ(advance(1), 0);
    EXPECT_TRUE(MainQueue::shared().isIdle());
}

}  // namespace
}  // namespace flarebox::testing
