#pragma once

#include <Foundation/Export.h>
#include <UIKit/CADisplayLink.h>
#include <UIKit/UIView.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace flarebox {

class UIWindow;

/// Draws what a developer wants to see over a window: the borders of all views, those with a problem of their layout in
/// another colour together with a list of the problems, and the name of the view under the pointer. Takes no input, and
/// costs time and memory for a picture of the whole window. Main thread.
class FLAREBOX_EXPORT ViewInspector : public UIView {
    FLAREBOX_CLASS(ViewInspector)
public:
    ViewInspector();
    ~ViewInspector() override;

    /// One fault of a view's layout.
    struct Problem {
        Ref<UIView> view;  ///< never null
        /// Names the view, and says what is wrong: "lbTitle: …".
        std::string text;
    };
    /// What is wrong with the layout of the view and of those below it, hidden ones left out: constraints that
    /// contradict others, places and sizes that the constraints leave open, and views beyond their superview, where
    /// they are cut off or cannot be touched.
    static std::vector<Problem> problemsIn(const UIView& root);
    /// Identifier or class, and class.
    static std::string nameOf(const UIView& view);

    /// Covers the window, on top of whatever is added to it, until removed from there.
    void showInWindow(UIWindow& window);
    /// Where the mouse is, or where a finger touched last; nothing when it has left.
    void setPointer(std::optional<CGPoint> point) { pointer_ = point; }

    void removeFromSuperview() override;                           ///< ends it
    void drawRect(Canvas& canvas, const CGRect& bounds) override;  ///< the borders
    bool drawsContent() const override { return true; }            ///< always

private:
    struct Box {
        CGRect rect;
        bool hasProblem = false;
        friend bool operator==(const Box&, const Box&) = default;
    };
    /// All that is drawn.
    struct Picture {
        std::vector<Box> boxes;
        std::vector<std::string> problems;
        std::optional<CGRect> pointed;
        std::string pointedName;
        friend bool operator==(const Picture&, const Picture&) = default;
    };
    void follow();
    Picture look() const;
    void addBoxes(const UIView& view, const std::vector<Problem>& problems, std::vector<Box>& boxes) const;
    const UIView* viewAt(const UIView& root, CGPoint point) const;

    std::unique_ptr<CADisplayLink> link_;
    std::optional<CGPoint> pointer_;
    Picture picture_;
};

}  // namespace flarebox
