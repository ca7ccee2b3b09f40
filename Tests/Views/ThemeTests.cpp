// A theme on a tab, before it is made and while it shows.

#include "TabTesting.h"

#include <Flarebox/C/flarebox.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>

namespace flarebox::testing {
namespace {

using Shade = UIPalette::Shade;
using Corner = UIPalette::Corner;

class TabThemeTest : public TabTest {
protected:
    void TearDown() override {
        TabTest::TearDown();
        FlareboxConfig::defaultConfig().setTheme(nullptr);
    }

    static Ref<Theme> brand() {
        auto theme = make<Theme>();
        UIPalette palette;
        for (std::size_t i = 0; i < UIPalette::shadeCount; ++i)
            palette.setColor(static_cast<Shade>(i), UIColor::rgb(0x100000 + static_cast<std::uint32_t>(i)));
        palette.setRadius(Corner::Panel, 33);
        palette.setRadius(Corner::Button, 5);
        palette.setFamily(UIPalette::Typeface::Title, "DejaVu Serif");
        theme->setPalette(palette);
        theme->setOpenButtonText("Rewards");
        theme->setTitleText("Loot");
        theme->setLogo({VectorIcon::named("cart"), nullptr});
        theme->setOpenButtonMark({VectorIcon::named("cart"), UIImage::imageWithPixels(1, 2, {1, 2})});
        return theme;
    }

    /// What a brand wants to see of its own, wherever that comes from.
    void expectLook(const Theme& theme) {
        const UIPalette& palette = theme.palette();
        const auto color = [&](Shade shade) { return palette.color(shade); };
        EXPECT_EQ(tab_->backgroundColor(), color(Shade::Panel));
        EXPECT_EQ(tab_->layer().cornerRadii().topRight, palette.radius(Corner::Panel));
        EXPECT_EQ(field<UILabel>("lbAssetTitle")->textColor(), color(Shade::Text));
        EXPECT_EQ(field<UIButton>("btn3d")->tintColorForState(UIControlState::Selected), color(Shade::Accent));
        EXPECT_EQ(field("loadingView")->backgroundColor(), color(Shade::Panel).withAlpha(0.6F));
        EXPECT_EQ(field("rightAssetListShadowView")->tintColor(), color(Shade::Panel));
        auto& coupon = *field<UIButton>("btnCoupon");
        EXPECT_EQ(coupon.backgroundColorForState(UIControlState::Normal), color(Shade::Action));
        EXPECT_EQ(coupon.titleColorForState(UIControlState::Normal), color(Shade::ActionText));
        EXPECT_EQ(coupon.layer().cornerRadii().topLeft, palette.radius(Corner::Button));
        auto& buy = *field<UIButton>("btnBuy");
        EXPECT_EQ(buy.titleColorForState(UIControlState::Normal),
                  color(buy.isEnabled() ? Shade::ButtonText : Shade::DisabledText));
        auto& open = *field<UIButton>("btnOpen");
        EXPECT_EQ(open.backgroundColorForState(UIControlState::Normal), color(Shade::OpenButton));
        EXPECT_EQ(open.iconForState(UIControlState::Normal), theme.openButtonMark().icon);
        EXPECT_EQ(open.imageForState(UIControlState::Normal), theme.openButtonMark().picture);
        EXPECT_EQ(open.currentTitle(), theme.openButtonText());
        EXPECT_EQ(field<UIImageView>("imgLogo")->icon(), theme.logo().icon);
        auto& title = *field<UILabel>("lbFlareboxLogo");
        EXPECT_EQ(title.text(), theme.titleText() ? theme.titleText() : NSString("Flarebox"));
        const CGFloat unit = FlareboxView::getViewSize().height / 420;
        EXPECT_EQ(title.font(), palette.font(UIPalette::Typeface::Title, 23 * unit, UIFontWeight::Semibold));
        EXPECT_EQ(tab_->scnContent()->backgroundColor(), color(Shade::Content));
        const auto cell = field<UICollectionView>("collectionView")->cellForItemAtIndexPath({0, 0});
        EXPECT_TRUE(!cell || cell->subviews()[0]->layer().borderColor() == color(Shade::Ring));
    }
};

TEST_F(TabThemeTest, IsShownFromTheFirstMomentOrFromWhenItChanges) {
    const Theme own;
    const Ref<Theme> theme = brand();
    showLoadedTab();
    tab_->open();
    pass(0.5);
    expectLook(own);
    const CGFloat height = field("btnOpen")->frame().height();

    FlareboxConfig::defaultConfig().setTheme(theme);
    pass(0.1);
    expectLook(*theme);
    EXPECT_GT(field("btnOpen")->frame().height(), height + 10) << "there is room for the text";
    EXPECT_NEAR(field("btnOpen")->frame().midY(), 375 / 2.0, 1);
    host_->setOrientation(UIDeviceOrientation::Portrait);
    host_->resize({375, 667}, 2);
    pass(0.5);
    expectLook(*theme);

    tab_ = nullptr;
    makeTab();
    expectLook(*theme);
    FlareboxConfig::defaultConfig().setTheme(nullptr);
    expectLook(own);
}

TEST_F(TabThemeTest, ReachesWhatIsNotInTheTree) {
    showLoadedTab();
    tap("btnCoupon");
    auto* coupon = field("couponView");
    ASSERT_TRUE(coupon);
    tab_->scnContent()->press3DFullButton();
    const Ref<Theme> theme = brand();
    FlareboxConfig::defaultConfig().setTheme(theme);
    EXPECT_EQ(coupon->backgroundColor(), theme->palette().color(Shade::Panel).withAlpha(0.97F));
    EXPECT_EQ(tab_->scnContent()->layer().cornerRadii().topLeft, 0) << "full screen";
    tab_->scnContent()->press3DFullButton();
    EXPECT_EQ(tab_->scnContent()->layer().cornerRadii().topLeft, theme->palette().radius(Corner::Picture));
    // Views that are gone follow nothing.
    tab_->removeFromSuperview();
    tab_ = nullptr;
    settleIdle();
    FlareboxConfig::defaultConfig().setTheme(nullptr);
}

TEST_F(TabThemeTest, ComesFromCAsWell) {
    const TemporaryDirectory folder;
    const std::string file = folder.write("theme.xml", R"(<theme><color name="ring" value="#010203"/></theme>)");
    const auto ring = [] { return UIPalette::current().color(Shade::Ring); };
    EXPECT_EQ(flarebox_set_theme(file.c_str()), FLAREBOX_OK);
    EXPECT_EQ(ring(), UIColor::rgb(0x010203));
    EXPECT_EQ(flarebox_set_theme(folder.path("missing.xml").c_str()), FLAREBOX_FAILED);
    EXPECT_NE(std::string(flarebox_last_error()).find("missing.xml"), std::string::npos);
    EXPECT_EQ(ring(), UIColor::rgb(0x010203)) << "nothing has changed";
    EXPECT_EQ(flarebox_set_theme(nullptr), FLAREBOX_OK);
    EXPECT_EQ(ring(), UIColor::whiteColor());
}

}  // namespace
}  // namespace flarebox::testing
