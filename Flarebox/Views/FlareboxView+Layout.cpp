#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Views/FlareboxView.h>
#include <Flarebox/Views/UIButton+extends.h>
#include <Flarebox/Views/UIView+extends.h>
#include <Foundation/NSNotificationCenter.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UIFont.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>
#include <UIKit/UINib.h>
#include <UIKit/UIScreen.h>

#include <algorithm>

namespace flarebox {
namespace {

// The panel on its design grid, in points on a screen 600 points high.
constexpr float designScreenHeight = 600, designHeight = 420, designWidth = 275;
constexpr double openButtonWidth = 36;
/// A screen side of at most this many inches counts as small: the tab then fills it.
constexpr float smallScreenInches = 4;
/// As many cells as lists usually have: going through one a second time then draws nothing.
constexpr std::size_t keptCells = 24;

bool isSettled(UIDeviceOrientation orientation) {
    using enum UIDeviceOrientation;
    return orientation != Unknown && orientation != FaceUp && orientation != FaceDown;
}

/// The screen as the host counts it.
CGSize hostScreenSize() {
    const UIScreen& screen = UIScreen::mainScreen();
    const CGSize size = screen.bounds().size;
    return {size.width * screen.interfaceScale(), size.height * screen.interfaceScale()};
}

// Single precision throughout, so that the sizes are the same as on the phones that the panel was drawn for.
CGSize designedSize() {
    const CGSize screen = hostScreenSize();
    const CGFloat scale = UIScreen::mainScreen().scale() / UIScreen::mainScreen().interfaceScale();
    const float density = 160.0F * static_cast<float>(scale);
    const auto heightInches = static_cast<float>(screen.height / density);
    const auto widthInches = static_cast<float>(screen.width / density);
    const auto unit = static_cast<float>(screen.height / designScreenHeight);
    float height = designHeight * unit;
    float width = designWidth * unit;
    const auto growToHeight = static_cast<float>(screen.height / height);
    const auto growToWidth = static_cast<float>(screen.width / width);
    float growth = 1;
    if (heightInches <= smallScreenInches && width * growToHeight < screen.width)
        growth = growToHeight;
    else if (widthInches <= smallScreenInches && height * growToWidth < screen.height)
        growth = growToWidth;
    width *= growth;
    height *= growth;
    return {width, height};
}

/// Where the middle of the safe part lies, from that of the screen.
double safeCenter() {
    const UIEdgeInsets& edges = UIScreen::mainScreen().safeAreaInsets();
    return (edges.top - edges.bottom) / 2;
}

/// What the panel shrinks by to fit into the safe part of a screen on which it is shown larger than designed.
double shareThatFits() {
    const UIScreen& screen = UIScreen::mainScreen();
    const UIEdgeInsets& edges = screen.safeAreaInsets();
    if (screen.interfaceScale() == 1 && edges == UIEdgeInsets()) return 1;
    const CGSize size = designedSize(), whole = screen.bounds().size;
    const double button = openButtonWidth * hostScreenSize().height / designScreenHeight;
    const double room = std::max(1.0, whole.width - edges.left - edges.right);
    const double height = std::max(1.0, whole.height - edges.top - edges.bottom);
    return std::min({1.0, room / (size.width + button), height / size.height});
}

}  // namespace

CGSize FlareboxView::getViewSize() {
    const CGSize size = designedSize();
    const double share = shareThatFits();
    return {size.width * share, size.height * share};
}

void FlareboxView::attachOpenButton(UIView& parent) {
    using enum NSLayoutAttribute;
    using enum NSLayoutRelation;
    parent.addSubview(*btnOpen_);
    openButtonWidthContraint_ = NSLayoutConstraint::constraintWithItem(*btnOpen_, Width, Equal, nullptr, NotAnAttribute,
                                                                       1, openButtonWidth * gridUnit());
    openButtonCenter_ =
        NSLayoutConstraint::constraintWithItem(*btnOpen_, CenterY, Equal, &parent, CenterY, 1, safeCenter());
    openButtonLeading_ = NSLayoutConstraint::constraintWithItem(*btnOpen_, Leading, Equal, this, Trailing, 1, 0);
    for (const auto& constraint : {openButtonCenter_, openButtonLeading_, openButtonWidthContraint_})
        parent.addConstraint(constraint);
}

void FlareboxView::placeOpenButton(bool open) {
    const CGFloat edge = UIScreen::mainScreen().safeAreaInsets().left;
    if (openButtonLeading_) openButtonLeading_->setConstant(open ? 0 : edge);
    // One that stands away from the edge and from the panel is round all around.
    const CornerRadii& radii = btnOpen_->layer().cornerRadii();
    const CGFloat left = !open && edge > 0 ? radii.topRight : 0;
    btnOpen_->layer().setCornerRadii({left, radii.topRight, radii.bottomRight, left});
}

double FlareboxView::gridUnit() {
    return hostScreenSize().height / designScreenHeight * shareThatFits();
}

double FlareboxView::panelWidth() {
    return getViewSize().width + UIScreen::mainScreen().safeAreaInsets().left;
}

void FlareboxView::setupView() {
    UIDevice& device = UIDevice::currentDevice();
    addCloseGestureAction();
    currentOrientation_ = static_cast<std::int64_t>(device.orientation());
    layoutView();
    setup3DView();
    setTranslatesAutoresizingMaskIntoConstraints(false);
    collectionView_->setDataSource(this);
    collectionView_->setDelegate(this);
    collectionView_->registerNib(UINib::nibWithNibName("AssetCollectionViewCell", flareboxBundle()),
                                 "AssetCollectionViewCell");
    collectionView_->setKeptCellLimit(keptCells);
    enable(*btnCoupon_, UIPalette::Shade::ActionText);
    disable(*btnBuy_);
    showTheme();
    emptyView_->setHidden(true);
    assetView_->setHidden(true);
    lbErrorMessage_->setHidden(true);
    videoView_ = VideoView::createVideoView();
    if (videoView_) {
        videoView_->setDelegate(this);
        addToParent(*videoView_, *videoContainer_);
    }
    currentAssetMode_ = AssetMode2D;
    imgAssetContent_->setAccessibilityTraits(UIAccessibilityTraits::Image);
    setAccessibilityContainerType(UIAccessibilityContainerType::SemanticGroup);
    // It lies beside the tab, not inside.
    btnOpen_->setNextResponder(this);
    device.beginGeneratingDeviceOrientationNotifications();
    NSNotificationCenter::defaultCenter().addObserver(*this, "deviceOrientationDidChange",
                                                      UIDeviceOrientationDidChangeNotification, nullptr);
    FlareboxConfig::defaultConfig().addObserver(*this, "showFlareboxButton", NSKeyValueObservingOptionNew);
}

void FlareboxView::layoutView() {
    const CGSize size = getViewSize();
    const double unit = size.height / designHeight;
    // The layout file has typefaces and weights.
    const auto scaleFont = [unit](UILabel& label, double points) {
        label.setFont(label.font().fontWithSize(points * unit));
    };

    if (contentLeading_) contentLeading_->setConstant(UIScreen::mainScreen().safeAreaInsets().left);
    preventerMenuWidth_->setConstant(35 * (size.width / designWidth));
    scaleFont(*lbEmptyAssets_, 25);
    scaleFont(*lbEmptyAssetsDetail_, 16);
    scaleFont(*lbAssetTitle_, 16);
    scaleFont(*lbAssetDesc_, 12);
    scaleFont(*lbErrorMessage_, 16);
    scaleFont(*lbFlareboxLogo_, 23);
    assetContainerBottom_->setConstant(30 * unit);
    logoTopContraint_->setConstant(10 * unit);
    scaleFont(btnCoupon_->titleLabel(), 15);
    assetLogoPadding_->setConstant(7 * unit);
    scaleFont(btnBuy_->titleLabel(), 15);

    btnCoupon_->titleLabel().setAdjustsFontSizeToFitWidth(true);
    btnBuy_->titleLabel().setAdjustsFontSizeToFitWidth(true);
    setNeedsLayout();
    layoutIfNeeded();
    collectionView_->reloadData();
    showListEnds();
}

void FlareboxView::loadLayoutConstrains() {
    using enum NSLayoutAttribute;
    using enum NSLayoutRelation;
    UIView& parent = *superview();
    const CGSize size = getViewSize();
    widthFixedConstraint_ =
        NSLayoutConstraint::constraintWithItem(*this, Width, Equal, nullptr, NotAnAttribute, 1, panelWidth());
    heightFixedConstraint_ =
        NSLayoutConstraint::constraintWithItem(*this, Height, Equal, nullptr, NotAnAttribute, 1, size.height);
    const auto leading =
        NSLayoutConstraint::constraintWithItem(*this, Leading, Equal, &parent, Leading, 1, -panelWidth());
    centerConstraint_ =
        NSLayoutConstraint::constraintWithItem(*this, CenterY, Equal, &parent, CenterY, 1, safeCenter());
    for (const auto& constraint : {heightFixedConstraint_, widthFixedConstraint_, leading, centerConstraint_})
        parent.addConstraint(constraint);
    constraintLeadingContentView_ = leading;
}

void FlareboxView::deviceOrientationDidChange() {
    const UIDeviceOrientation orientation = UIDevice::currentDevice().orientation();
    if (!isSettled(orientation) || static_cast<std::int64_t>(orientation) == currentOrientation_) return;
    NSObject::cancelPreviousPerformRequests(*this, "relayoutLayers", nullptr);
    currentOrientation_ = static_cast<std::int64_t>(orientation);
    performSelectorAfterDelay("orientationChangedMethod", nullptr, 0);
}

void FlareboxView::orientationChangedMethod() {
    layoutView();
    refreshRootNode();
    const CGSize size = getViewSize();
    if (widthFixedConstraint_) widthFixedConstraint_->setConstant(panelWidth());
    if (centerConstraint_) centerConstraint_->setConstant(safeCenter());
    if (openButtonCenter_) openButtonCenter_->setConstant(safeCenter());
    if (heightFixedConstraint_) heightFixedConstraint_->setConstant(size.height);
    if (openButtonWidthContraint_) openButtonWidthContraint_->setConstant(openButtonWidth * gridUnit());
    sizeOpenButton();
    if (const auto leading = constraintLeadingContentView_.lock())
        leading->setConstant(isOpened() ? 0.0 : -panelWidth());
    placeOpenButton(isOpened());
    setNeedsLayout();
    setNeedsDisplay();
    layoutIfNeeded();
    showListEnds();
}

void FlareboxView::safeAreaInsetsDidChange() {
    UIView::safeAreaInsetsDidChange();
    if (superview()) orientationChangedMethod();
}

}  // namespace flarebox
