#include <Flarebox/Core/CompanionApp.h>
#include <Flarebox/Views/CouponView.h>
#include <Flarebox/Views/FlareboxView.h>
#include <Flarebox/Views/UIView+extends.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIFocusSystem.h>
#include <UIKit/UIWindow.h>

#include <string>

namespace flarebox {
namespace {

/// Where the companion application is installed from.
constexpr const char* storeLinkPrefix = "https://store.kestrin.example";

/// The application's, or null.
UIWindow* mainWindow() {
    UIApplicationDelegate* delegate = UIApplication::sharedApplication().delegate();
    return delegate ? delegate->window() : nullptr;
}

}  // namespace

NSString FlareboxView::appSchemaLinkProd() {
    return appSchemaDeeplinkProd;
}
NSString FlareboxView::appSchemaLinkDev() {
    return appSchemaDeeplinkDev;
}
NSString FlareboxView::appStoreLink() {
    return storeLinkPrefix + ("/app/id" + appStoreID.string());
}

void FlareboxView::openLink(const NSURL& url) {
    UIApplication& application = UIApplication::sharedApplication();
    if (!application.isAllowed(url)) return;
    if (!delegate_ || delegate_->flareboxViewShouldOpenLink(*this, url)) application.openURL(url);
}

void FlareboxView::openApplication(const NSString& link) {
    UIApplication& application = UIApplication::sharedApplication();
    const NSURL url = NSURL::URLWithString(link);
    if (url) application.allowScheme(url.scheme());
    openLink(application.canOpenURL(url) ? url : NSURL::URLWithString(appStoreLink()));
}

void FlareboxView::openKestrinProd() {
    openApplication(appSchemaLinkProd());
}
void FlareboxView::openKestrinDev() {
    openApplication(appSchemaLinkDev());
}

void FlareboxView::pressCouponButton() {
    pauseVideo();
    if (!currentAsset_) return;
    if (!couponView_) {
        couponView_ = CouponView::createCouponView();
        if (!couponView_) return;
        couponView_->setDelegate(this);
        addToParent(*couponView_, *assetView_);
    }
    couponView_->setHidden(false);
    assetView_->bringSubviewToFront(*couponView_);
    couponView_->saveCoupon(currentAsset_);
    sendEngagementEvent(EngagementActionCoupon);
}

void FlareboxView::closeCouponView(CouponView&) {
    if (!couponView_) return;
    couponView_->setHidden(true);
    assetView_->sendSubviewToBack(*couponView_);
    if (UIWindow* window = this->window()) window->focusSystem().requestFocus(*btnCoupon_);
}

void FlareboxView::couponViewDidSave(CouponView& view) {
    if (delegate_) delegate_->flareboxViewDidSaveCoupon(*this, view.asset());
}

void FlareboxView::openKestrinApp(CouponView& view) {
    closeCouponView(view);
    openKestrinProd();
}

void FlareboxView::pressBuyButton() {
    pauseVideo();
    if (!currentAsset_) return;
    openLink(NSURL::URLWithString(currentAsset_->whereToBuy()));
}

void FlareboxView::pauseVideo() {
    if (videoView_ && videoView_->isVideoPlaying()) videoView_->pauseVideo();
}

void FlareboxView::startPlayingVideo() {
    btnOpen_->setHidden(true);
    if (UIWindow* window = mainWindow()) window->sendSubviewToBack(*this);
}

void FlareboxView::stopVideo() {
    btnOpen_->setHidden(false);
    if (UIWindow* window = mainWindow()) window->bringSubviewToFront(*this);
    // The panel's shadow falls beside it, not on its own button.
    if (UIView* parent = btnOpen_->superview()) parent->bringSubviewToFront(*btnOpen_);
}

}  // namespace flarebox
