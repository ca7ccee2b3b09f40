#pragma once

#include <Foundation/NSObject.h>
#include <UIKit/UIView.h>

#include <functional>
#include <string_view>

namespace flarebox {

class UIWindow;

/// Manages one view and what is presented over it. Main thread.
class UIViewController : public NSObject {
    FLAREBOX_CLASS(UIViewController)
public:
    UIViewController();
    ~UIViewController() override;

    /// Made on first use.
    UIView& view();
    UIView* viewIfLoaded() const { return view_.get(); }
    void setView(const Ref<UIView>& view) { view_ = view; }

    /// The container this controller stands in; null for a root or a presented one.
    UIViewController* parentViewController() const { return parent_.get(); }
    /// The window in which the controller, or the container around it, is shown; null when it is not.
    UIWindow* window() const;

    /// Shows the controller's view over everything in the window, which takes all input until it is dismissed. With
    /// `animated` it fades in over 0.15 seconds. `completion`, which may be null, runs on the main queue once it is
    /// shown. Nothing happens without a window, while this controller presents another, or when the other is shown
    /// already.
    void presentViewController(const Ref<UIViewController>& controller, bool animated,
                               std::function<void()> completion);
    /// Dismisses what this controller presents, or itself when it is presented. `completion` runs on the main queue
    /// once it is gone.
    void dismissViewController(bool animated, std::function<void()> completion);
    /// What is shown over this controller, or null.
    UIViewController* presentedViewController() const { return presented_.get(); }
    UIViewController* presentingViewController() const { return presenting_.get(); }
    /// Whether it fades out after having been dismissed. It takes no input any more.
    bool isBeingDismissed() const { return isBeingDismissed_; }

    // Hooks.
    virtual void viewDidLoad() {}
    virtual void viewWillAppear(bool animated);
    virtual void viewDidAppear(bool animated);
    virtual void viewWillDisappear(bool animated);
    virtual void viewDidDisappear(bool animated);
    /// A key pressed while this controller is presented, by its name: "escape", "return", …. Whether it was used; the
    /// game never sees it either way.
    virtual bool keyDown(std::string_view name);

protected:
    /// Makes the view. The default makes a plain one.
    virtual Ref<UIView> loadView();
    void setParentViewController(UIViewController& child, UIViewController* parent) {
        child.parent_ = Weak<UIViewController>(parent);
    }

private:
    void dismissPresented(bool animated, std::function<void()> completion);

    Ref<UIView> view_;
    Ref<UIViewController> presented_;
    Weak<UIViewController> presenting_, parent_;
    bool isBeingDismissed_ = false;
};

}  // namespace flarebox
