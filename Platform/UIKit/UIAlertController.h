#pragma once

#include <Foundation/Values.h>
#include <UIKit/UIViewController.h>

#include <functional>
#include <vector>

namespace flarebox {

enum class UIAlertControllerStyle : std::int64_t { ActionSheet = 0, Alert = 1 };
enum class UIAlertActionStyle : std::int64_t { Default = 0, Cancel = 1, Destructive = 2 };

/// One button of an alert.
class UIAlertAction : public NSObject {
    FLAREBOX_CLASS(UIAlertAction)
public:
    using Handler = std::function<void(UIAlertAction& action)>;
    /// The handler, which may be null, runs on the main queue after the alert has gone.
    static Ref<UIAlertAction> actionWithTitle(const NSString& title, UIAlertActionStyle style, Handler handler);

    const NSString& title() const { return title_; }
    UIAlertActionStyle style() const { return style_; }

private:
    friend class UIAlertController;
    NSString title_;
    UIAlertActionStyle style_ = UIAlertActionStyle::Default;
    Handler handler_;
};

/// A message with buttons in the middle of the window, over everything else. Escape stands for the cancel button,
/// Return for the first default one. Both styles look the same. Main thread.
class UIAlertController : public UIViewController {
    FLAREBOX_CLASS(UIAlertController)
public:
    /// An absent or empty title, or message, takes no room.
    static Ref<UIAlertController> alertControllerWithTitle(const NSString& title, const NSString& message,
                                                           UIAlertControllerStyle preferredStyle);

    const NSString& title() const { return title_; }
    const NSString& message() const { return message_; }
    UIAlertControllerStyle preferredStyle() const { return preferredStyle_; }
    /// Buttons stand in the order in which they were added. To be called before the alert is presented.
    void addAction(const Ref<UIAlertAction>& action) { actions_.push_back(action); }
    const std::vector<Ref<UIAlertAction>>& actions() const { return actions_; }

    void viewWillAppear(bool animated) override;
    bool keyDown(std::string_view name) override;

private:
    friend class AlertView;
    Ref<UIView> loadView() override;
    /// Dismisses the alert, then runs the action's handler. Only the first choice counts.
    void choose(UIAlertAction& action);

    NSString title_, message_;
    UIAlertControllerStyle preferredStyle_ = UIAlertControllerStyle::Alert;
    std::vector<Ref<UIAlertAction>> actions_;
    bool chosen_ = false;
};

}  // namespace flarebox
