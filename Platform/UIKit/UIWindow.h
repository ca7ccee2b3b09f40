#pragma once

#include <UIKit/UIView.h>
#include <UIKit/UIViewController.h>

#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace flarebox {

class UIFocusSystem;

/// The root of a view tree: transparent, as large as the screen, lying over the game's picture. It takes no touch
/// itself, and neither do sub-views that show nothing: those belong to the game. Main thread.
class FLAREBOX_EXPORT UIWindow : public UIView {
    FLAREBOX_CLASS(UIWindow)
public:
    UIWindow();
    ~UIWindow() override;

    const Ref<UIViewController>& rootViewController() const { return rootViewController_; }
    /// Its view fills the window, below everything else.
    void setRootViewController(const Ref<UIViewController>& controller);

    /// The controllers presented over the window, the topmost last.
    std::span<const Ref<UIViewController>> presentedViewControllers() const { return presented_; }
    /// Whether the topmost presented controller used the key.
    bool keyDown(std::string_view name);
    /// Brings what is presented above whatever was added to the window since, and the overlays above all. The host
    /// adapter calls it once a frame.
    void raisePresented();
    /// What is drawn over everything else, the last one topmost, and takes no touches: a ring, an inspector. Adding one
    /// that is there, and removing one that is not, does nothing.
    void addOverlay(UIView& overlay);
    void removeOverlay(UIView& overlay);
    /// Which view keys and game controllers speak to.
    UIFocusSystem& focusSystem() { return *focusSystem_; }

    /// The part of the window that is fit for text and controls, in its own coordinates.
    CGRect safeArea() const;

    UIWindow* window() const override;
    void layoutSubviews() override;
    /// The deepest view under the point that takes touches, or null where the game's picture can be touched.
    UIView* hitTest(CGPoint point) override;

private:
    friend class UIViewController;
    void addPresented(const Ref<UIViewController>& controller);
    void removePresented(UIViewController& controller);

    Ref<UIViewController> rootViewController_;
    std::vector<Ref<UIViewController>> presented_;
    std::vector<Ref<UIView>> overlays_;
    std::unique_ptr<UIFocusSystem> focusSystem_;
};

}  // namespace flarebox
