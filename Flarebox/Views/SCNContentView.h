#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <UIKit/UIView.h>
#include <UIKit/WeakDelegate.h>

#include <cstdint>
#include <optional>
#include <string>

namespace flarebox {

class SCNContentView;
class SCNView;
class UIActivityIndicatorView;
class UIButton;
class UIImageView;
class UILabel;

/// Who moves the 3D view to full screen and back.
class FLAREBOX_EXPORT SCNContentViewDelegate {
public:
    virtual ~SCNContentViewDelegate() = default;
    virtual void showFullScreen(SCNContentView&) {}
    virtual void exitFullScreenMode(SCNContentView&) {}
};

/// The scene view with its full-screen button, and what is said where there is nothing to see in it. Main thread.
class FLAREBOX_EXPORT SCNContentView : public UIView {
    FLAREBOX_CLASS(SCNContentView)
public:
    SCNContentView();
    ~SCNContentView() override;
    /// Made from its layout file; null, with a message in the log, when the kit's resources are missing.
    static Ref<SCNContentView> createSCNContentView();

    /// Not owned; may be null. One that is no NSObject takes itself back before it goes.
    void setDelegate(SCNContentViewDelegate* delegate) { delegate_ = delegate; }
    SCNContentViewDelegate* delegate() const { return delegate_.get(); }
    SCNView& scnView() const { return *scnView_; }
    NSLayoutConstraint& btn3DModeWidthContraint() const { return *btn3DModeWidthContraint_; }
    bool is3DViewFullScreen() const { return is3DViewFullScreen_; }

    /// What there is of the current asset. Anything but a model covers the scene, which may still show another asset's.
    enum class Content : std::uint8_t { Model, Loading, None };
    void showContent(Content content);

    /// To full screen, or back: turns the flag, then asks the delegate to move the view.
    void press3DFullButton();

    void awakeFromNib() override;
    void layoutSubviews() override;
    void paletteDidChange() override;
    /// Going back leaves full screen.
    bool pressBegan(UIPressType type) override;

private:
    void sceneFailed(const Ref<NSError>& error);
    void showState();
    void roundCorners();

    Weak<SCNView> scnView_;
    Weak<UIButton> btn3DMode_;
    Weak<UIView> unavailableView_;
    Weak<UIImageView> imgSign_;
    Weak<UILabel> lbMessage_;
    Weak<UIActivityIndicatorView> indicator_;
    Weak<NSLayoutConstraint> btn3DModeWidthContraint_, btn3DModeTrailing_, btn3DModeBottom_;
    WeakDelegate<SCNContentViewDelegate> delegate_;
    Content content_ = Content::None;
    /// Why there is no model, as the message says it; absent before the first.
    std::optional<std::string> shownReason_;
    bool is3DViewFullScreen_ = false;
};

}  // namespace flarebox
