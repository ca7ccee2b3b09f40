#include <SceneKit/SCNView.h>

#include <Foundation/Clock.h>
#include <Foundation/LogSink.h>
#include <SceneKit/ModelSource.h>
#include <SceneKit/SceneRenderer.h>
#include <UIKit/UIAccessibility.h>
#include <UIKit/UIGestureRecognizer.h>
#include <UIKit/UIScreen.h>
#include <UIKit/UITouch.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace flarebox {
namespace {

using detail::SceneFrame;
using detail::SceneRenderer;

constexpr const char* errorDomain = "SCNErrorDomain";
constexpr int errorCode = 1;
/// Zooming by a wheel, for each point that it would scroll.
constexpr double zoomPerPoint = 0.004;
/// A key turns by so much, a stick by so much a second, in radians.
constexpr CGFloat anglePerStep = std::numbers::pi / 12, stickSpeed = 2.5;
/// How much a key makes things larger, and how large they are before it makes them small again.
constexpr CGFloat zoomStep = 1.5, zoomedIn = 2;
/// Sides in pixels; a larger view shows its picture stretched.
constexpr CGFloat largestSide = 2048;

const detail::ModelSource* modelOf(const SCNNode& node) {
    return node.model() && !node.model()->isBroken() ? node.model().get() : nullptr;
}

void collect(const SCNNode& node, const SCNMatrix4& above, std::vector<SceneFrame::Item>& items) {
    const SCNMatrix4 placement = above * node.transform();
    if (modelOf(node)) items.push_back({node.model(), placement});
    for (const auto& child : node.childNodes()) collect(*child, placement, items);
}

const detail::ModelSource* firstModel(const SCNNode& node) {
    if (const auto* model = modelOf(node)) return model;
    for (const auto& child : node.childNodes()) {
        if (const auto* model = firstModel(*child)) return model;
    }
    return nullptr;
}

bool hasAnimatedModel(const SCNNode& node) {
    const detail::ModelSource* model = modelOf(node);
    return (model && model->isAnimated()) ||
           std::ranges::any_of(node.childNodes(), [](const auto& child) { return hasAnimatedModel(*child); });
}

CGFloat distance(CGPoint a, CGPoint b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

/// Claims a finger as soon as it goes down: turning the model must not swipe the panel away as well.
class SCNView::FingerRecognizer : public UIGestureRecognizer {
public:
    explicit FingerRecognizer(SCNView& view) : UIGestureRecognizer(nullptr, ""), view_(view) {}

    void touchesBegan(UITouch& touch) override {
        if (state() != State::Possible) return;
        finger_ = &touch;
        recognize();
        view_.fingerDown(touch);
    }
    void touchesMoved(UITouch& touch) override {
        if (finger_ == &touch) view_.fingerMoved(touch);
    }
    void touchesEnded(UITouch& touch) override { letGo(touch); }
    void touchesCancelled(UITouch& touch) override { letGo(touch); }

private:
    /// The other recogniser is told of the end, too, when this one takes the finger.
    void letGo(UITouch& touch) {
        if (finger_ != &touch) return;
        finger_ = nullptr;
        view_.fingerUp(touch);
    }

    SCNView& view_;
    const UITouch* finger_ = nullptr;
};

const ClassInfo& SCNView::staticClass() {
    static const ClassInfo info("SCNView", &UIView::staticClass(), createObject<SCNView>);
    return info;
}

SCNView::SCNView() : canvas_(std::make_shared<detail::SceneCanvas>()) {
    // A picture of another size is shown, undistorted, until there is one of this.
    setContentMode(UIViewContentMode::ScaleAspectFit);
    // One for each of the two fingers that matter.
    addGestureRecognizer(make<FingerRecognizer>(*this));
    addGestureRecognizer(make<FingerRecognizer>(*this));
}

SCNView::~SCNView() {
    if (scene_) std::erase(scene_->views_, this);
}

std::string SCNView::unavailableReason() {
#ifdef FLAREBOX_HAS_3D
    return SceneRenderer::shared().unavailableReason();
#else
    return "This build cannot show 3D models";
#endif
}

void SCNView::setScene(const Ref<SCNScene>& scene) {
    if (scene == scene_) return;
    if (scene_) std::erase(scene_->views_, this);
    scene_ = scene;
    if (scene_) scene_->views_.push_back(this);
    sceneDidChange();
}

void SCNView::sceneDidChange() {
    const detail::ModelSource* model = scene_ ? firstModel(scene_->rootNode()) : nullptr;
    if (model && model != std::exchange(shownModel_, model)) {
        turntable_.reset(!UIAccessibilityIsReduceMotionEnabled());
        startTime_ = Clock::current().uptime();
        // Pictures of the former model, one still being drawn included, are not for this one.
        picture_.reset();
        SceneRenderer::shared().tryAgain();
        canvas_ = std::make_shared<detail::SceneCanvas>();
    }
    refresh();
}

/// The next drawing of the view, if it is in sight at all, starts what is needed for a new picture.
void SCNView::refresh() {
    isOutOfDate_ = true;
    setNeedsDisplay();
}

void SCNView::didMoveToWindow() {
    UIView::didMoveToWindow();
    displayLink_.reset();
    if (window()) refresh();
}

UIView::PixelBuffer SCNView::pixelBuffer() {
    isUnseen_ = false;
    const CGSize size = pixelSize();
    const bool isOfOtherSize = !picture_ || picture_->width != static_cast<int>(size.width) ||
                               picture_->height != static_cast<int>(size.height);
    isOutOfDate_ = isOutOfDate_ || isOfOtherSize;
    if (!displayLink_ && scene_ && unavailableReason().empty())
        displayLink_ = std::make_unique<CADisplayLink>([this](double now) { advance(now); });
    if (!picture_ || picture_->pixels.empty()) return {};
    return {picture_->width, picture_->height, picture_->width, picture_->pixels.data()};
}

void SCNView::advance(double now) {
    const Ref<SCNView> self(this);
    if (isUnseen_) {
        // Nobody has looked at the last picture: the view is hidden, covered or out of sight until it is drawn again.
        displayLink_.reset();
        return;
    }
    // Only what a finger or a key does is to move.
    if (UIAccessibilityIsReduceMotionEnabled() && fingers_.empty()) turntable_.rest();
    turntable_.advance(now);
    const bool isChanging = (turntable_.isMoving() && hasModel()) || isAnimated();
    if (takePicture()) {
        isUnseen_ = true;
        setNeedsDisplay();
    }
    if (canvas_->isBusy()) return;
    if (!scene_ || !(isOutOfDate_ || isChanging) || !unavailableReason().empty()) {
        displayLink_.reset();
        return;
    }
    isOutOfDate_ = false;
    SceneRenderer::shared().submit(canvas_, makeFrame());
}

bool SCNView::takePicture() {
    detail::SceneCanvas::Result result;
    if (!canvas_->takeResult(result)) return false;
    // What stands for the broken model, its floor for example, is to go.
    if (!result.failures.empty() && !result.picture.pixels.empty()) isOutOfDate_ = true;
    for (const std::string& failure : result.failures) report(failure);
    if (result.picture.pixels.empty()) {
        if (result.failures.empty() && !std::exchange(saidUnavailable_, true)) report(unavailableReason());
        return false;
    }
    picture_ = std::make_unique<detail::ScenePicture>(std::move(result.picture));
    ++pictureCount_;
    return true;
}

void SCNView::report(const std::string& failure) const {
    if (failureHandler_) return failureHandler_(NSError::errorWithDomain(errorDomain, errorCode, failure));
    LogSink::write(LogLevelError, "SCNView: " + failure);
}

CGSize SCNView::pixelSize() const {
    const CGSize size = bounds().size;
    const CGFloat scale = UIScreen::mainScreen().scale();
    const CGFloat longer = std::max({size.width * scale, size.height * scale, 1.0});
    const CGFloat shrink = std::min(1.0, largestSide / longer) * scale;
    return {std::max(1.0, std::round(size.width * shrink)), std::max(1.0, std::round(size.height * shrink))};
}

bool SCNView::hasModel() const {
    return scene_ && firstModel(scene_->rootNode());
}

bool SCNView::isAnimated() const {
    return scene_ && !UIAccessibilityIsReduceMotionEnabled() && hasAnimatedModel(scene_->rootNode());
}

SceneFrame SCNView::makeFrame() const {
    SceneFrame frame;
    const CGSize size = pixelSize();
    frame.width = static_cast<int>(size.width);
    frame.height = static_cast<int>(size.height);
    frame.orientation = turntable_.orientation();
    frame.zoom = static_cast<float>(turntable_.magnification());
    frame.time = isAnimated() ? Clock::current().uptime() - startTime_ : 0;
    frame.hasStudioLight = scene_->hasStudioLight();
    collect(scene_->rootNode(), {}, frame.items);
    const SCNBoundingBox box = scene_->rootNode().boundingBox();
    frame.hasFloorGlow = scene_->hasFloorGlow() && !frame.items.empty() && !box.isEmpty();
    frame.floor = frame.hasFloorGlow ? box.min.y : 0;
    return frame;
}

// Input.

void SCNView::zoom(CGFloat factor) {
    turntable_.zoom(factor);
    refresh();
}

UIAccessibilityTraits SCNView::accessibilityTraits() const {
    return UIView::accessibilityTraits() | UIAccessibilityTraits::Image | UIAccessibilityTraits::Adjustable;
}

bool SCNView::accessibilityActivate() {
    if (!hasModel()) return false;
    const CGFloat shown = magnification();
    zoom(shown < zoomedIn ? zoomStep : 1 / shown);
    return true;
}

bool SCNView::accessibilityAdjust(int steps) {
    if (!hasModel()) return false;
    turntable_.turn(steps * anglePerStep, 0);
    refresh();
    return true;
}

bool SCNView::stickHeld(CGPoint deflection, double seconds) {
    if (!hasModel()) return false;
    turntable_.turn(deflection.x * stickSpeed * seconds, deflection.y * stickSpeed * seconds);
    refresh();
    return true;
}

bool SCNView::scrollWheel(CGPoint, CGFloat, CGFloat dy) {
    if (dy == 0 || !scene_) return false;
    zoom(std::exp(-dy * zoomPerPoint));
    return true;
}

void SCNView::fingerDown(UITouch& touch) {
    fingers_.emplace_back(&touch);
    turntable_.hold();
    refresh();
}

void SCNView::fingerMoved(UITouch& touch) {
    if (std::ranges::find(fingers_, &touch, &Ref<UITouch>::get) == fingers_.end()) return;
    const CGPoint here = touch.locationInView(this), before = touch.previousLocationInView(this);
    const auto other = std::ranges::find_if(fingers_, [&](const auto& each) { return each.get() != &touch; });
    if (other != fingers_.end()) {
        const CGPoint rest = (*other)->locationInView(this);
        const CGFloat apart = distance(before, rest);
        if (apart > 1) zoom(distance(here, rest) / apart);
    }
    const CGFloat side = std::max(1.0, std::min(bounds().width(), bounds().height()));
    // Two fingers moving alike turn as much as one does.
    const CGFloat unit = side * static_cast<CGFloat>(fingers_.size());
    turntable_.drag((here.x - before.x) / unit, (here.y - before.y) / unit, touch.timestamp());
    refresh();
}

void SCNView::fingerUp(UITouch& touch) {
    std::erase_if(fingers_, [&](const auto& each) { return each.get() == &touch; });
    if (fingers_.empty()) turntable_.release(touch.timestamp());
    refresh();
}

}  // namespace flarebox
