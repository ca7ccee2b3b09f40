#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Views/AssetCollectionViewCell.h>
#include <Flarebox/Views/FlareboxView.h>
#include <Flarebox/Views/Shades.h>
#include <Flarebox/Views/Translation.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSNotificationCenter.h>
#include <SceneKit/SCNNode.h>
#include <UIKit/FontOpening.h>
#include <UIKit/UIActivityIndicatorView.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIFocusSystem.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>
#include <UIKit/UINib.h>
#include <UIKit/UIScreen.h>
#include <UIKit/UISwipeGestureRecognizer.h>
#include <UIKit/UIWindow.h>

#include <utility>
#include <vector>

namespace flarebox {
namespace {

constexpr double slideDuration = 0.3F;
constexpr double attachDelay = 0.1;

}  // namespace

const ClassInfo& FlareboxView::staticClass() {
    using enum Outlet::Source;
    static const Outlet outlets[] = {
        outlet<&FlareboxView::constraintLeadingContentView_>("constraintLeadingContentView", Code),
        outlet<&FlareboxView::emptyView_>("emptyView"),
        outlet<&FlareboxView::assetView_>("assetView"),
        outlet<&FlareboxView::contentView_>("contentView"),
        outlet<&FlareboxView::assetContentView_>("assetContentView"),
        outlet<&FlareboxView::collectionView_>("collectionView"),
        outlet<&FlareboxView::lbAssetTitle_>("lbAssetTitle"),
        outlet<&FlareboxView::lbAssetDesc_>("lbAssetDesc"),
        outlet<&FlareboxView::btnClose_>("btnClose"),
        outlet<&FlareboxView::btnOpen_>("btnOpen"),
        outlet<&FlareboxView::imgAssetContent_>("imgAssetContent"),
        outlet<&FlareboxView::btn2d_>("btn2d"),
        outlet<&FlareboxView::btn3d_>("btn3d"),
        outlet<&FlareboxView::btnVideo_>("btnVideo"),
        outlet<&FlareboxView::btnCoupon_>("btnCoupon"),
        outlet<&FlareboxView::btnBuy_>("btnBuy"),
        outlet<&FlareboxView::btnPrevious_>("btnPrevious"),
        outlet<&FlareboxView::btnNext_>("btnNext"),
        outlet<&FlareboxView::leftAssetListShadowView_>("leftAssetListShadowView"),
        outlet<&FlareboxView::rightAssetListShadowView_>("rightAssetListShadowView"),
        outlet<&FlareboxView::loadingView_>("loadingView"),
        outlet<&FlareboxView::indicator_>("indicator"),
        outlet<&FlareboxView::videoContainer_>("videoContainer"),
        outlet<&FlareboxView::scnContainer_>("scnContainer"),
        outlet<&FlareboxView::lbEmptyAssets_>("lbEmptyAssets"),
        outlet<&FlareboxView::lbEmptyAssetsDetail_>("lbEmptyAssetsDetail"),
        outlet<&FlareboxView::lbErrorMessage_>("lbErrorMessage"),
        outlet<&FlareboxView::lbFlareboxLogo_>("lbFlareboxLogo"),
        outlet<&FlareboxView::closeButtonTopContraint_>("closeButtonTopContraint"),
        outlet<&FlareboxView::assetContainerBottom_>("assetContainerBottom"),
        outlet<&FlareboxView::logoTopContraint_>("logoTopContraint"),
        outlet<&FlareboxView::assetLogoPadding_>("assetLogoPadding"),
        outlet<&FlareboxView::preventerMenuWidth_>("preventerMenuWidth"),
        outlet<&FlareboxView::contentLeading_>("contentLeading", Code),
        outlet<&FlareboxView::preventerMenuView_>("preventerMenuView"),
        outlet<&FlareboxView::panelShadow_>("panelShadow"),
        outlet<&FlareboxView::imgLogo_>("imgLogo", Code),
        outlet<&FlareboxView::openButtonHeightConstraint_>("openButtonHeightConstraint", Code),
        outlet<&FlareboxView::couponView_>("couponView", Code),
        outlet<&FlareboxView::scnContent_>("scnContent", Code),
        outlet<&FlareboxView::videoView_>("videoView", Code),
        outlet<&FlareboxView::widthFixedConstraint_>("widthFixedConstraint", Code),
        outlet<&FlareboxView::heightFixedConstraint_>("heightFixedConstraint", Code),
        outlet<&FlareboxView::openButtonWidthContraint_>("openButtonWidthContraint", Code),
    };
    static const Action actions[] = {
        action<&FlareboxView::open>("open"),
        action<&FlareboxView::close>("close"),
        action<&FlareboxView::pressOpenButton>("pressOpenButton"),
        action<&FlareboxView::pressCloseButton>("pressCloseButton"),
        action<&FlareboxView::press2DMode>("press2DMode"),
        action<&FlareboxView::press3DMode>("press3DMode"),
        action<&FlareboxView::pressVideoMode>("pressVideoMode"),
        action<&FlareboxView::pressCouponButton>("pressCouponButton"),
        action<&FlareboxView::pressBuyButton>("pressBuyButton"),
        action<&FlareboxView::pressNextAssetButton>("pressNextAssetButton"),
        action<&FlareboxView::pressPreviousAssetButton>("pressPreviousAssetButton"),
        action<&FlareboxView::deviceOrientationDidChange>("deviceOrientationDidChange"),
        action<&FlareboxView::orientationChangedMethod>("orientationChangedMethod"),
        action<&FlareboxView::relayoutLayers>("relayoutLayers"),
    };
    static const ClassInfo info("FlareboxView", &UIView::staticClass(), createObject<FlareboxView>,
                                {.actions = actions, .outlets = outlets});
    return info;
}

FlareboxView::FlareboxView() = default;

FlareboxView::~FlareboxView() {
    NSNotificationCenter::defaultCenter().removeObserver(*this);
    if (refreshTimer_) refreshTimer_->invalidate();
    // It may be full screen, in the window.
    if (scnContent_) scnContent_->removeFromSuperview();
}

Ref<FlareboxView> FlareboxView::init() {
    if (!requireMainThread("FlareboxView::init")) return nullptr;
    openFontsInBackground();
    // The classes that the layout files name have to be known before the files are read.
    FlareboxView::staticClass();
    AssetCollectionViewCell::staticClass();
    PanelShadowView::staticClass();
    ListFadeView::staticClass();
    const std::vector<Ref<NSObject>> objects =
        UINib::nibWithNibName("FlareboxView", flareboxBundle())->instantiateWithOwner(nullptr);
    return Ref<FlareboxView>(objects.empty() ? nullptr : objectCast<FlareboxView>(objects.front().get()));
}

void FlareboxView::awakeFromNib() {
    UIView::awakeFromNib();
    translateTexts(*this);
    isHasBeenOpened_ = false;
    ownTitle_ = lbFlareboxLogo_->text();
    showLoadingView(false);
    setupView();
    loadData();
}

void FlareboxView::addCloseGestureAction() {
    const Ref<UISwipeGestureRecognizer> swipe = UISwipeGestureRecognizer::initWithTarget(*this, "close");
    swipe->setDirection(UISwipeGestureRecognizerDirectionLeft);
    addGestureRecognizer(swipe);
}

void FlareboxView::observeValueForKeyPath(std::string_view, NSObject&, const NSKeyValueChange&, void*) {
    // The configuration's switch is kept for hosts that ask for it; the button obeys showFlareboxButton alone.
}

void FlareboxView::showAtWindow() {
    if (!requireMainThread("FlareboxView::showAtWindow")) return;
    dispatch_after_main(attachDelay, [self = Ref<FlareboxView>(this)] {
        UIApplicationDelegate* delegate = UIApplication::sharedApplication().delegate();
        UIWindow* window = delegate ? delegate->window() : nullptr;
        if (!window) return;
        const std::vector<Ref<UIView>> views(window->subviews().begin(), window->subviews().end());
        for (const Ref<UIView>& view : views) {
            if (auto* tab = objectCast<FlareboxView>(view.get())) tab->removeFromSuperview();
        }
        self->showAtView(*window);
    });
}

void FlareboxView::showAtView(UIView& parent) {
    if (!requireMainThread("FlareboxView::showAtView")) return;
    parent.addSubview(*this);
    // A view inside the tab cannot hold it.
    if (superview() != &parent) return;
    // The host may have changed the screen since the tab was made.
    layoutView();
    loadLayoutConstrains();
    attachOpenButton(parent);
    sizeOpenButton();
    dispatch_async_main([self = Ref<FlareboxView>(this)] { self->toggleFlarebox(false, false); });
}

void FlareboxView::toggleFlarebox() {
    if (!requireMainThread("FlareboxView::toggleFlarebox")) return;
    toggleFlarebox(!isOpened(), true);
}

void FlareboxView::toggleFlarebox(bool open, bool animated) {
    if (!requireMainThread("FlareboxView::toggleFlarebox")) return;
    if (isOpened() && open) return;
    const Ref<NSObject> self = retained();
    const std::uint32_t toggle = ++toggles_;
    isNeedFlareboxOpenedEvent_ = open;
    if (open) {
        isHasBeenOpened_ = true;
        FlareboxManager::sharedInstance().setFlareboxOpenedDate(NSDate::date());
        handleFlareboxOpened();
    } else {
        pauseVideo();
        leaveFullScreen();
    }
    // A callback of the host may have moved the tab meanwhile.
    if (toggle != toggles_) return;
    placePanel(open, animated);
    tellWhetherOpen(open);
}

void FlareboxView::tellWhetherOpen(bool open) {
    if (std::exchange(isKnownToBeOpen_, open) == open || !delegate_) return;
    if (open)
        delegate_->flareboxViewDidOpen(*this);
    else
        delegate_->flareboxViewDidClose(*this);
}

void FlareboxView::placePanel(bool open, bool animated) {
    if (const auto leading = constraintLeadingContentView_.lock()) leading->setConstant(open ? 0.0 : -panelWidth());
    btnOpen_->setSelected(open);
    placeOpenButton(open);
    // What is out of sight has no use for the game's keys.
    if (UIWindow* window = open ? nullptr : this->window()) window->focusSystem().giveBack();
    const Ref<UIView> parent(superview());
    if (!parent || !panelShadow_) return;
    const auto place = [&] {
        parent->layoutIfNeeded();
        // A closed panel is out of sight, and so has to be what it throws onto the game.
        panelShadow_->setAlpha(open ? 1 : 0);
    };
    if (animated)
        UIView::animateWithDuration(slideDuration, place);
    else
        place();
}

bool FlareboxView::isOpened() const {
    const auto leading = constraintLeadingContentView_.lock();
    return !leading || leading->constant() == 0.0;
}

void FlareboxView::handleFlareboxOpened() {
    const bool hasAssets = assestsList_ && !assestsList_->empty();
    if (hasAssets && !currentAsset_) {
        selectAsset(assestsList_->front());
        collectionView_->reloadData();
    } else if (!hasAssets) {
        loadData();
    }
    // Owed once for each opening, and only to an asset that is there to be looked at.
    if (currentAsset_ && std::exchange(isNeedFlareboxOpenedEvent_, false))
        sendEngagementEvent(EngagementActionFlarebox);
}

void FlareboxView::showFlareboxButton(bool show) {
    if (!requireMainThread("FlareboxView::showFlareboxButton")) return;
    // First, as closing may take a player away, which brings the button back.
    if (!show) close();
    btnOpen_->setHidden(!show);
}

bool FlareboxView::isFlareboxButtonVisible() const {
    return !btnOpen_->isHidden();
}

void FlareboxView::setFlareboxButtonAlpha(double alpha) {
    if (!requireMainThread("FlareboxView::setFlareboxButtonAlpha")) return;
    btnOpen_->setAlpha(alpha);
}

void FlareboxView::didMoveToSuperview() {
    UIView::didMoveToSuperview();
    toggleFlarebox(false, false);
}

void FlareboxView::didMoveToWindow() {
    UIView::didMoveToWindow();
    if (window()) return;
    // What is full screen lies in the window itself and would stay behind.
    pauseVideo();
    leaveFullScreen();
}

void FlareboxView::removeFromSuperview() {
    if (!requireMainThread("FlareboxView::removeFromSuperview")) return;
    // Keys and controllers that it had are the game's again.
    if (UIWindow* window = this->window()) window->focusSystem().giveBack();
    if (btnOpen_) btnOpen_->removeFromSuperview();
    UIView::removeFromSuperview();
}

}  // namespace flarebox
