#include <UIKit/UILabel.h>
#include <UIKit/UIView.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

namespace flarebox {
namespace {

using enum NSLayoutAttribute;
using enum NSLayoutRelation;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

/// Has a content size that the test sets, and counts how often it is laid out.
class Box : public UIView {
public:
    CGSize content{UIViewNoIntrinsicMetric, UIViewNoIntrinsicMetric};
    int layouts = 0;
    std::function<void()> onLayout;

    CGSize intrinsicContentSize() const override { return content; }
    void layoutSubviews() override {
        UIView::layoutSubviews();
        ++layouts;
        if (onLayout) onLayout();
    }
    void setContent(CGSize size) {
        content = size;
        invalidateIntrinsicContentSize();
    }
};

Ref<Box> box(UIView* parent, const char* name) {
    auto view = make<Box>();
    view->setAccessibilityIdentifier(name);
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    if (parent) parent->addSubview(*view);
    return view;
}

Ref<NSLayoutConstraint> bind(UIView& owner, UIView& item, NSLayoutAttribute attribute, NSLayoutRelation relation,
                             UIView* second, NSLayoutAttribute secondAttribute, CGFloat constant = 0,
                             CGFloat multiplier = 1, UILayoutPriority priority = UILayoutPriorityRequired) {
    auto constraint = NSLayoutConstraint::constraintWithItem(item, attribute, relation, second, secondAttribute,
                                                             multiplier, constant);
    constraint->setPriority(priority);
    owner.addConstraint(constraint);
    return constraint;
}

Ref<NSLayoutConstraint> fix(UIView& owner, UIView& item, NSLayoutAttribute attribute, CGFloat length) {
    return bind(owner, item, attribute, Equal, nullptr, NotAnAttribute, length);
}

void fill(UIView& parent, UIView& view, CGFloat inset = 0) {
    for (const auto edge : {Left, Top}) bind(parent, view, edge, Equal, &parent, edge, inset);
    for (const auto edge : {Right, Bottom}) bind(parent, view, edge, Equal, &parent, edge, -inset);
}

void expectFrame(const UIView& view, CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    const CGRect& frame = view.frame();
    EXPECT_NEAR(frame.minX(), x, 1e-6) << view.accessibilityIdentifier();
    EXPECT_NEAR(frame.minY(), y, 1e-6) << view.accessibilityIdentifier();
    EXPECT_NEAR(frame.width(), width, 1e-6) << view.accessibilityIdentifier();
    EXPECT_NEAR(frame.height(), height, 1e-6) << view.accessibilityIdentifier();
}

/// A panel at the left edge of a window, a button at its right edge, and something in it.
struct Panel {
    Ref<UIView> window = make<UIView>();
    Ref<Box> tab = box(window.get(), "tab"), button = box(window.get(), "button"), content = box(tab.get(), "content");
    Ref<NSLayoutConstraint> leading, width, height;

