#pragma once

#include <UIKit/ContainerViewController.h>

namespace flarebox {

/// A stack of controllers, the bottom-most first, of which the last is shown. Main thread.
class UINavigationController : public ContainerViewController {
    FLAREBOX_CLASS(UINavigationController)
public:
    void setViewControllers(std::vector<Ref<UIViewController>> controllers);
    void pushViewController(const Ref<UIViewController>& controller);
    /// Takes the last one off; the bottom-most one stays.
    void popViewController();
    /// Null while the stack is empty.
    UIViewController* topViewController() const;
};

}  // namespace flarebox
