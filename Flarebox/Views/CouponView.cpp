#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Core/FlareboxText.h>
#include <Flarebox/Core/Logging.h>
#include <Flarebox/Managers/FlareboxManager.h>
#include <Flarebox/Views/CheckMarkView.h>
#include <Flarebox/Views/CouponView.h>
#include <Flarebox/Views/Translation.h>
#include <UIKit/UIActivityIndicatorView.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIFocusSystem.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>
#include <UIKit/UINib.h>
#include <UIKit/UIPalette.h>
#include <UIKit/UIWindow.h>

#include <vector>

namespace flarebox {
namespace {

constexpr const char* savingMessage = "Saving coupon...";
constexpr const char* savedMessage = "Coupon saved to My coupons in the Kestrin App";
/// The overlay's height on the design grid, in points.
constexpr double designHeight = 373;

// The service refuses a coupon that the player has already, which is no failure to the player.
bool isFailure(const Ref<NSError>& error) {
    return error && error->code() != NSURLErrorBadServerResponse;
}

}  // namespace

const ClassInfo& CouponView::staticClass() {
    static const Outlet outlets[] = {
        outlet<&CouponView::lbMessage_>("lbMessage"), outlet<&CouponView::btnKestrinApp_>("btnKestrinApp"),
        outlet<&CouponView::btnClose_>("btnClose"),   outlet<&CouponView::indicator_>("indicator"),
        outlet<&CouponView::checkMark_>("checkMark"), outlet<&CouponView::imgFailed_>("imgFailed"),
    };
    static const Action actions[] = {
        action<&CouponView::pressKestrinApp>("pressKestrinApp"),
        action<&CouponView::pressCloseButton>("pressCloseButton"),
    };
    static const ClassInfo info("CouponView", &UIView::staticClass(), createObject<CouponView>,
                                {.actions = actions, .outlets = outlets});
    return info;
}

CouponView::CouponView() = default;
CouponView::~CouponView() = default;

Ref<CouponView> CouponView::createCouponView() {
    // The classes that the layout file names have to be known before it is read.
    CouponView::staticClass();
    CheckMarkView::staticClass();
    const std::vector<Ref<NSObject>> objects =
        UINib::nibWithNibName("CouponView", flareboxBundle())->instantiateWithOwner(nullptr);
    return Ref<CouponView>(objects.empty() ? nullptr : objectCast<CouponView>(objects.front().get()));
}

void CouponView::awakeFromNib() {
    UIView::awakeFromNib();
    setTranslatesAutoresizingMaskIntoConstraints(false);
    translateTexts(*this);
    setAccessibilityContainerType(UIAccessibilityContainerType::SemanticGroup);
    for (const auto& button : {btnClose_, btnKestrinApp_})
        button->layer().setBorderColor(UIPalette::current().color(UIPalette::Shade::ButtonText));
}

void CouponView::layoutSubviews() {
    UIView::layoutSubviews();
    lbMessage_->setFont(lbMessage_->font().fontWithSize(16 * bounds().height() / designHeight));
}

void CouponView::saveCoupon(const Ref<FXAssetInfo>& asset) {
    if (!asset) return;
    asset_ = asset;
    show(State::Saving, flareboxText(savingMessage));
    FlareboxManager& manager = FlareboxManager::sharedInstance();
    const Ref<FXCoupon> coupon = FXCoupon::init();
    if (manager.sessionInfo()) coupon->setSession(manager.sessionInfo()->uid());
    coupon->setAsset(asset->_id());
    infoLog("Saving coupon");
    manager.saveCoupon(coupon, [self = Ref<CouponView>(this)](const Ref<FXCoupon>&, const Ref<NSError>& error) {
        self->saved(error);
    });
}

void CouponView::saved(const Ref<NSError>& error) {
    if (isFailure(error)) {
        show(State::Failed, error->localizedDescription());
        errorLog("%@", error->localizedDescription());
    } else {
        infoLog("Coupon saved");
        show(State::Saved, flareboxText(savedMessage));
        if (delegate_) delegate_->couponViewDidSave(*this);
    }
}

void CouponView::show(State state, const NSString& message) {
    const bool isSaving = state == State::Saving;
    lbMessage_->setText(message);
    btnClose_->setHidden(isSaving);
    btnKestrinApp_->setHidden(isSaving);
    if (isSaving)
        indicator_->startAnimating();
    else
        indicator_->stopAnimating();
    checkMark_->setHidden(state != State::Saved);
    if (state == State::Saved) checkMark_->draw();
    imgFailed_->setHidden(state != State::Failed);
    UIWindow* const window = isSaving ? nullptr : this->window();
    if (window) window->focusSystem().requestFocus(*btnClose_);
}

UIView* CouponView::preferredFocusedView() {
    return btnClose_->isHidden() ? nullptr : btnClose_.get();
}

void CouponView::goBack() {
    if (!btnClose_->isHidden()) pressCloseButton();
}

void CouponView::pressKestrinApp() {
    if (delegate_) delegate_->openKestrinApp(*this);
}

void CouponView::pressCloseButton() {
    if (delegate_) delegate_->closeCouponView(*this);
}

}  // namespace flarebox
