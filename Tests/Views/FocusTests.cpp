#include <Tests/Views/StatesTesting.h>
#include <UIKit/UIAccessibility.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIFocusSystem.h>

#include <gmock/gmock.h>

#include <deque>
#include <map>
#include <set>

namespace flarebox::testing {
namespace {

using enum UIPressType;
using ::testing::IsSubsetOf;

class FocusTest : public StatesTest {
protected:
    using Path = std::vector<UIPressType>;

    UIFocusSystem& focus() { return window().focusSystem(); }
    std::string focused() {
        host_->update();
        UIView* const view = focus().showsRing() ? focus().focusedView() : nullptr;
        return view ? view->accessibilityLabel().string() : "";
    }
    /// What enabled controls, cells and models a touch could reach now, by name.
    std::set<std::string> touchable() {
        std::set<std::string> names;
        for (const UIAccessibilityElement& element : accessibilityElementsOf(window()))
            if (element.view->canBecomeFocused()) names.insert(element.label.string());
        return names;
    }
    /// As the state was entered.
    void startAgain() {
        host_->giveBackFocus();
        if (auto* list = field<UICollectionView>("collectionView")) list->setContentOffset({});
        host_->takeFocus();
        pass(0.5);
    }
    /// Whatever the arrows lead to.
    std::set<std::string> reachable() {
        startAgain();
        std::map<std::string, Path> paths{{focused(), {}}};
        std::deque<std::string> open{focused()};
        for (; !open.empty(); open.pop_front()) {
            for (const UIPressType arrow : {UpArrow, DownArrow, LeftArrow, RightArrow}) {
                startAgain();
                Path path = paths[open.front()];
                path.push_back(arrow);
                for (const UIPressType press : path) host_->press(press);
                const std::string name = focused();
                if (paths.emplace(name, path).second) open.push_back(name);
            }
        }
        std::set<std::string> names;
        for (const auto& [name, path] : paths) names.insert(name);
        return names;
    }
};

TEST_F(FocusTest, ArrowsLeadToEverythingThatATouchReaches) {
    visitStates([&](const std::string& state) {
        const auto touched = touchable(), reached = reachable();
        EXPECT_THAT(touched, IsSubsetOf(reached));
        EXPECT_FALSE(reached.contains("")) << "something always has the ring";
        if (state == "picture") {
            EXPECT_TRUE(reached.contains("Product 9")) << "out of sight at first";
            startAgain();
            const std::string first = focused();
            host_->press(UpArrow);
            EXPECT_NE(focused(), first);
            host_->press(DownArrow);
            EXPECT_EQ(focused(), first) << "not the arrow beside it, which is higher";
        }
        host_->giveBackFocus();
    });
}

TEST_F(FocusTest, KeysAreTheGamesUntilItGivesThemAway) {
    showLoadedTab();
    const auto isGames = [&] {
        for (const char* key : {"left", "return", "space", "escape", "tab", "pageup", "w"})
            if (host_->keyDown(key) == InputResult::Consumed) return false;
        return host_->press(Select) == InputResult::Ignored && host_->stickMoved({1, 0}) == InputResult::Ignored;
    };
    EXPECT_TRUE(isGames());
    tab_->open();
    pass(0.5);
    EXPECT_TRUE(isGames()) << "opened with a finger";
    host_->takeFocus();
    EXPECT_EQ(focused(), tab_->currentAsset()->title().string());
    EXPECT_EQ(host_->keyDown("w"), InputResult::Ignored);
    EXPECT_EQ(host_->press(PlayPause), InputResult::Ignored);
    EXPECT_EQ(host_->keyDown("down"), InputResult::Consumed) << "also where it leads nowhere";
    host_->pointerDown(0, {660, 20});
    EXPECT_FALSE(host_->hasFocus()) << "the player is in the game again";
    EXPECT_TRUE(isGames());
    host_->takeFocus();
    tab_->close();
    EXPECT_TRUE(isGames());

    host_->takeFocus();
    pass(0.5);
    EXPECT_EQ(focused(), "Open Flarebox");
    host_->keyDown("return");
    EXPECT_TRUE(tab_->isOpened());
    EXPECT_TRUE(host_->hasFocus());
    EXPECT_EQ(host_->keyDown("escape"), InputResult::Consumed);
    EXPECT_FALSE(tab_->isOpened());
    EXPECT_TRUE(isGames());
    host_->takeFocus();
    EXPECT_EQ(host_->press(Menu), InputResult::Consumed) << "closed already";
    EXPECT_TRUE(isGames());
}

TEST_F(FocusTest, GoingBackClosesWhatIsOnTopFirst) {
    int overlays = 0;
    visitStates([&](const std::string& state) {
        host_->takeFocus();
        pass(0.5);
        const bool hasCoupon = field("couponView") && field("couponView")->isVisibleInWindow();
        const bool hasOverlay = hasCoupon || !window().presentedViewControllers().empty() ||
                                (tab_->scnContent()->is3DViewFullScreen() && tab_->isOpened());
        overlays += hasOverlay ? 1 : 0;
        host_->press(Menu);
        pass(0.3);
        if (state == "closed") {
            EXPECT_FALSE(host_->hasFocus());
        } else if (state == "saving a coupon") {
            EXPECT_TRUE(field("couponView")->isVisibleInWindow()) << "cannot be left";
        } else if (hasOverlay) {
            EXPECT_TRUE(tab_->isOpened());
            EXPECT_FALSE(tab_->scnContent()->is3DViewFullScreen());
            EXPECT_TRUE(window().presentedViewControllers().empty());
            EXPECT_FALSE(hasCoupon && field("couponView")->isVisibleInWindow());
        } else {
            EXPECT_FALSE(tab_->isOpened());
            EXPECT_FALSE(host_->hasFocus());
            tab_->open();
            pass(0.5);
        }
        host_->giveBackFocus();
        // As the next states expect it.
        if (state == "model, full screen" && !tab_->scnContent()->is3DViewFullScreen())
            tab_->scnContent()->press3DFullButton();
    });
    EXPECT_EQ(overlays, 5) << "a model, a video, a coupon under way and saved, an alert";
}

TEST_F(FocusTest, TheRingShowsWhereKeysGoAndHidesFromTouch) {
    showLoadedTab();
    tab_->open();
    host_->takeFocus();
    pass(0.5);
    const auto ring = [&] {
        const UIView& top = *window().subviews().back();
        return top.accessibilityIdentifier() == "focusRing" ? top.presentationRectInRoot() : CGRect();
    };
    for (const UIPressType press : {UpArrow, UpArrow, RightArrow, DownArrow}) {
        host_->press(press);
        host_->update();
        const CGRect view = visibleRectOf(*focus().focusedView());
        EXPECT_LE(ring().minX(), std::max(0.0, view.minX() - 2)) << focused();
        EXPECT_GE(ring().maxY(), view.maxY() + 2) << focused();
    }
    const std::string before = focused();
    tap("lbAssetTitle");
    EXPECT_TRUE(ring().isEmpty());
    EXPECT_EQ(host_->press(DownArrow), InputResult::Consumed);
    EXPECT_EQ(focused(), before) << "first it is shown";
    EXPECT_FALSE(ring().isEmpty());
    // Nothing is drawn anew while nothing changes.
    host_->update();
    const CGRect still = ring();
    host_->update();
    EXPECT_EQ(ring(), still);
    tab_->removeFromSuperview();
    EXPECT_FALSE(host_->hasFocus());
    pass(0.5);
    EXPECT_TRUE(ring().isEmpty());
}

TEST_F(FocusTest, ShouldersChangeModesAndSticksTurnModels) {
    visitStates([&](const std::string& state) {
        if (state != "model") return;
        host_->takeFocus();
        const Ref<SCNView> view(&tab_->scnContent()->scnView());
        const CGFloat yaw = view->yaw(), pitch = view->pitch();
        host_->stickMoved({1, -0.1});
        pass(0.2);
        EXPECT_NEAR(view->yaw() - yaw, 0.5, 0.05);
        EXPECT_EQ(view->pitch(), pitch) << "hardly touched";
        host_->stickMoved({});
        const CGFloat turned = view->yaw();
        focus().requestFocus(*view);
        host_->update();
        host_->press(LeftArrow);
        EXPECT_LT(view->yaw(), turned);
        EXPECT_EQ(focus().focusedView(), view.get());

        const AssetMode modes[] = {AssetModeVideo, AssetMode2D, AssetMode3D, AssetMode2D};
        const UIPressType presses[] = {PageDown, PageDown, PageDown, PageUp};
        for (std::size_t i = 0; i < std::size(modes); ++i) {
            EXPECT_EQ(host_->press(presses[i]), InputResult::Consumed);
            EXPECT_EQ(tab_->currentAssetMode(), modes[i]) << i;
        }
        tab_->changeAssetMode(AssetMode3D);
        host_->giveBackFocus();
    });
}

TEST_F(FocusTest, ACouponIsSavedWithTheKeyboardAlone) {
    showLoadedTab();
    tab_->open();
    host_->takeFocus();
    pass(0.5);
    for (int i = 0; i < 20 && focused() != "Get coupon"; ++i) host_->keyDown("tab");
    ASSERT_EQ(focused(), "Get coupon");
    host_->keyDown("return");
    ASSERT_TRUE(settleIdle());
    pass(0.5);
    EXPECT_EQ(focused(), "Close");
    EXPECT_EQ(focus().focusedView()->superview(), field("couponView"));
    host_->keyDown("space");
    pass(0.5);
    EXPECT_TRUE(field("couponView")->isHidden());
    EXPECT_EQ(focused(), "Get coupon");
    host_->keyDown("backtab");
    EXPECT_NE(focused(), "Get coupon");
}

}  // namespace
}  // namespace flarebox::testing
