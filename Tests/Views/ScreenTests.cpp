#include <Host/Headless/SoftwareCompositor.h>
#include <Tests/Views/StatesTesting.h>
#include <UIKit/UIAccessibility.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>
#include <UIKit/UIPalette.h>
#include <UIKit/UIScreen.h>
#include <UIKit/ViewAnimations.h>

#include <cmath>
#include <unordered_map>

namespace flarebox::testing {
namespace {

/// What the player's screen and eyes ask for.
class ScreenTest : public StatesTest {
protected:
    static bool isWithin(const CGRect& inner, const CGRect& outer) {
        return inner.minX() >= outer.minX() - 0.5 && inner.minY() >= outer.minY() - 0.5 &&
               inner.maxX() <= outer.maxX() + 0.5 && inner.maxY() <= outer.maxY() + 0.5;
    }
};

TEST_F(ScreenTest, TheInterfaceGrowsUntilItFillsTheScreen) {
    const struct {
        CGSize screen;
        CGFloat scale, height;
    } cases[] = {
        {{1920, 1080}, 1, 756}, {{1920, 1080}, 1.2, 907.2}, {{1920, 1080}, 1.5, 1080}, {{1920, 1080}, 2, 1080},
        {{1280, 720}, 1, 504},  {{1280, 720}, 1.25, 630},   {{1280, 720}, 2, 720},     {{1280, 720}, 7, 720},
    };
    showLoadedTab();
    tab_->open();
    pass(0.5);
    for (const auto& [screen, scale, height] : cases) {
        SCOPED_TRACE(std::to_string(screen.width) + " at " + std::to_string(scale));
        host_->resize(screen, 1);
        host_->setInterfaceScale(scale);
        pass(0.5);
        const CGFloat larger = std::min(scale, 3.0);
        EXPECT_NEAR(tab_->frame().height() * larger, height, 1);
        EXPECT_NEAR(tab_->frame().width() / tab_->frame().height(), 275.0 / 420, 0.001);
        EXPECT_EQ(UIScreen::mainScreen().scale(), larger) << "drawn in the screen's own pixels";
        const CGRect whole{{}, {screen.width / larger, screen.height / larger}};
        for (const auto& element : host_->accessibilityElements()) EXPECT_TRUE(isWithin(element.frame, whole));
        // A finger counts in the host's points.
        for (const char* mode : {"btn3d", "btn2d"}) {
            const CGRect place = field(mode)->presentationRectInRoot();
            tap({place.midX() * larger, place.midY() * larger});
            EXPECT_TRUE(field<UIButton>(mode)->isSelected());
        }
    }
    host_->setInterfaceScale(0);
    EXPECT_EQ(UIScreen::mainScreen().interfaceScale(), 1);
}

TEST_F(ScreenTest, WhatIsSetBeforeTheTabIsAttachedCountsToo) {
    showLoadedTab();
    const auto fontSize = [this] { return field<UILabel>("lbAssetTitle")->font().pointSize(); };
    const CGFloat usual = fontSize();
    tab_->removeFromSuperview();
    host_->setInterfaceScale(1.25);
    tab_->showAtWindow();
    pass(0.5);
    const CGFloat attached = fontSize();
    host_->setInterfaceScale(1);
    host_->setInterfaceScale(1.25);
    EXPECT_EQ(attached, fontSize());
    EXPECT_NE(attached, usual);
}

TEST_F(ScreenTest, NothingToReadOrPressLiesAtAnUnsafeEdge) {
    const UIEdgeInsets edges{20, 44, 16, 30};
    const CGRect safe = CGRectMake(44, 20, 667 - 44 - 30, 375 - 20 - 16);
    host_->setSafeAreaInsets(edges);
    visitStates([&](const std::string& state) {
        for (const auto& element : host_->accessibilityElements()) {
            const bool isBackdrop = element.frame.width() > 600;
            EXPECT_TRUE(isBackdrop || isWithin(element.frame, safe)) << element.label.string();
        }
        if (state == "picture") {
            EXPECT_EQ(tab_->presentationRectInRoot().minX(), 0) << "its background goes on";
        }
    });
    host_->setSafeAreaInsets({-5, 0, NAN, 0});
    host_->setSafeAreaInsets({-5, 0, 0, 0});
    pass(0.1);
    EXPECT_NEAR(tab_->frame().midY(), 375.0 / 2, 1);
    EXPECT_EQ(field("contentView")->frame().minX(), 0);
}

TEST_F(ScreenTest, WithoutMotionEverythingIsThereAtOnce) {
    showLoadedTab();
    tab_->open();
    host_->setReduceMotion(true);
    host_->update();
    EXPECT_FALSE(ViewAnimations::isAnimating()) << "what moved has arrived";
    for (const bool isOpen : {false, true}) {
        tab_->toggleFlarebox(isOpen, true);
        EXPECT_FALSE(ViewAnimations::isAnimating());
        EXPECT_EQ(tab_->presentationFrame().minX(), isOpen ? 0 : -tab_->frame().width());
    }
    bool isShown = false, isGone = false, isFinished = false;
    const auto alert = UIAlertController::alertControllerWithTitle("A", "B", {});
    UIViewController& root = *window().rootViewController();
    root.presentViewController(alert, true, [&] { isShown = true; });
    EXPECT_EQ(alert->view().presentationAlpha(), 1);
    ASSERT_TRUE(settle([&] { return isShown; }));
    root.dismissViewController(true, [&] { isGone = true; });
    ASSERT_TRUE(settle([&] { return isGone; }));
    UIView::animateWithDuration(
        5, [&] { tab_->setAlpha(0.5); }, [&](bool finished) { isFinished = finished; });
    ASSERT_TRUE(settle([&] { return isFinished; }));
    auto* const list = field<UICollectionView>("collectionView");
    list->setContentOffset({30, 0}, true);
    EXPECT_EQ(list->contentOffset().x, 30);
}

/// In the kit's own look, and in those of the themes that come with it.
class ContrastTest : public ScreenTest, public ::testing::WithParamInterface<const char*> {
protected:
    static constexpr double ofTexts = 4.5, ofSigns = 3;

