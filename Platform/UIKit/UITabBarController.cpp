#include <UIKit/UITabBarController.h>

#include <utility>

namespace flarebox {

const ClassInfo& UITabBarController::staticClass() {
    static const ClassInfo info("UITabBarController", &ContainerViewController::staticClass(),
                                createObject<UITabBarController>);
    return info;
}

void UITabBarController::setViewControllers(std::vector<Ref<UIViewController>> controllers) {
    replaceControllers(std::move(controllers));
    selectedIndex_ = 0;
    show(selectedViewController().get());
}

Ref<UIViewController> UITabBarController::selectedViewController() const {
    return viewControllers().empty() ? nullptr : viewControllers()[selectedIndex_];
}

void UITabBarController::setSelectedIndex(std::size_t index) {
    if (index >= viewControllers().size()) return;
    selectedIndex_ = index;
    show(selectedViewController().get());
}

}  // namespace flarebox
