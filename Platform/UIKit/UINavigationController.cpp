#include <UIKit/UINavigationController.h>

#include <utility>

namespace flarebox {

const ClassInfo& UINavigationController::staticClass() {
    static const ClassInfo info("UINavigationController", &ContainerViewController::staticClass(),
                                createObject<UINavigationController>);
    return info;
}

void UINavigationController::setViewControllers(std::vector<Ref<UIViewController>> controllers) {
    replaceControllers(std::move(controllers));
    show(topViewController());
}

void UINavigationController::pushViewController(const Ref<UIViewController>& controller) {
    append(controller);
    show(topViewController());
}

void UINavigationController::popViewController() {
    if (viewControllers().size() < 2) return;
    removeLast();
    show(topViewController());
}

UIViewController* UINavigationController::topViewController() const {
    return viewControllers().empty() ? nullptr : viewControllers().back().get();
}

}  // namespace flarebox
