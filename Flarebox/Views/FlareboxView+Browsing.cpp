#include <Flarebox/Core/Logging.h>
#include <Flarebox/Views/AssetCollectionViewCell.h>
#include <Flarebox/Views/FlareboxView.h>
#include <Flarebox/Views/Translation.h>
#include <Flarebox/Views/UIButton+extends.h>
#include <Networking/UIImageView+AFNetworking.h>
#include <SceneKit/SCNView.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>

#include <algorithm>
#include <utility>

namespace flarebox {
namespace {

constexpr const char* cellIdentifier = "AssetCollectionViewCell";

bool isPresent(const NSString& text) {
    return !text.text().empty();
}

}  // namespace

void FlareboxView::updateFlarebox() {
    if (assestsList_) {
        std::erase_if(*assestsList_,
                      [](const Ref<FXAssetInfo>& asset) { return !asset || !isPresent(asset->fileIcon()); });
    }
    collectionView_->reloadData();
    if (!assestsList_ || assestsList_->empty()) return showEmptyView();
    collectionView_->performBatchUpdates(nullptr, [self = Ref<FlareboxView>(this)](bool finished) {
        if (!finished) return;
        self->selectFirstAsset();
        self->showListEnds();
    });
    showAssetView();
}

void FlareboxView::selectFirstAsset() {
    if (!assestsList_ || assestsList_->empty()) return;
    selectAsset(assestsList_->front());
    enable(*btnCoupon_, UIPalette::Shade::ActionText);
    reloadCellVisibles();
}

void FlareboxView::selectAsset(const Ref<FXAssetInfo>& asset) {
    if (!asset) return;
    const Ref<NSObject> self = retained();
    currentAsset_ = asset;
    lbAssetTitle_->setText(asset->title());
    lbAssetDesc_->setText(asset->_description());
    imgAssetContent_->setAccessibilityLabel(spokenTitle(*asset));
    if (scnContent_) scnContent_->scnView().setAccessibilityLabel(spokenTitle(*asset));
    loadAssetPicture(asset->fileImage());
    load3DModel(asset);
    if (videoView_) videoView_->loadAssetVideo(asset);
    if (isPresent(asset->whereToBuy()))
        enable(*btnBuy_);
    else
        disable(*btnBuy_);
    validateAssetPreventModes();
    tellSelection();
}

void FlareboxView::tellSelection() {
    const Ref<FXAssetInfo> known = std::exchange(knownSelection_, currentAsset_);
    // The same product of a later list is no other one; products without an identifier all are.
    const NSString uid = currentAsset_->uid();
    if (known == currentAsset_ || (known && uid && known->uid() == uid)) return;
    if (delegate_) delegate_->flareboxViewDidSelectAsset(*this, currentAsset_);
}

void FlareboxView::loadAssetPicture(const NSString& address) {
    imgAssetContent_->setImage(nullptr);
    const NSURL url = NSURL::URLWithString(address);
    if (!url) return;
    setImageWithURLRequest(
        *imgAssetContent_, NSURLRequest::requestWithURL(url), nullptr,
        [self = Ref<FlareboxView>(this), url](const Ref<NSURLRequest>& request, const Ref<NSHTTPURLResponse>& response,
                                              const Ref<UIImage>& image) {
            // The player may have moved on: the picture is shown only while its own asset, or one with the same
            // picture, is current.
            if (!self->currentAsset_ || !(request->URL() == url)) return;
            if (!(NSURL::URLWithString(self->currentAsset_->fileImage()) == url)) return;
            // A picture that was at hand is there at once; one that was waited for fades in.
            self->imgAssetContent_->setImage(image, response != nullptr);
        },
        [](const Ref<NSURLRequest>&, const Ref<NSHTTPURLResponse>&, const Ref<NSError>& error) {
            warningLog("%@", error->localizedDescription());
        });
}

void FlareboxView::pressNextAssetButton() {
    std::vector<NSIndexPath> visible = collectionView_->indexPathsForVisibleItems();
    if (visible.empty()) return;
    std::sort(visible.begin(), visible.end());
    const NSIndexPath last = visible.back();
    const std::size_t count = assestsList_ ? assestsList_->size() : 0;
    if (last.row + 1 >= count) {
        if (count > 0)
            collectionView_->scrollToItemAtIndexPath({0, count - 1}, UICollectionViewScrollPosition::None, false);
        return;
    }
    const Ref<UICollectionViewCell> cell = collectionView_->cellForItemAtIndexPath(last);
    if (!cell) return;
    CGPoint offset = collectionView_->contentOffset();
    offset.x += cell->frame().width();
    collectionView_->setContentOffset(offset, false);
}

void FlareboxView::pressPreviousAssetButton() {
    const std::vector<NSIndexPath> visible = collectionView_->indexPathsForVisibleItems();
    if (visible.empty()) return;
    const Ref<UICollectionViewCell> cell =
        collectionView_->cellForItemAtIndexPath(*std::min_element(visible.begin(), visible.end()));
    if (!cell) return;
    CGPoint offset = collectionView_->contentOffset();
    offset.x = std::max(0.0, offset.x - cell->frame().width());
    collectionView_->setContentOffset(offset, false);
}

bool FlareboxView::isCurrentAsset(const FXAssetInfo& asset) const {
    if (&asset == currentAsset_.get()) return true;
    return currentAsset_ && asset._id() && asset._id() == currentAsset_->_id();
}

void FlareboxView::reloadCellVisibles() {
    for (const NSIndexPath& path : collectionView_->indexPathsForVisibleItems()) {
        if (!assestsList_ || path.row >= assestsList_->size()) continue;
        const Ref<UICollectionViewCell> cell = collectionView_->cellForItemAtIndexPath(path);
        if (auto* assetCell = objectCast<AssetCollectionViewCell>(cell.get()))
            assetCell->focusCell(isCurrentAsset(*(*assestsList_)[path.row]));
    }
}

std::size_t FlareboxView::collectionViewNumberOfItemsInSection(UICollectionView&, std::size_t) {
    return assestsList_ ? assestsList_->size() : 0;
}

CGSize FlareboxView::collectionViewLayoutSizeForItemAtIndexPath(UICollectionView& view, const NSIndexPath&) {
    const double side = std::min(view.frame().width(), view.frame().height()) - 10 * getViewSize().height / 420;
    return {side, side};
}

Ref<UICollectionViewCell> FlareboxView::collectionViewCellForItemAtIndexPath(UICollectionView& view,
                                                                             const NSIndexPath& path) {
    if (!assestsList_ || path.row >= assestsList_->size()) return nullptr;
    Ref<UICollectionViewCell> cell = view.dequeueReusableCell(cellIdentifier, path);
    const Ref<FXAssetInfo>& asset = (*assestsList_)[path.row];
    if (auto* assetCell = objectCast<AssetCollectionViewCell>(cell.get()))
        assetCell->loadCellData(asset, isCurrentAsset(*asset));
    return cell;
}

void FlareboxView::collectionViewDidSelectItemAtIndexPath(UICollectionView&, const NSIndexPath& path) {
    // A finger may have lain on a cell while the list under it changed.
    if (!assestsList_ || path.row >= assestsList_->size()) return;
    selectAsset((*assestsList_)[path.row]);
    reloadCellVisibles();
}

void FlareboxView::collectionViewWillDisplayKeptCell(UICollectionView&, UICollectionViewCell& cell,
                                                     const NSIndexPath& path) {
    auto* assetCell = objectCast<AssetCollectionViewCell>(&cell);
    if (assetCell && assestsList_ && path.row < assestsList_->size())
        assetCell->focusCell(isCurrentAsset(*(*assestsList_)[path.row]));
}

void FlareboxView::scrollViewDidScroll(UIScrollView&) {
    showListEnds();
}

void FlareboxView::showListEnds() {
    const CGFloat start = collectionView_->contentOffset().x;
    const CGFloat end = start + collectionView_->bounds().width();
    leftAssetListShadowView_->setHidden(start < 1);
    rightAssetListShadowView_->setHidden(end > collectionView_->contentSize().width - 1);
}

void FlareboxView::scrollViewDidEndDragging(UIScrollView&, bool willDecelerate) {
    if (!willDecelerate) reloadCellVisibles();
}

void FlareboxView::scrollViewWillBeginDecelerating(UIScrollView&) {
    reloadCellVisibles();
}

}  // namespace flarebox
