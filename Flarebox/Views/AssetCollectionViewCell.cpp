#include <Flarebox/Core/Logging.h>
#include <Flarebox/Views/AssetCollectionViewCell.h>
#include <Flarebox/Views/Translation.h>
#include <Networking/UIImageView+AFNetworking.h>
#include <UIKit/UIActivityIndicatorView.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UIPalette.h>

namespace flarebox {

const ClassInfo& AssetCollectionViewCell::staticClass() {
    static const Outlet outlets[] = {
        outlet<&AssetCollectionViewCell::imgAsset_>("imgAsset"),
        outlet<&AssetCollectionViewCell::indicator_>("indicator"),
    };
    static const ClassInfo info("AssetCollectionViewCell", &UICollectionViewCell::staticClass(),
                                createObject<AssetCollectionViewCell>, {.outlets = outlets});
    return info;
}

void AssetCollectionViewCell::awakeFromNib() {
    UICollectionViewCell::awakeFromNib();
}

void AssetCollectionViewCell::loadCellData(const Ref<FXAssetInfo>& asset, bool selected) {
    if (!asset) return;
    asset_ = asset;
    imgAsset_->layer().setBorderColor(UIPalette::current().color(UIPalette::Shade::Ring));
    imgAsset_->layer().setCornerRadius(bounds().width() / 2);
    focusCell(selected);
    setAccessibilityLabel(spokenTitle(*asset));
    imgAsset_->setImage(nullptr);
    hideLoading();
    iconAddress_ = NSURL::URLWithString(asset->fileIcon());
    if (iconAddress_) loadIcon(iconAddress_);
}

void AssetCollectionViewCell::loadIcon(const NSURL& address) {
    showLoading();
    const Ref<AssetCollectionViewCell> self(this);
    setImageWithURLRequest(
        *imgAsset_, NSURLRequest::requestWithURL(address), nullptr,
        [self](const Ref<NSURLRequest>& request, const Ref<NSHTTPURLResponse>& response, const Ref<UIImage>& image) {
            if (!(request->URL() == self->iconAddress_)) return;
            self->hideLoading();
            // A picture that was at hand is there at once; one that was waited for fades in.
            self->imgAsset_->setImage(image, response != nullptr);
        },
        [self](const Ref<NSURLRequest>& request, const Ref<NSHTTPURLResponse>&, const Ref<NSError>& error) {
            if (!(request->URL() == self->iconAddress_)) return;
            self->hideLoading();
            warningLog("%@", error->localizedDescription());
        });
}

void AssetCollectionViewCell::focusCell(bool focused) {
    using enum UIAccessibilityTraits;
    setAccessibilityTraits(focused ? Selected : None);
    const CGFloat width = focused ? 1.0 : 0.0;
    if (imgAsset_->layer().borderWidth() == width) return;
    imgAsset_->layer().setBorderWidth(width);
    setNeedsLayout();
    layoutIfNeeded();
}

void AssetCollectionViewCell::showLoading() {
    indicator_->setHidden(false);
    indicator_->startAnimating();
}

void AssetCollectionViewCell::hideLoading() {
    indicator_->setHidden(true);
    indicator_->stopAnimating();
}

}  // namespace flarebox
