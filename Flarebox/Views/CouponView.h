#pragma once

#include <Flarebox/Models/FXAssetInfo.h>
#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <UIKit/UIView.h>
#include <UIKit/WeakDelegate.h>

namespace flarebox {

class CheckMarkView;
class CouponView;
class UIActivityIndicatorView;
class UIButton;
class UIImageView;
class UILabel;

/// What the coupon overlay leaves to the one who shows it.
class FLAREBOX_EXPORT CouponViewDelegate {
public:
    virtual ~CouponViewDelegate() = default;
    virtual void openKestrinApp(CouponView&) {}
    virtual void closeCouponView(CouponView&) {}
    virtual void couponViewDidSave(CouponView&) {}
};

/// The overlay that saves a coupon to the player's account and tells how that went. While it saves it cannot be left.
/// Main thread.
class FLAREBOX_EXPORT CouponView : public UIView {
    FLAREBOX_CLASS(CouponView)
public:
    CouponView();
    ~CouponView() override;
    /// Made from its layout file; null, with a message in the log, when the kit's resources are missing.
    static Ref<CouponView> createCouponView();

    /// Not owned; may be null. One that is no NSObject takes itself back before it goes.
    void setDelegate(CouponViewDelegate* delegate) { delegate_ = delegate; }
    CouponViewDelegate* delegate() const { return delegate_.get(); }
    /// The asset whose coupon was asked for last; null before.
    const Ref<FXAssetInfo>& asset() const { return asset_; }

    /// What Escape does: closes an overlay that can be left.
    void goBack();
    /// Saves at once, in the current game session. Null does nothing.
    void saveCoupon(const Ref<FXAssetInfo>& asset);

    void awakeFromNib() override;
    /// Its close button, once it can be left.
    UIView* preferredFocusedView() override;
    void layoutSubviews() override;

private:
    enum class State { Saving, Saved, Failed };
    void show(State state, const NSString& message);
    void saved(const Ref<NSError>& error);
    void pressKestrinApp();
    void pressCloseButton();

    Weak<UILabel> lbMessage_;
    Weak<UIButton> btnKestrinApp_, btnClose_;
    Weak<UIActivityIndicatorView> indicator_;
    Weak<CheckMarkView> checkMark_;
    Weak<UIImageView> imgFailed_;
    Ref<FXAssetInfo> asset_;
    WeakDelegate<CouponViewDelegate> delegate_;
};

}  // namespace flarebox
