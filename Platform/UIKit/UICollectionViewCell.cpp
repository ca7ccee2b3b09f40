#include <UIKit/UICollectionView.h>
#include <UIKit/UICollectionViewCell.h>

namespace flarebox {

const ClassInfo& UICollectionViewCell::staticClass() {
    static const ClassInfo info("UICollectionViewCell", &UIView::staticClass(), createObject<UICollectionViewCell>);
    return info;
}

UIAccessibilityTraits UICollectionViewCell::accessibilityTraits() const {
    return UIView::accessibilityTraits() | UIAccessibilityTraits::Button;
}

bool UICollectionViewCell::accessibilityActivate() {
    auto* const list = objectCast<UICollectionView>(superview());
    return list && list->select(*this);
}

void UICollectionViewCell::setHighlighted(bool highlighted) {
    if (highlighted == highlighted_) return;
    highlighted_ = highlighted;
    setAlpha(highlighted ? 0.7 : 1.0);
}

}  // namespace flarebox
