#pragma once

#include <Flarebox/Models/FXAssetInfo.h>
#include <Foundation/Values.h>
#include <UIKit/UICollectionViewCell.h>

namespace flarebox {

class UIActivityIndicatorView;
class UIImageView;

/// A cell of the asset list: the asset's icon in a circle, a loading indicator over it, a thin ring around the current
/// asset. Main thread.
class AssetCollectionViewCell : public UICollectionViewCell {
    FLAREBOX_CLASS(AssetCollectionViewCell)
public:
    /// Shows an asset, starting to load its icon. Late icons of the asset shown before are dropped.
    void loadCellData(const Ref<FXAssetInfo>& asset, bool selected);
    /// Shows or hides the ring.
    void focusCell(bool focused);
    void showLoading();
    void hideLoading();

    /// Null once the asset is gone.
    Ref<FXAssetInfo> asset() const { return asset_.lock(); }
    UIImageView* imgAsset() const { return imgAsset_.get(); }
    UIActivityIndicatorView* indicator() const { return indicator_.get(); }

    void awakeFromNib() override;
    /// Round, as the picture.
    CGFloat focusRingRadius() const override { return bounds().width() / 2; }

private:
    void loadIcon(const NSURL& address);

    Weak<UIImageView> imgAsset_;
    Weak<UIActivityIndicatorView> indicator_;
    Weak<FXAssetInfo> asset_;
    /// The icon wanted now; answers for any other address come too late.
    NSURL iconAddress_;
};

}  // namespace flarebox
