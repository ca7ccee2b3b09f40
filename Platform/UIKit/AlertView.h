#pragma once

#include <UIKit/UIView.h>

#include <vector>

namespace flarebox {

class UIAlertAction;
class UIAlertController;
class UIButton;
class UILabel;

/// What an alert shows: everything behind it dimmed, a panel with title, message and buttons in the middle. Main
/// thread.
class AlertView : public UIView {
    FLAREBOX_CLASS(AlertView)
public:
    explicit AlertView(UIAlertController& alert);
    void layoutSubviews() override;
    /// What Return chooses.
    UIView* preferredFocusedView() override;

private:
    Ref<UILabel> makeLabel(const UIColor& color);
    Ref<UIView> makeHairline();
    void addButton(UIAlertController& alert, const Ref<UIAlertAction>& action);
    bool fitSideBySide(CGFloat width, CGFloat scale) const;
    CGFloat layoutTexts(CGFloat width, CGFloat heightLeft, CGFloat scale);
    CGFloat layoutButtons(CGFloat width, CGFloat top, CGFloat scale);

    Ref<UIView> panel_;
    /// Null where there is nothing to say.
    Ref<UILabel> title_, message_;
    std::vector<Ref<UIButton>> buttons_;
    Weak<UIButton> preferredButton_;
    /// One before each button: above it, or to its left where two stand side by side.
    std::vector<Ref<UIView>> hairlines_;
};

}  // namespace flarebox
