#include <SceneKit/SceneRenderer.h>

#include <Foundation/BackgroundThread.h>
#include <Foundation/Immortal.h>
#include <Foundation/Shutdown.h>
#include <SceneKit/ModelSource.h>

#include <new>
#include <utility>

namespace flarebox::detail {
namespace {

/// What renderer and graphics driver start and open. They end the process when they are refused some of them.
constexpr int threadsOfEngine = 32, descriptorsOfEngine = 32;

}  // namespace

ModelSource::~ModelSource() {
    SceneRenderer::shared().modelReleased();
}

bool SceneCanvas::isBusy() const {
    std::lock_guard lock(mutex_);
    return isBusy_;
}

bool SceneCanvas::takeResult(Result& result) {
    std::lock_guard lock(mutex_);
    if (!isFinished_) return false;
    isFinished_ = isBusy_ = false;
    result = std::move(result_);
    return true;
}

SceneRenderer& SceneRenderer::shared() {
    static Immortal<SceneRenderer> renderer;
    return *renderer;
}

void SceneRenderer::submit(const std::shared_ptr<SceneCanvas>& canvas, SceneFrame frame) {
    {
        std::lock_guard lock(canvas->mutex_);
        if (canvas->isBusy_) return;
        canvas->isBusy_ = true;
        canvas->frame_ = std::move(frame);
    }
    {
        std::lock_guard lock(mutex_);
        waiting_.push_back(canvas);
        changed_.notify_one();
    }
    if (!isRunning()) start();
}

std::string SceneRenderer::unavailableReason() const {
    std::lock_guard lock(mutex_);
    return unavailableReason_;
}

void SceneRenderer::tryAgain() {
    std::lock_guard lock(mutex_);
    if (std::exchange(reasonMayPass_, false)) unavailableReason_.clear();
}

void SceneRenderer::setUnavailable(std::string reason, bool mayPass) {
    std::lock_guard lock(mutex_);
    unavailableReason_ = std::move(reason);
    reasonMayPass_ = mayPass;
}

void SceneRenderer::modelReleased() noexcept {
    std::lock_guard lock(mutex_);
    modelReleased_ = true;
    changed_.notify_one();
}

void SceneRenderer::setEngineMaker(EngineMaker maker) {
    engineMaker_ = std::move(maker);
}

void SceneRenderer::start() {
    {
        std::lock_guard lock(mutex_);
        isStopping_ = modelReleased_ = false;
    }
    const auto maker = engineMaker_ ? engineMaker_ : EngineMaker(makeSceneEngine);
    if (thread_.start("flarebox-scene", [this, maker] { run(maker); })) return Shutdown::addHandler([this] { stop(); });
    setUnavailable("3D models cannot be shown: the system gives no thread for them", true);
    for (const auto& canvas : std::exchange(waiting_, {})) drawInto(*canvas, nullptr);
}

void SceneRenderer::stop() {
    if (!isRunning()) return;
    std::deque<std::shared_ptr<SceneCanvas>> dropped;
    {
        std::lock_guard lock(mutex_);
        isStopping_ = true;
        dropped.swap(waiting_);
        changed_.notify_one();
    }
    thread_.join();
    unavailableReason_.clear();
    for (const auto& canvas : dropped) letGo(*canvas);
}

bool SceneRenderer::isStopping() const {
    std::lock_guard lock(mutex_);
    return isStopping_;
}

void SceneRenderer::letGo(SceneCanvas& canvas) {
    std::lock_guard lock(canvas.mutex_);
    canvas.isBusy_ = false;
}

void SceneRenderer::run(const EngineMaker& maker) {
    // Where a processor has to stand in for the graphics hardware, the game's own frames come first.
    becomeBackgroundThread();
    std::unique_ptr<SceneEngine> engine;
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return isStopping_ || modelReleased_ || !waiting_.empty(); });
        if (isStopping_) return;
        std::shared_ptr<SceneCanvas> canvas;
        if (!waiting_.empty()) {
            canvas = std::move(waiting_.front());
            waiting_.pop_front();
        }
        const bool modelReleased = std::exchange(modelReleased_, false);
        lock.unlock();
        if (modelReleased && engine) engine->releaseUnused();
        if (canvas && !engine) engine = makeEngine(maker);
        // The first picture takes longest, and nobody sees it any more.
        if (canvas && isStopping())
            letGo(*canvas);
        else if (canvas)
            drawInto(*canvas, engine.get());
        canvas = nullptr;
        lock.lock();
    }
}

std::unique_ptr<SceneEngine> SceneRenderer::makeEngine(const EngineMaker& maker) {
    if (const std::string lack = lackOf(threadsOfEngine, descriptorsOfEngine); !lack.empty()) {
        setUnavailable("3D models cannot be shown: " + lack, true);
        return nullptr;
    }
    std::string reason;
    try {
        if (auto engine = maker(reason)) return engine;
    } catch (const std::bad_alloc&) {
        setUnavailable("3D models cannot be shown: there is not enough memory", true);
        return nullptr;
    }
    setUnavailable(reason.empty() ? "3D models cannot be shown" : reason, false);
    return nullptr;
}

void SceneRenderer::drawInto(SceneCanvas& canvas, SceneEngine* engine) {
    SceneFrame frame;
    {
        std::lock_guard lock(canvas.mutex_);
        frame = std::move(canvas.frame_);
    }
    SceneCanvas::Result result;
    try {
        if (engine) result.picture = engine->draw(frame, result.failures);
    } catch (const std::bad_alloc&) {
        result.failures.emplace_back("there is not enough memory for the picture of a model");
    }
    std::lock_guard lock(canvas.mutex_);
    canvas.result_ = std::move(result);
    canvas.isFinished_ = true;
}

}  // namespace flarebox::detail
