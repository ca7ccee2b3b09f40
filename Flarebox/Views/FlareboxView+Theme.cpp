#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Core/FlareboxText.h>
#include <Flarebox/Views/FlareboxView.h>
#include <Flarebox/Views/UIButton+extends.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>

#include <algorithm>

namespace flarebox {
namespace {

// The open button, in points on the screen that the tab was drawn for.
constexpr CGFloat openButtonDesignHeight = 84, openButtonMargin = 12, longestOpenButton = 320;

}  // namespace

void FlareboxView::paletteDidChange() {
    UIView::paletteDidChange();
    showTheme();
    layoutView();
    placeOpenButton(isOpened());
}

void FlareboxView::showTheme() {
    const Ref<Theme> theme = FlareboxConfig::defaultConfig().theme();
    enable(*btnCoupon_, UIPalette::Shade::ActionText);
    btnBuy_->isEnabled() ? enable(*btnBuy_) : disable(*btnBuy_);
    lbFlareboxLogo_->setText(theme->titleText() ? flareboxText(theme->titleText().text()) : ownTitle_);
    if (imgLogo_) {
        imgLogo_->setIcon(theme->logo().icon);
        imgLogo_->setImage(theme->logo().picture);
    }
    btnOpen_->setIcon(theme->openButtonMark().icon);
    btnOpen_->setImage(theme->openButtonMark().picture);
    btnOpen_->setTitle(theme->openButtonText() ? flareboxText(theme->openButtonText().text()) : NSString());
    sizeOpenButton();
}

void FlareboxView::sizeOpenButton() {
    const CGFloat growth =
        btnOpen_->currentTitle().text().empty()
            ? 0
            : std::clamp(btnOpen_->intrinsicContentSize().height + 2 * openButtonMargin - openButtonDesignHeight, 0.0,
                         longestOpenButton - openButtonDesignHeight);
    btnOpen_->setDesignHeight(openButtonDesignHeight + growth);
    if (openButtonHeightConstraint_) openButtonHeightConstraint_->setConstant(growth * gridUnit());
}

}  // namespace flarebox
