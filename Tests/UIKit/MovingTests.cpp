#include <Foundation/Clock.h>
#include <Host/Headless/CountingCompositor.h>
#include <UIKit/LayerRenderer.h>
#include <UIKit/UIImageView.h>
#include <UIKit/ViewAnimations.h>

#include <gtest/gtest.h>

#include <cmath>

namespace flarebox {
namespace {

Ref<UIView> add(UIView& parent, const CGRect& frame, const UIColor& color) {
    auto view = make<UIView>();
    view->setFrame(frame);
    view->setBackgroundColor(color);
    parent.addSubview(*view);
    return view;
}

/// A panel with a list in it, as large as a part of the screen, and what lies over it.
class Moving : public ::testing::Test {
protected:
    Moving() {
        Clock::setCurrent(&clock_);
        root_->setFrame({{}, {200, 100}});
        list_->setClipsToBounds(true);
        for (int item = 0; item < 30; ++item)
            add(*list_, CGRectMake(item * 20.3, 2, 18, 16), UIColor::rgb(static_cast<std::uint32_t>(item)))
                ->layer()
                .setCornerRadius(4);
        list_->setBoundsOrigin({0.5, 0});
        shadow_->setAlpha(0.25);
        draw();
    }
    ~Moving() override {
        ViewAnimations::removeAll();
        Clock::setCurrent(nullptr);
    }

    void draw() { renderer_.draw(compositor_, 2); }
    std::size_t listsBuilt() const { return renderer_.statistics().listsBuilt; }
    /// What is shown is what a list made anew shows, up to `distance` pixels.
    void expectAsMadeAnew(CGFloat distance) {
        const std::vector<TexturedQuad> moved = compositor_.quads;
        root_->setHidden(true);
        root_->setHidden(false);
        draw();
        const std::vector<TexturedQuad>& anew = compositor_.quads;
        ASSERT_EQ(moved.size(), anew.size());
        for (std::size_t index = 0; index < anew.size(); ++index) {
            EXPECT_EQ(moved[index].texture, anew[index].texture);
            EXPECT_NEAR(moved[index].opacity, anew[index].opacity, 1e-5);
            for (const auto edge : {&CGRect::minX, &CGRect::minY, &CGRect::maxX, &CGRect::maxY}) {
                EXPECT_NEAR((moved[index].destination.*edge)(), (anew[index].destination.*edge)(), distance);
                // The clip of what nothing cuts off may be anything around it.
                const CGRect seen = moved[index].destination.intersection(moved[index].clip);
                EXPECT_NEAR((seen.*edge)(), (anew[index].destination.intersection(anew[index].clip).*edge)(), distance);
            }
        }
    }

    VirtualClock clock_;
    Ref<UIView> root_ = make<UIView>();
    LayerRenderer renderer_{*root_};
    CountingCompositor compositor_;
    Ref<UIView> panel_ = add(*root_, {{-80.3, 7.2}, {80, 90}}, UIColor::rgb(0x101010));
    Ref<UIView> list_ = add(*panel_, {{5.4, 60.1}, {70, 20}}, UIColor::rgb(0x202020));
    Ref<UIView> shadow_ = add(*panel_, {{80, 0}, {10, 90}}, UIColor::blackColor());
};

TEST_F(Moving, SlidingAndFadingOnlyMovesWhatIsThere) {
    UIView::animateWithDuration(0.3, [&] {
        panel_->setFrame({{0, 7.2}, {80, 90}});
        shadow_->setAlpha(1);
    });
    draw();
    const std::size_t built = listsBuilt(), drawn = renderer_.statistics().bitmapsDrawn;
    for (int frame = 0; frame < 15; ++frame) {
        clock_.advance(1.0 / 60);
        ViewAnimations::tick(clock_.uptime());
        EXPECT_TRUE(renderer_.needsDisplay());
        draw();
        EXPECT_FALSE(renderer_.needsDisplay());
    }
    EXPECT_EQ(listsBuilt(), built);
    EXPECT_EQ(renderer_.statistics().bitmapsDrawn, drawn);
    expectAsMadeAnew(1e-6);

    // At its end everything lies on whole pixels.
    clock_.advance(0.1);
    ViewAnimations::tick(clock_.uptime());
    draw();
    EXPECT_FALSE(renderer_.needsDisplay());
    expectAsMadeAnew(0);
    EXPECT_EQ(compositor_.quads.front().destination, CGRectMake(0, 14, 160, 180));
}

TEST_F(Moving, ContentScrollsInWholePixels) {
    panel_->setFrame({{0, 7.2}, {80, 90}});
    draw();
    const std::size_t built = listsBuilt();
    for (int frame = 1; frame <= 9; ++frame) {
        list_->setBoundsOrigin({0.5 + frame * 3.3, frame * 0.1});
        draw();
        for (const TexturedQuad& quad : compositor_.quads)
            EXPECT_EQ(quad.destination.minX(), std::round(quad.destination.minX()));
    }
    EXPECT_EQ(listsBuilt(), built);
    EXPECT_FALSE(renderer_.needsDisplay());
    expectAsMadeAnew(0);

    // What is further away than bitmaps are made ahead is found, too.
    list_->setBoundsOrigin({450, 0});
    draw();
    expectAsMadeAnew(0);
    EXPECT_GT(compositor_.quads.size(), 5U);
}

TEST_F(Moving, WhatScrollsInsideWhatSlidesGoesBothWays) {
    UIView::animateWithDuration(0.3, [&] { panel_->setFrame({{0, 7.2}, {80, 90}}); });
    draw();
    for (int frame = 1; frame <= 12; ++frame) {
        clock_.advance(1.0 / 60);
        ViewAnimations::tick(clock_.uptime());
        list_->setBoundsOrigin({0.5 + frame * 2.0, 0});
        draw();
    }
    expectAsMadeAnew(1);
    EXPECT_EQ(compositor_.mistakes, 0U);
}

TEST_F(Moving, ChangesWhileThingsMoveAreSeen) {
    UIView::animateWithDuration(0.3, [&] { panel_->setFrame({{0, 7.2}, {80, 90}}); });
    const std::function<void()> changes[] = {
        [&] { shadow_->setHidden(true); },
        [&] { shadow_->setBackgroundColor(UIColor::whiteColor()); },
        [&] { list_->subviews()[1]->removeFromSuperview(); },
        [&] { panel_->bringSubviewToFront(*list_); },
        [&] { list_->removeFromSuperview(); },
        [&] { panel_->removeFromSuperview(); },
    };
    for (const auto& change : changes) {
        clock_.advance(1.0 / 60);
        ViewAnimations::tick(clock_.uptime());
        draw();
        change();
        EXPECT_TRUE(renderer_.needsDisplay());
        draw();
        expectAsMadeAnew(1e-6);
    }
    EXPECT_EQ(compositor_.quads.size(), 0U);
    EXPECT_EQ(compositor_.mistakes, 0U);
}

}  // namespace
}  // namespace flarebox
