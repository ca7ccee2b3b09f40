#pragma once

#include <Foundation/NSError.h>
#include <SceneKit/SCNScene.h>
#include <SceneKit/Turntable.h>
#include <UIKit/CADisplayLink.h>
#include <UIKit/UIView.h>

#include <functional>
#include <memory>
#include <vector>

namespace flarebox {

namespace detail {
class SceneCanvas;
struct SceneFrame;
struct ScenePicture;
}  // namespace detail

/// Shows a scene, drawn on another thread at most once a frame, and only while the view is on the screen and something
/// in it changes. What is shown turns slowly by itself until the user takes hold of it: a finger turns it, two fingers
/// or the wheel make it larger and smaller. Main thread only.
class SCNView : public UIView {
    FLAREBOX_CLASS(SCNView)
public:
    SCNView();
    ~SCNView() override;

    /// Null for a view that shows its background only.
    const Ref<SCNScene>& scene() const { return scene_; }
    void setScene(const Ref<SCNScene>& scene);

    /// Shows everything `factor` times as large, softly; between half and four times as large as fitted.
    void zoom(CGFloat factor);
    /// How much larger than fitted things are shown at this moment.
    CGFloat magnification() const { return turntable_.magnification(); }
    /// Turned about the vertical axis, and tilted towards the onlooker, at this moment; radians.
    CGFloat yaw() const { return turntable_.yaw(); }
    CGFloat pitch() const { return turntable_.pitch(); }

    /// Whether there is anything to be seen in the scene: a model, and not one that turned out broken.
    bool hasModel() const;

    /// How often a new picture has arrived so far.
    std::size_t pictureCount() const { return pictureCount_; }
    /// Whether the view asks for frames at all at this moment.
    bool isRendering() const { return displayLink_ != nullptr; }

    /// Why no scene can be shown on this machine or by this build, for people; empty where it can, or as long as
    /// nothing has been tried. A build that cannot says so at once, a machine that cannot when a view first draws.
    static std::string unavailableReason();
    /// Told what could not be shown, once each: a model the renderer refuses, or that this machine draws no scenes. The
    /// log unless set.
    void setFailureHandler(std::function<void(const Ref<NSError>&)> handler) { failureHandler_ = std::move(handler); }

    UIAccessibilityTraits accessibilityTraits() const override;
    /// Makes the model larger step by step, and then as it was.
    bool accessibilityActivate() override;
    /// Turns the model.
    bool accessibilityAdjust(int steps) override;
    bool canBecomeFocused() const override { return hasModel(); }
    bool stickHeld(CGPoint deflection, double seconds) override;

    bool showsPixelBuffer() const override { return true; }
    PixelBuffer pixelBuffer() override;
    void didMoveToWindow() override;
    bool scrollWheel(CGPoint point, CGFloat dx, CGFloat dy) override;

private:
    friend class SCNScene;
    class FingerRecognizer;

    void sceneDidChange();
    void refresh();
    void advance(double now);
    bool takePicture();
    void report(const std::string& failure) const;
    detail::SceneFrame makeFrame() const;
    CGSize pixelSize() const;
    bool isAnimated() const;

    void fingerDown(UITouch& touch);
    void fingerMoved(UITouch& touch);
    void fingerUp(UITouch& touch);

    Ref<SCNScene> scene_;
    std::shared_ptr<detail::SceneCanvas> canvas_;
    std::unique_ptr<detail::ScenePicture> picture_;
    std::unique_ptr<CADisplayLink> displayLink_;
    detail::Turntable turntable_;
    std::function<void(const Ref<NSError>&)> failureHandler_;
    std::vector<Ref<UITouch>> fingers_;
    /// The model in front when the turntable was last set upright.
    const void* shownModel_ = nullptr;
    double startTime_ = 0;
    std::size_t pictureCount_ = 0;
    /// The last picture differs from what would be drawn now; it has not been asked for yet.
    bool isOutOfDate_ = true, isUnseen_ = false;
    bool saidUnavailable_ = false;
};

}  // namespace flarebox
