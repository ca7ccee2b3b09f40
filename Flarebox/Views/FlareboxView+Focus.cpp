#include <Flarebox/Views/FlareboxView.h>
#include <SceneKit/SCNView.h>
#include <UIKit/UICollectionView.h>

namespace flarebox {

UIView* FlareboxView::preferredFocusedView() {
    if (!isOpened() || !assestsList_) return nullptr;
    if (couponView_ && !couponView_->isHidden()) return couponView_->preferredFocusedView();
    for (const NSIndexPath& path : collectionView_->indexPathsForVisibleItems()) {
        const bool isCurrent = path.row < assestsList_->size() && isCurrentAsset(*(*assestsList_)[path.row]);
        if (isCurrent) return collectionView_->cellForItemAtIndexPath(path).get();
    }
    return nullptr;
}

bool FlareboxView::pressBegan(UIPressType type) {
    if (!isOpened()) return UIView::pressBegan(type);
    switch (type) {
        case UIPressType::Menu:
            return goBack();
        case UIPressType::PageUp:
        case UIPressType::PageDown:
            goToMode(type == UIPressType::PageUp);
            return true;
        default:
            return UIView::pressBegan(type);
    }
}

bool FlareboxView::goBack() {
    if (scnContent_ && scnContent_->is3DViewFullScreen())
        scnContent_->press3DFullButton();
    else if (couponView_ && !couponView_->isHidden())
        couponView_->goBack();
    else
        close();
    return true;
}

void FlareboxView::goToMode(bool backwards) {
    constexpr std::uint64_t modes = 3;
    auto mode = static_cast<std::uint64_t>(currentAssetMode_);
    for (std::uint64_t i = 1; i < modes; ++i) {
        mode = (mode + (backwards ? modes - 1 : 1)) % modes;
        if (isEnabledMode(static_cast<AssetMode>(mode))) return changeAssetMode(static_cast<AssetMode>(mode));
    }
}

bool FlareboxView::stickHeld(CGPoint deflection, double seconds) {
    if (!isOpened()) return UIView::stickHeld(deflection, seconds);
    const bool hasModel = scnContent_ && currentAssetMode_ == AssetMode3D && scnContent_->scnView().canBecomeFocused();
    return hasModel ? scnContent_->scnView().stickHeld(deflection, seconds)
                    : collectionView_->scrollByStick(deflection, seconds);
}

}  // namespace flarebox
