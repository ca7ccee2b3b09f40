#include <UIKit/ContainerView.h>

namespace flarebox {

const ClassInfo& ContainerView::staticClass() {
    static const ClassInfo info("ContainerView", &UIView::staticClass(), createObject<ContainerView>);
    return info;
}

void ContainerView::show(UIView* content) {
    if (!subviews().empty()) subviews().front()->removeFromSuperview();
    if (!content) return;
    addSubview(*content);
    content->setFrame({{}, bounds().size});
}

void ContainerView::layoutSubviews() {
    UIView::layoutSubviews();
    if (!subviews().empty()) subviews().front()->setFrame({{}, bounds().size});
}

}  // namespace flarebox
