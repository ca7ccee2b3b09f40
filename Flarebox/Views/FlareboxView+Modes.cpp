#include <Flarebox/Views/FlareboxView.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIImageView.h>

#include <utility>

namespace flarebox {
namespace {

bool isPresent(const NSString& text) {
    return !text.text().empty();
}

}  // namespace

bool FlareboxView::isEnabledMode(AssetMode mode) const {
    switch (mode) {
        case AssetMode2D:
            return currentAsset_ && isPresent(currentAsset_->fileImage());
        case AssetMode3D:
            // Every asset is taken to have a model.
            return true;
        case AssetModeVideo:
            return currentAsset_ && isPresent(currentAsset_->videoMobile());
    }
    return false;
}

void FlareboxView::validateAssetPreventModes() {
    btn2d_->setEnabled(isEnabledMode(AssetMode2D));
    btn3d_->setEnabled(isEnabledMode(AssetMode3D));
    btnVideo_->setEnabled(isEnabledMode(AssetModeVideo));
    // Whoever looks at models goes back to pictures with the first asset that has no video, as whoever looks at videos
    // does.
    if (currentAssetMode_ != AssetMode2D && !isEnabledMode(AssetModeVideo)) currentAssetMode_ = AssetMode2D;
    changeAssetMode(currentAssetMode_);
}

void FlareboxView::changeAssetMode(AssetMode mode) {
    if (!isEnabledMode(mode)) return;
    const Ref<NSObject> self = retained();
    focusAssetMode(mode);
    if (!isOpened()) return;
    if (mode == AssetMode3D) sendEngagementEvent(EngagementAction3D);
    if (mode == AssetModeVideo) sendEngagementEvent(EngagementActionVideo);
}

void FlareboxView::focusAssetMode(AssetMode mode) {
    if (!isEnabledMode(mode)) return;
    pauseVideo();
    videoContainer_->setHidden(mode != AssetModeVideo);
    imgAssetContent_->setHidden(mode != AssetMode2D);
    scnContainer_->setHidden(mode != AssetMode3D);
    currentAssetMode_ = mode;
    btn2d_->setSelected(mode == AssetMode2D);
    btn3d_->setSelected(mode == AssetMode3D);
    btnVideo_->setSelected(mode == AssetModeVideo);
    const bool isChange = std::exchange(knownMode_, mode) != mode;
    if (isChange && delegate_) delegate_->flareboxViewDidChangeMode(*this, mode);
}

}  // namespace flarebox
