#include <UIKit/ContainerView.h>
#include <UIKit/ContainerViewController.h>

#include <utility>

namespace flarebox {

const ClassInfo& ContainerViewController::staticClass() {
    static const ClassInfo info("ContainerViewController", &UIViewController::staticClass(), nullptr);
    return info;
}

Ref<UIView> ContainerViewController::loadView() {
    auto container = make<ContainerView>();
    if (shown_) container->show(&shown_->view());
    return container;
}

void ContainerViewController::replaceControllers(std::vector<Ref<UIViewController>> controllers) {
    for (const auto& former : viewControllers_) setParentViewController(*former, nullptr);
    viewControllers_.clear();
    for (const auto& controller : controllers) append(controller);
}

void ContainerViewController::append(const Ref<UIViewController>& controller) {
    if (!controller) return;
    setParentViewController(*controller, this);
    viewControllers_.push_back(controller);
}

void ContainerViewController::removeLast() {
    setParentViewController(*viewControllers_.back(), nullptr);
    viewControllers_.pop_back();
}

void ContainerViewController::show(UIViewController* controller) {
    if (shown_.get() == controller) return;
    const Ref<UIViewController> former = std::exchange(shown_, Ref<UIViewController>(controller));
    auto* container = objectCast<ContainerView>(viewIfLoaded());
    if (!container) return;
    if (former) former->viewWillDisappear(false);
    if (controller) controller->viewWillAppear(false);
    container->show(controller ? &controller->view() : nullptr);
    if (former) former->viewDidDisappear(false);
    if (controller) controller->viewDidAppear(false);
}

}  // namespace flarebox
