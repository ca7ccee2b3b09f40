#pragma once

#include <UIKit/ContainerViewController.h>

namespace flarebox {

/// Controllers side by side, of which the selected one is shown. Main thread.
class UITabBarController : public ContainerViewController {
    FLAREBOX_CLASS(UITabBarController)
public:
    /// Selects the first.
    void setViewControllers(std::vector<Ref<UIViewController>> controllers);
    /// Null when there is none.
    Ref<UIViewController> selectedViewController() const;
    std::size_t selectedIndex() const { return selectedIndex_; }
    /// An index out of range is ignored.
    void setSelectedIndex(std::size_t index);

private:
    std::size_t selectedIndex_ = 0;
};

}  // namespace flarebox