    void SetUp() override {
        ScreenTest::SetUp();
        const std::string name = GetParam();
        if (!name.empty()) FlareboxConfig::defaultConfig().setTheme(Theme::themeWithFile(SAMPLE_THEMES "/" + name));
    }
    void draw() {
        host_->update();
        picture_.clear();
        host_->draw(picture_);
    }
    void TearDown() override {
        host_->releaseTextures(picture_);
        ScreenTest::TearDown();
        FlareboxConfig::defaultConfig().setTheme(nullptr);
    }
    /// What most of the view's rectangle is filled with.
    UIColor background(const UIView& view) {
        std::unordered_map<std::uint32_t, int> counts;
        const CGRect rect = visibleRectOf(view);
        for (int y = static_cast<int>(rect.minY() * 2); y < static_cast<int>(rect.maxY() * 2); y += 3)
            for (int x = static_cast<int>(rect.minX() * 2); x < static_cast<int>(rect.maxX() * 2); x += 3)
                ++counts[picture_.pixelAt(x, y)];
        const auto most = std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; });
        return UIColor::rgb(most == counts.end() ? 0 : most->first & 0xFFFFFF);
    }
    void expect(const UIView& view, const UIColor& color, double least, const std::string& what) {
        const UIColor behind = background(view);
        const auto mixed = [&](float over, float under) { return over * color.alpha + under * (1 - color.alpha); };
        const UIColor shown{mixed(color.red, behind.red), mixed(color.green, behind.green),
                            mixed(color.blue, behind.blue), 1};
        EXPECT_GE(contrastRatio(shown, behind), least) << what;
    }
    void checkButton(const UIButton& button) {
        const std::string name = button.accessibilityLabel().string();
        const UIControlState state = button.state();
        if (!button.currentTitle().text().empty()) expect(button, button.titleColorForState(state), ofTexts, name);
        if (button.iconForState(state)) expect(button, button.tintColorForState(state), ofSigns, name + "'s sign");
    }
    void check(UIView& view) {
        if (view.isHidden()) return;
        const bool isSeen = !visibleRectOf(view).isEmpty() && uncoveredPointOf(view);
        if (const auto* label = objectCast<UILabel>(&view); label && isSeen && label->drawsContent())
            expect(view, label->textColor(), ofTexts, label->text().string());
        if (const auto* sign = objectCast<UIImageView>(&view); sign && isSeen && sign->icon() && !sign->image())
            expect(view, sign->tintColor(), ofSigns, view.description());
        if (const auto* button = objectCast<UIButton>(&view); button && isSeen) checkButton(*button);
        for (const auto& subview : view.subviews()) check(*subview);
    }
    void press(UIView& view, bool isPressed) {
        if (auto* button = objectCast<UIButton>(&view)) button->setHighlighted(isPressed && button->isEnabled());
        for (const auto& subview : view.subviews()) press(*subview, isPressed);
    }

    SoftwareCompositor picture_{1334, 750};
};

INSTANTIATE_TEST_SUITE_P(Themes, ContrastTest, ::testing::Values("", "daylight.xml", "arcade.xml"));

TEST_P(ContrastTest, TextsAndSignsStandOutInEveryState) {
    visitStates([&](const std::string& state) {
        // Drawing a model takes long, and its own button lies on the colour of others.
        if (state.starts_with("model")) return;
        for (const bool isPressed : {false, true}) {
            press(window(), isPressed);
            draw();
            check(window());
        }
        press(window(), false);
    });
}

TEST_F(ScreenTest, TheRingStandsOutFromEverything) {
    showLoadedTab();
    tab_->open();
    host_->takeFocus();
    pass(0.5);
    const UIView& ring = *window().subviews().back();
    ASSERT_EQ(ring.accessibilityIdentifier(), "focusRing");
    const UIColor dark = ring.layer().borderColor(), light = ring.subviews().front()->layer().borderColor();
    for (int grey = 0; grey < 256; ++grey) {
        const float part = static_cast<float>(grey) / 255;
        const UIColor behind{part, part, part, 1};
        EXPECT_GE(std::max(contrastRatio(dark, behind), contrastRatio(light, behind)), 3) << grey;
    }
    EXPECT_GE(contrastRatio(dark, light), 3);
}

}  // namespace
}  // namespace flarebox::testing
