#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>
#include <UIKit/Geometry.h>

namespace flarebox {

class LayoutEngine;
class UIView;

/// The platform's numbers.
enum class NSLayoutAttribute : std::uint8_t {
    NotAnAttribute = 0,
    Left = 1,
    Right = 2,
    Top = 3,
    Bottom = 4,
    Leading = 5,
    Trailing = 6,
    Width = 7,
    Height = 8,
    CenterX = 9,
    CenterY = 10
};
enum class NSLayoutRelation : std::int8_t { LessThanOrEqual = -1, Equal = 0, GreaterThanOrEqual = 1 };

/// 1000 is required; below it a constraint is broken when it cannot be met, the lower first.
using UILayoutPriority = float;
inline constexpr UILayoutPriority UILayoutPriorityRequired = 1000;
inline constexpr UILayoutPriority UILayoutPriorityDefaultHigh = 750;
inline constexpr UILayoutPriority UILayoutPriorityDefaultLow = 250;

/// first.attribute relation second.attribute * multiplier + constant. Takes effect when added to a view that is a
/// common ancestor of both items (or one of them). Main thread.
class FLAREBOX_EXPORT NSLayoutConstraint : public NSObject {
    FLAREBOX_CLASS(NSLayoutConstraint)
public:
    /// `toItem` may be null together with NotAnAttribute: the first attribute is then compared with the constant alone.
    static Ref<NSLayoutConstraint> constraintWithItem(UIView& item, NSLayoutAttribute attribute,
                                                      NSLayoutRelation relatedBy, UIView* toItem,
                                                      NSLayoutAttribute toAttribute, CGFloat multiplier,
                                                      CGFloat constant);
    ~NSLayoutConstraint() override;

    /// Null once the view is gone.
    UIView* firstItem() const;
    UIView* secondItem() const;
    NSLayoutAttribute firstAttribute() const { return firstAttribute_; }
    NSLayoutAttribute secondAttribute() const { return secondAttribute_; }
    NSLayoutRelation relation() const { return relation_; }
    CGFloat multiplier() const { return multiplier_; }
    CGFloat constant() const { return constant_; }
    /// Takes effect at the next layout; only what hangs on it is solved again.
    void setConstant(CGFloat constant);
    UILayoutPriority priority() const { return priority_; }
    void setPriority(UILayoutPriority priority);
    /// Whether it is left out at present because it contradicts others, which the log says.
    bool isBroken() const { return isBroken_; }
    /// For messages: where it comes from. Of a layout file's the file and the line; else absent until it is set.
    const NSString& identifier() const { return identifier_; }
    void setIdentifier(const NSString& identifier) { identifier_ = identifier; }
    /// Names both views, the relation, the constant and the identifier, for messages.
    std::string description() const override;

private:
    friend class LayoutEngine;
    friend class UIView;
    /// Why the view cannot hold the constraint; null when it can.
    const char* reasonToRefuse(const UIView& owner) const;

    Weak<UIView> firstItem_, secondItem_;
    NSString identifier_;
    /// The view that holds the constraint, while one does; both items are then alive and in its tree, so that plain
    /// pointers do.
    UIView* owner_ = nullptr;
    UIView *heldFirst_ = nullptr, *heldSecond_ = nullptr;
    /// What the engine of the tree knows it by.
    LayoutEngine* engine_ = nullptr;
    std::uint32_t solverId_ = 0;
    /// Left out because it contradicts others, and said so.
    bool isBroken_ = false;
    CGFloat multiplier_ = 1, constant_ = 0;
    UILayoutPriority priority_ = UILayoutPriorityRequired;
    NSLayoutAttribute firstAttribute_ = NSLayoutAttribute::NotAnAttribute,
                      secondAttribute_ = NSLayoutAttribute::NotAnAttribute;
    NSLayoutRelation relation_ = NSLayoutRelation::Equal;
};

}  // namespace flarebox
