#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Core/FlareboxText.h>
#include <Flarebox/Core/Logging.h>
#include <Flarebox/Views/SCNContentView.h>
#include <Flarebox/Views/Translation.h>
#include <SceneKit/SCNView.h>
#include <UIKit/UIActivityIndicatorView.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>
#include <UIKit/UINib.h>
#include <UIKit/UIPalette.h>

#include <vector>

namespace flarebox {
namespace {

/// The content area's height on the design grid, in points.
constexpr double designHeight = 158;
/// Of the full-screen button from the edges.
constexpr CGFloat buttonMargin = 6;
constexpr const char* noModel = "There is no 3D model of this product";

}  // namespace

const ClassInfo& SCNContentView::staticClass() {
    using enum Outlet::Source;
    static const Outlet outlets[] = {
        outlet<&SCNContentView::scnView_>("scnView"),
        outlet<&SCNContentView::btn3DMode_>("btn3DMode"),
        outlet<&SCNContentView::unavailableView_>("unavailableView"),
        outlet<&SCNContentView::imgSign_>("imgSign"),
        outlet<&SCNContentView::lbMessage_>("lbMessage"),
        outlet<&SCNContentView::indicator_>("indicator"),
        outlet<&SCNContentView::btn3DModeWidthContraint_>("btn3DModeWidthContraint"),
        outlet<&SCNContentView::btn3DModeTrailing_>("btn3DModeTrailing", Code),
        outlet<&SCNContentView::btn3DModeBottom_>("btn3DModeBottom", Code),
    };
    static const Action actions[] = {action<&SCNContentView::press3DFullButton>("press3DFullButton")};
    static const ClassInfo info("SCNContentView", &UIView::staticClass(), createObject<SCNContentView>,
                                {.actions = actions, .outlets = outlets});
    return info;
}

SCNContentView::SCNContentView() = default;
SCNContentView::~SCNContentView() = default;

Ref<SCNContentView> SCNContentView::createSCNContentView() {
    // The classes that the layout file names have to be known before it is read.
    SCNContentView::staticClass();
    SCNView::staticClass();
    const std::vector<Ref<NSObject>> objects =
        UINib::nibWithNibName("SCNContentView", flareboxBundle())->instantiateWithOwner(nullptr);
    return Ref<SCNContentView>(objects.empty() ? nullptr : objectCast<SCNContentView>(objects.front().get()));
}

void SCNContentView::awakeFromNib() {
    UIView::awakeFromNib();
    is3DViewFullScreen_ = false;
    setTranslatesAutoresizingMaskIntoConstraints(false);
    translateTexts(*this);
    scnView_->setFailureHandler([self = Weak<SCNContentView>(this)](const Ref<NSError>& error) {
        if (const auto view = self.lock()) view->sceneFailed(error);
    });
    showState();
}

void SCNContentView::layoutSubviews() {
    UIView::layoutSubviews();
    lbMessage_->setFont(
        lbMessage_->font().fontWithSize(12 * std::min(bounds().height(), bounds().width()) / designHeight));
    const UIEdgeInsets safe = safeAreaInsets();
    if (btn3DModeTrailing_) btn3DModeTrailing_->setConstant(-buttonMargin - safe.right);
    if (btn3DModeBottom_) btn3DModeBottom_->setConstant(-buttonMargin - safe.bottom);
}

bool SCNContentView::pressBegan(UIPressType type) {
    if (type != UIPressType::Menu || !is3DViewFullScreen_) return UIView::pressBegan(type);
    press3DFullButton();
    return true;
}

void SCNContentView::paletteDidChange() {
    UIView::paletteDidChange();
    roundCorners();
}

void SCNContentView::roundCorners() {
    // Like those of the content area, but not over the whole window.
    const CGFloat radius = is3DViewFullScreen_ ? 0 : UIPalette::current().radius(UIPalette::Corner::Picture);
    for (UIView* view : {static_cast<UIView*>(this), static_cast<UIView*>(scnView_.get()), unavailableView_.get()})
        view->layer().setCornerRadius(radius);
}

void SCNContentView::sceneFailed(const Ref<NSError>& error) {
    errorLog("%@", error->localizedDescription());
    showState();
}

void SCNContentView::showContent(Content content) {
    content_ = content;
    showState();
}

void SCNContentView::showState() {
    const std::string reason = SCNView::unavailableReason();
    const bool hasModel = reason.empty() && content_ == Content::Model && scnView_->hasModel();
    const bool isLoading = reason.empty() && content_ == Content::Loading;
    unavailableView_->setHidden(hasModel);
    scnView_->setHidden(!hasModel);
    imgSign_->setHidden(isLoading);
    lbMessage_->setHidden(isLoading);
    if (shownReason_ != reason) {
        shownReason_ = reason;
        lbMessage_->setText(flareboxText(reason.empty() ? noModel : reason));
    }
    if (isLoading)
        indicator_->startAnimating();
    else
        indicator_->stopAnimating();
    // Leaving full screen has to stay possible.
    btn3DMode_->setHidden(!hasModel && !is3DViewFullScreen_);
}

void SCNContentView::press3DFullButton() {
    is3DViewFullScreen_ = !is3DViewFullScreen_;
    btn3DMode_->setSelected(is3DViewFullScreen_);
    roundCorners();
    SCNContentViewDelegate* delegate = delegate_.get();
    if (!delegate) return;
    if (is3DViewFullScreen_)
        delegate->showFullScreen(*this);
    else
        delegate->exitFullScreenMode(*this);
}

}  // namespace flarebox
