#pragma once

#include <UIKit/UIView.h>
#include <UIKit/UIViewController.h>

#include <span>
#include <string_view>
#include <vector>

namespace flarebox {

/// The root of a view tree: transparent, as large as the screen, lying over the game's picture. It takes no touch
/// itself, and neither do sub-views that show nothing: those belong to the game. Main thread.
class UIWindow : public UIView {
    FLAREBOX_CLASS(UIWindow)
public:
    UIWindow();
    ~UIWindow() override;

    const Ref<UIViewController>& rootViewController() const { return rootViewController_; }
    /// Its view fills the window, below everything else.
    void setRootViewController(const Ref<UIViewController>& controller);

    /// The controllers presented over the window, the topmost last.
    std::span<const Ref<UIViewController>> presentedViewControllers() const { return presented_; }
    /// Whether a presented controller took the key, or kept it from the game.
    bool keyDown(std::string_view name);
    /// Brings what is presented above whatever was added to the window since. The host adapter calls it once a frame.
    void raisePresented();

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
};

}  // namespace flarebox