    explicit Panel(CGSize size) {
        window->setFrame({{}, {667, 375}});
        width = fix(*window, *tab, Width, size.width);
        height = fix(*window, *tab, Height, size.height);
        leading = bind(*window, *tab, Leading, Equal, window.get(), Leading, -size.width);
        bind(*window, *tab, CenterY, Equal, window.get(), CenterY);
        fix(*window, *button, Width, 22.5);
        fix(*button, *button, Height, 60);
        bind(*window, *button, CenterY, Equal, window.get(), CenterY);
        bind(*window, *button, Leading, Equal, tab.get(), Trailing);
        fill(*tab, *content, 12);
        window->layoutIfNeeded();
    }
};

TEST(Layout, APanelSlidesWithoutAnythingInItBeingLaidOutAgain) {
    const CGFloat width = 245.53571428571428;
    Panel panel({width, 375});
    expectFrame(*panel.tab, -width, 0, width, 375);
    expectFrame(*panel.button, 0, 157.5, 22.5, 60);
    expectFrame(*panel.content, 12, 12, width - 24, 351);
    EXPECT_EQ(panel.tab->frame().minX(), -width) << "frames are not rounded";

    const int tabLayouts = panel.tab->layouts, contentLayouts = panel.content->layouts;
    panel.leading->setConstant(0);
    expectFrame(*panel.tab, -width, 0, width, 375);
    panel.window->layoutIfNeeded();
    expectFrame(*panel.tab, 0, 0, width, 375);
    expectFrame(*panel.button, width, 157.5, 22.5, 60);
    EXPECT_EQ(panel.tab->layouts, tabLayouts);
    EXPECT_EQ(panel.content->layouts, contentLayouts);

    // The screen turns.
    panel.window->setFrame({{}, {375, 667}});
    panel.width->setConstant(375);
    panel.height->setConstant(572.7);
    panel.window->layoutIfNeeded();
    expectFrame(*panel.tab, 0, (667 - 572.7) / 2, 375, 572.7);
    expectFrame(*panel.button, 375, (667 - 60) / 2.0, 22.5, 60);
    expectFrame(*panel.content, 12, 12, 351, 548.7);
    EXPECT_EQ(panel.content->layouts, contentLayouts + 1);
}

TEST(Layout, ConstraintsThatTieAViewToItsParentGoWithItAndThoseInsideStay) {
    Panel panel({200, 300});
    const Weak<NSLayoutConstraint> leading(panel.leading);
    panel.leading = nullptr;
    EXPECT_TRUE(leading);
    panel.tab->removeFromSuperview();
    EXPECT_FALSE(leading);
    EXPECT_EQ(panel.window->constraints().size(), 2U) << "the button's width and centre";
    EXPECT_EQ(panel.tab->constraints().size(), 4U);

    // Held by the test, taken out of the window: it has no effect until it is added again.
    panel.width->setConstant(150);
    panel.tab->setFrame({{}, {100, 80}});
    panel.tab->layoutIfNeeded();
    expectFrame(*panel.content, 12, 12, 76, 56);

    auto other = make<UIView>();
    other->setFrame({{}, {500, 400}});
    auto between = box(other.get(), "between");
    fill(*other, *between, 10);
    between->addSubview(*panel.tab);
    other->addConstraint(panel.width);
    other->addConstraint(panel.height);
    bind(*other, *panel.tab, Right, Equal, other.get(), Right, -20);
    bind(*other, *panel.tab, Top, Equal, between.get(), Top);
    other->layoutIfNeeded();
    expectFrame(*panel.tab, 500 - 20 - 150 - 10, 0, 150, 300);
    expectFrame(*panel.content, 12, 12, 126, 276);

    // A parent that dies leaves a sub-view that somebody holds with its own layout.
    other = between = nullptr;
    EXPECT_EQ(panel.tab->superview(), nullptr);
    panel.tab->setFrame({{}, {60, 70}});
    panel.tab->layoutIfNeeded();
    expectFrame(*panel.content, 12, 12, 36, 46);
}

TEST(Layout, EveryAttributeCountsFromTheCommonAncestor) {
    struct Case {
        NSLayoutAttribute attribute, ofOther;
        CGFloat multiplier, constant;
        CGRect frame;
    };
    // `other` lies at 100, 50 in its container, which lies at 10, 20; the item lies in a container at 200, 100 and is
    // 40 x 30.
    const Case cases[] = {
        {Left, Left, 1, 0, {{110 - 200, 0}, {40, 30}}},
        {Leading, Right, 1, 5, {{110 + 60 + 5 - 200, 0}, {40, 30}}},
        {Right, Left, 1, 0, {{110 - 40 - 200, 0}, {40, 30}}},
        {Trailing, Trailing, 1, 0, {{110 + 60 - 40 - 200, 0}, {40, 30}}},
        {Top, Top, 1, 0, {{0, 70 - 100}, {40, 30}}},
        {Top, Bottom, 1, 8, {{0, 70 + 80 + 8 - 100}, {40, 30}}},
        {Bottom, Top, 1, 0, {{0, 70 - 30 - 100}, {40, 30}}},
        {CenterX, CenterX, 1, 0, {{110 + 30 - 20 - 200, 0}, {40, 30}}},
        {CenterY, CenterY, 1, 0, {{0, 70 + 40 - 15 - 100}, {40, 30}}},
        {CenterX, CenterX, 0.5, 0, {{70 - 20 - 200, 0}, {40, 30}}},
        {Width, Width, 2, 1, {{0, 0}, {121, 30}}},
        {Height, Width, 0.5, 0, {{0, 0}, {40, 30}}},
    };
    for (const Case& each : cases) {
        auto root = make<UIView>();
        root->setFrame({{}, {600, 400}});
        auto first = make<UIView>(), second = make<UIView>(), other = make<UIView>();
        first->setFrame({{10, 20}, {300, 300}});
        second->setFrame({{200, 100}, {300, 300}});
        other->setFrame({{100, 50}, {60, 80}});
        root->addSubview(*first);
        root->addSubview(*second);
        first->addSubview(*other);
        auto item = box(second.get(), "item");
        item->content = {40, 30};
        bind(*root, *item, each.attribute, Equal, other.get(), each.ofOther, each.constant, each.multiplier);
        root->layoutIfNeeded();
        const auto name =
            std::to_string(static_cast<int>(each.attribute)) + " to " + std::to_string(static_cast<int>(each.ofOther));
        item->setAccessibilityIdentifier(name);
        expectFrame(*item, each.frame.minX(), each.frame.minY(), each.frame.width(), each.frame.height());
        // A frame that is set moves what depends on it.
        other->setFrame({{100, 50}, {60, 80}});
        second->setFrame({{190, 90}, {300, 300}});
        root->layoutIfNeeded();
        const bool isSize = each.attribute == Width || each.attribute == Height;
        const bool isVertical = each.attribute == Top || each.attribute == Bottom || each.attribute == CenterY;
        expectFrame(*item, each.frame.minX() + (isSize || isVertical ? 0 : 10),
                    each.frame.minY() + (isVertical ? 10 : 0), each.frame.width(), each.frame.height());
    }
}

/// Two boxes with content side by side in a row of a given width.
TEST(Layout, ContentSizesGiveWayByTheirPriorities) {
    struct Case {
        const char* what;
        CGFloat row;
        UILayoutPriority leftHugs, leftResists;
        CGFloat left, right;
    };
    const Case cases[] = {
        {"the right one hugs less and grows", 300, 251, 750, 100, 200},
        {"the left one hugs less and grows", 300, 249, 750, 220, 80},
        {"the right one resists less and shrinks", 150, 250, 751, 100, 50},
        {"the left one resists less and shrinks", 150, 250, 749, 70, 80},
        {"a required resistance leaves the other nothing", 60, 250, 1000, 100, 0},
    };
    for (const Case& each : cases) {
        auto row = make<UIView>();
        row->setFrame({{}, {each.row, 50}});
        auto left = box(row.get(), each.what), right = box(row.get(), each.what);
        left->content = {100, 20};
        right->content = {80, 30};
        left->setContentHuggingPriority(each.leftHugs, UILayoutConstraintAxis::Horizontal);
        left->setContentCompressionResistancePriority(each.leftResists, UILayoutConstraintAxis::Horizontal);
        bind(*row, *left, Left, Equal, row.get(), Left);
        bind(*row, *right, Left, Equal, left.get(), Right);
        if (each.row >= 100)
            bind(*row, *right, Right, Equal, row.get(), Right);
        else
            bind(*row, *right, Right, LessThanOrEqual, row.get(), Right, 40);
        bind(*row, *left, CenterY, Equal, row.get(), CenterY);
        bind(*row, *right, Top, Equal, row.get(), Top);
        row->layoutIfNeeded();
        expectFrame(*left, 0, 15, each.left, 20);
        expectFrame(*right, each.left, 0, each.right, 30);
    }
}

TEST(Layout, ContentSizesMayComeChangeAndGo) {
    auto root = make<UIView>();
    root->setFrame({{}, {300, 200}});
    auto view = box(root.get(), "view"), below = box(root.get(), "below");
    bind(*root, *view, Left, Equal, root.get(), Left, 10);
    bind(*root, *view, Top, Equal, root.get(), Top, 10);
    bind(*root, *below, Top, Equal, view.get(), Bottom, 4);
    bind(*root, *view, Width, LessThanOrEqual, root.get(), Width, 0, 0.5);
    root->layoutIfNeeded();
    view->setContent({60, 20});
    root->layoutIfNeeded();
    expectFrame(*view, 10, 10, 60, 20);
    view->setContent({400, 44});
    root->layoutIfNeeded();
    expectFrame(*view, 10, 10, 150, 44);
    EXPECT_NEAR(below->frame().minY(), 58, 1e-9);
    fix(*view, *view, Width, 30);
    view->setContent({UIViewNoIntrinsicMetric, 12});
    root->layoutIfNeeded();
    expectFrame(*view, 10, 10, 30, 12);
}

TEST(Layout, ATextOfSeveralLinesIsAsHighAsItsWidthMakesIt) {
    auto root = make<UIView>();
    root->setFrame({{}, {320, 400}});
    auto label = make<UILabel>(), caption = make<UILabel>();
    for (const auto& each : {label, caption}) {
        each->setTranslatesAutoresizingMaskIntoConstraints(false);
        root->addSubview(*each);
        bind(*root, *each, Left, Equal, root.get(), Left, 10);
    }
    label->setNumberOfLines(0);
    label->setText("A description that is too long for one line of the panel and goes on for a good while after that");
    caption->setText("Caption");
    bind(*root, *label, Right, LessThanOrEqual, root.get(), Right, -10);
    bind(*root, *label, Top, Equal, root.get(), Top, 10);
    bind(*root, *caption, Top, Equal, label.get(), Bottom);
    for (const CGFloat width : {320.0, 160.0, 2000.0, 240.0}) {
        root->setFrame({{}, {width, 400}});
        root->layoutIfNeeded();
        const CGSize fitting = label->sizeThatFits(label->frame().width());
        EXPECT_LE(label->frame().width(), width - 20);
        EXPECT_NEAR(label->frame().height(), fitting.height, 1e-6) << width;
        EXPECT_NEAR(caption->frame().minY(), 10 + fitting.height, 1e-6) << width;
    }
    const CGFloat line = caption->frame().height();
    EXPECT_GT(label->frame().height(), 2 * line);
}

TEST(Layout, AContradictionIsNamedLeftOutAndMendedWhenItIsOver) {
    auto root = make<UIView>();
    root->setAccessibilityIdentifier("root");
    root->setFrame({{}, {300, 200}});
    auto view = box(root.get(), "card"), other = box(root.get(), "badge");
    fill(*root, *view, 10);
    bind(*root, *other, Left, Equal, view.get(), Left, 5);
    ::testing::internal::CaptureStderr();
    auto left = bind(*root, *other, Left, Equal, root.get(), Left, 40);
    root->layoutIfNeeded();
    std::string message = ::testing::internal::GetCapturedStderr();
    EXPECT_THAT(message, AllOf(HasSubstr("badge.left == root.left + 40"), HasSubstr("badge.left == card.left + 5"),
                               HasSubstr("left out")));
    EXPECT_NEAR(other->frame().minX(), 15, 1e-9);
    expectFrame(*view, 10, 10, 280, 180);

    // Said once, as long as it lasts; met as soon as it can be.
    ::testing::internal::CaptureStderr();
    fix(*root, *other, Width, 7);
    root->layoutIfNeeded();
    left->setConstant(15);
    root->layoutIfNeeded();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    expectFrame(*other, 15, 0, 7, 0);

    ::testing::internal::CaptureStderr();
    left->setConstant(16);
    root->layoutIfNeeded();
    EXPECT_THAT(::testing::internal::GetCapturedStderr(), HasSubstr("badge.left == root.left + 16"));
    EXPECT_NEAR(other->frame().minX(), 15, 1e-9);
    left->setPriority(500);
    root->layoutIfNeeded();
    EXPECT_NEAR(other->frame().minX(), 15, 1e-9);
}

TEST(Layout, ConstraintsThatCannotBeHeldAreRefused) {
    auto root = make<UIView>(), stranger = make<UIView>();
    auto view = box(root.get(), "view");
    const CGFloat infinite = std::numeric_limits<CGFloat>::infinity();
    const Ref<NSLayoutConstraint> refused[] = {
        NSLayoutConstraint::constraintWithItem(*view, Left, Equal, stranger.get(), Left, 1, 0),
        NSLayoutConstraint::constraintWithItem(*stranger, Width, Equal, nullptr, NotAnAttribute, 1, 5),
        NSLayoutConstraint::constraintWithItem(*view, NotAnAttribute, Equal, root.get(), Left, 1, 0),
        NSLayoutConstraint::constraintWithItem(*view, Left, Equal, nullptr, Left, 1, 0),
        NSLayoutConstraint::constraintWithItem(*view, Left, Equal, root.get(), NotAnAttribute, 1, 0),
        NSLayoutConstraint::constraintWithItem(*view, Width, Equal, nullptr, NotAnAttribute, 1, infinite),
        NSLayoutConstraint::constraintWithItem(*view, Left, Equal, root.get(), Left, infinite, 0),
    };
    for (const auto& constraint : refused) {
        ::testing::internal::CaptureStderr();
        root->addConstraint(constraint);
        EXPECT_THAT(::testing::internal::GetCapturedStderr(), HasSubstr("refused"));
    }
    EXPECT_TRUE(root->constraints().empty());
    auto constraint = NSLayoutConstraint::constraintWithItem(*stranger, Width, Equal, nullptr, NotAnAttribute, 1, 5);
    stranger = nullptr;
    EXPECT_EQ(constraint->firstItem(), nullptr);
    ::testing::internal::CaptureStderr();
    root->addConstraint(constraint);
    EXPECT_THAT(::testing::internal::GetCapturedStderr(), HasSubstr("(gone)"));
    root->addConstraint(nullptr);
}

TEST(Layout, WhatNoConstraintDeterminesStaysAsItIs) {
    auto root = make<UIView>();
    root->setFrame({{}, {300, 200}});
    auto view = box(root.get(), "view");
    view->setFrame({{33, 44}, {55, 66}});
    const auto width = fix(*root, *view, Width, 100);
    root->layoutIfNeeded();
    expectFrame(*view, 33, 44, 100, 66);
    // What is determined returns to its place, the rest may be moved.
    view->setFrame({{1, 2}, {3, 4}});
    root->layoutIfNeeded();
    expectFrame(*view, 1, 2, 100, 4);
    root->removeConstraint(*width);
    view->setFrame({{1, 2}, {3, 4}});
    root->layoutIfNeeded();
    expectFrame(*view, 1, 2, 3, 4);

    // Lengths never turn negative, whatever the constraints say.
    fill(*root, *view, 160);
    root->layoutIfNeeded();
    EXPECT_EQ(view->frame().width(), 0);
}

TEST(Layout, SwitchingBetweenFrameAndConstraints) {
    auto root = make<UIView>();
    root->setFrame({{}, {300, 200}});
    auto view = box(root.get(), "view"), child = box(view.get(), "child");
    fill(*root, *view, 10);
    fill(*view, *child, 5);
    root->layoutIfNeeded();
    expectFrame(*child, 5, 5, 270, 170);
    root->removeConstraints(root->constraints());
    view->setTranslatesAutoresizingMaskIntoConstraints(true);
    view->setFrame({{0, 0}, {50, 40}});
    root->layoutIfNeeded();
    expectFrame(*view, 0, 0, 50, 40);
    expectFrame(*child, 5, 5, 40, 30);
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    fill(*root, *view, 20);
    root->layoutIfNeeded();
    expectFrame(*child, 5, 5, 250, 150);
}

TEST(Layout, ViewsAreLaidOutOnceWhenSomethingChangedAndNeverOtherwise) {
    auto root = make<UIView>();
    root->setFrame({{}, {300, 200}});
    auto view = box(root.get(), "view"), child = box(view.get(), "child"), aside = box(root.get(), "aside");
    fill(*root, *view);
    fill(*view, *child, 5);
    root->layoutIfNeeded();
    const int before = child->layouts, asideBefore = aside->layouts;
    for (int frame = 0; frame < 5; ++frame) root->layoutIfNeeded();
    EXPECT_EQ(child->layouts, before);
    child->setNeedsLayout();
    child->setNeedsLayout();
    root->layoutIfNeeded();
    EXPECT_EQ(child->layouts, before + 1);
    EXPECT_EQ(aside->layouts, asideBefore);

    // What layout itself changes is laid out in the same call.
    const auto width = fix(*root, *aside, Width, 10);
    view->onLayout = [&] { width->setConstant(77); };
    view->setNeedsLayout();
    root->layoutIfNeeded();
    EXPECT_EQ(aside->frame().width(), 77);
    // One that never comes to rest does not keep the caller.
    child->onLayout = [&] { child->setNeedsLayout(); };
    child->setNeedsLayout();
    const int restless = child->layouts;
    root->layoutIfNeeded();
    EXPECT_LT(child->layouts - restless, 100);
    // Views may leave in the middle of it.
    child->onLayout = nullptr;
    view->onLayout = [&] {
        if (child->superview()) child->removeFromSuperview();
    };
    view->setNeedsLayout();
    child->setNeedsLayout();
    root->layoutIfNeeded();
    EXPECT_EQ(child->superview(), nullptr);
}

/// What the constraints say must show in the frames, whatever way the tree came about.
TEST(Layout, RandomChangesOfTheTreeLeaveConstraintsMet) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        std::mt19937 engine(seed);
        const auto random = [&](std::size_t count) {
            return std::uniform_int_distribution<std::size_t>(0, count - 1)(engine);
        };
        const auto length = [&] { return static_cast<CGFloat>(random(100)); };
        auto root = make<UIView>();
        root->setFrame({{}, {500, 500}});
        std::vector<Ref<Box>> views;
        // Place and width come from the parent alone, the height from the view itself, so that nothing contradicts.
        const auto placeIn = [&](UIView& parent, UIView& view) {
            parent.addSubview(view);
            bind(parent, view, Left, Equal, &parent, Left, length());
            bind(parent, view, CenterY, Equal, &parent, random(2) ? Top : Bottom, length());
            bind(parent, view, Width, Equal, &parent, Width, length(), 0.5);
        };
        for (std::size_t i = 0; i < 14; ++i) {
            views.push_back(box(nullptr, ("view " + std::to_string(i)).c_str()));
            fix(*views.back(), *views.back(), Height, length());
            placeIn(i == 0 ? *root : *views[random(i)], *views.back());
        }
        for (int step = 0; step < 60; ++step) {
            Box& view = *views[random(views.size())];
            UIView& other = random(3) == 0 ? *root : *views[random(views.size())];
            switch (random(5)) {
                case 0:
                    if (!other.isDescendantOfView(view) && view.superview() != &other) placeIn(other, view);
                    break;
                case 1:
                    view.removeFromSuperview();
                    break;
                case 2:
                    for (const auto& constraint : view.constraints()) constraint->setConstant(length());
                    break;
                case 3:
                    root->setFrame({{}, {300 + 3 * length(), 500}});
                    break;
                default:
                    view.layoutIfNeeded();
            }
        }
        const auto expectMet = [&](const NSLayoutConstraint& constraint) {
            const CGRect &frame = constraint.firstItem()->frame(),
                         parent = constraint.firstItem()->superview()->frame();
            const auto check = [&](NSLayoutAttribute attribute, CGFloat actual, CGFloat expected) {
                if (constraint.firstAttribute() != attribute) return;
                EXPECT_NEAR(actual, expected, 1e-6) << constraint.description() << " seed " << seed;
            };
            check(Left, frame.minX(), constraint.constant());
            check(Height, frame.height(), constraint.constant());
            check(Width, frame.width(), parent.width() / 2 + constraint.constant());
        };
        root->layoutIfNeeded();
        for (const auto& view : views) view->layoutIfNeeded();
        for (const auto& view : views) {
            for (const auto& constraint : view->constraints()) {
                if (constraint->firstItem()->superview()) expectMet(*constraint);
            }
        }
    }
}

}  // namespace
}  // namespace flarebox
