#pragma once

#include <UIKit/UIViewController.h>

#include <vector>

namespace flarebox {

/// What a navigation stack and a tab bar have in common: several controllers, one of which is shown. Main thread.
class ContainerViewController : public UIViewController {
    FLAREBOX_CLASS(ContainerViewController)
public:
    const std::vector<Ref<UIViewController>>& viewControllers() const { return viewControllers_; }

protected:
    Ref<UIView> loadView() override;
    /// Replaces all controllers; nulls are left out.
    void replaceControllers(std::vector<Ref<UIViewController>> controllers);
    void append(const Ref<UIViewController>& controller);
    void removeLast();
    /// Shows the controller, one of these or null, instead of what was shown.
    void show(UIViewController* controller);

private:
    std::vector<Ref<UIViewController>> viewControllers_;
    Ref<UIViewController> shown_;
};

}  // namespace flarebox
