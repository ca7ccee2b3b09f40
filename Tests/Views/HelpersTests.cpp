#include <Flarebox/Views/UIButton+extends.h>
#include <Flarebox/Views/UIView+extends.h>

#include <gtest/gtest.h>

namespace flarebox {
namespace {

using enum NSLayoutAttribute;

Ref<NSLayoutConstraint> constraint(UIView& item, NSLayoutAttribute attribute, UIView* second, CGFloat constant) {
    const NSLayoutAttribute other = second ? attribute : NotAnAttribute;
    return NSLayoutConstraint::constraintWithItem(item, attribute, NSLayoutRelation::Equal, second, other, 1, constant);
}

TEST(Helpers, AViewAddedToAParentFillsItAndFollowsItsSize) {
    auto parent = make<UIView>(), sibling = make<UIView>(), view = make<UIView>();
    parent->setFrame({{30, 40}, {200, 100}});
    parent->addSubview(*sibling);
    addToParent(*view, *parent);
    EXPECT_EQ(parent->subviews().back(), view);
    EXPECT_FALSE(view->translatesAutoresizingMaskIntoConstraints());
    ASSERT_EQ(parent->constraints().size(), 4U);
    const NSLayoutAttribute expected[] = {Trailing, Bottom, Leading, Top};
    for (std::size_t i = 0; i < 4; ++i) {
        const NSLayoutConstraint& bound = *parent->constraints()[i];
        EXPECT_EQ(bound.firstItem(), view.get());
        EXPECT_EQ(bound.secondItem(), parent.get());
        EXPECT_EQ(bound.firstAttribute(), expected[i]);
        EXPECT_EQ(bound.secondAttribute(), expected[i]);
        EXPECT_EQ(bound.relation(), NSLayoutRelation::Equal);
        EXPECT_EQ(bound.multiplier(), 1);
        EXPECT_EQ(bound.constant(), 0);
    }
    parent->layoutIfNeeded();
    EXPECT_EQ(view->frame(), CGRectMake(0, 0, 200, 100));
    parent->setFrame({{0, 0}, {90, 310}});
    parent->layoutIfNeeded();
    EXPECT_EQ(view->frame(), CGRectMake(0, 0, 90, 310));

    addToParent(*view, *parent);
    EXPECT_EQ(parent->constraints().size(), 8U);
    parent->layoutIfNeeded();
    EXPECT_EQ(view->frame(), CGRectMake(0, 0, 90, 310));
}

TEST(Helpers, AllConstraintsOfAViewGoAndNoOthers) {
    auto grandparent = make<UIView>(), parent = make<UIView>(), view = make<UIView>(), child = make<UIView>(),
         other = make<UIView>();
    grandparent->addSubview(*parent);
    parent->addSubview(*view);
    parent->addSubview(*other);
    view->addSubview(*child);
    grandparent->addConstraint(constraint(*view, Width, nullptr, 50));
    grandparent->addConstraint(constraint(*parent, Left, grandparent.get(), 1));
    parent->addConstraint(constraint(*other, Top, view.get(), 2));
    parent->addConstraint(constraint(*view, Top, parent.get(), 3));
    const auto untouched = constraint(*other, Left, parent.get(), 4);
    parent->addConstraint(untouched);
    view->addConstraint(constraint(*child, Left, view.get(), 5));
    view->addConstraint(constraint(*view, Height, nullptr, 6));
    removeAllConstraints(*view);
    EXPECT_EQ(grandparent->constraints().size(), 1U);
    ASSERT_EQ(parent->constraints().size(), 1U);
    EXPECT_EQ(parent->constraints()[0], untouched);
    EXPECT_TRUE(view->constraints().empty());
    EXPECT_EQ(view->superview(), parent.get());
    removeAllConstraints(*grandparent);
    EXPECT_TRUE(grandparent->constraints().empty());
}

TEST(Helpers, ButtonsAreEnabledAndDisabledByOneLook) {
    auto button = make<UIButton>();
    button->setAlpha(0.3);
    const auto expectLook = [&](bool isEnabled, const UIColor& color) {
        EXPECT_EQ(button->isEnabled(), isEnabled);
        EXPECT_EQ(button->alpha(), 1);
        EXPECT_EQ(button->titleColorForState(UIControlState::Normal), color);
        EXPECT_EQ(button->tintColor(), color);
        EXPECT_EQ(button->layer().borderColor(), color);
    };
    disable(*button);
    expectLook(false, UIColor::lightGrayColor());
    enable(*button);
    expectLook(true, UIColor::whiteColor());
}

}  // namespace
}  // namespace flarebox
