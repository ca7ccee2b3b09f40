#include <SceneKit/SceneRenderer.h>

#include <Foundation/BackgroundThread.h>
#include <Foundation/Immortal.h>
#include <Foundation/Shutdown.h>
#include <SceneKit/ModelSource.h>

#include <utility>

namespace flarebox::detail {
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
    std::lock_guard lock(mutex_);
    waiting_.push_back(canvas);
    changed_.notify_one();
    if (!thread_.joinable()) start();
}

std::string SceneRenderer::unavailableReason() const {
    std::lock_guard lock(mutex_);
    return unavailableReason_;
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
    isStopping_ = modelReleased_ = false;
    thread_ = std::thread([this, maker = engineMaker_ ? engineMaker_ : EngineMaker(makeSceneEngine)] { run(maker); });
    Shutdown::addHandler([this] { stop(); });
}

void SceneRenderer::stop() {
    if (!thread_.joinable()) return;
    std::deque<std::shared_ptr<SceneCanvas>> dropped;
    {
        std::lock_guard lock(mutex_);
        isStopping_ = true;
        dropped.swap(waiting_);
        changed_.notify_one();
    }
    thread_.join();
    unavailableReason_.clear();
    for (const auto& canvas : dropped) {
        std::lock_guard lock(canvas->mutex_);
        canvas->isBusy_ = false;
    }
}

void SceneRenderer::run(const EngineMaker& makeEngine) {
    // Where a processor has to stand in for the graphics hardware, the game's own frames come first.
    becomeBackgroundThread("flarebox-scene");
    std::string reason;
    const std::unique_ptr<SceneEngine> engine = makeEngine(reason);
    if (!engine) {
        std::lock_guard lock(mutex_);
        unavailableReason_ = reason.empty() ? "3D models cannot be shown" : reason;
    }
    work(engine.get());
}

void SceneRenderer::work(SceneEngine* engine) {
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
        if (canvas) drawInto(*canvas, engine);
        canvas = nullptr;
        lock.lock();
    }
}

void SceneRenderer::drawInto(SceneCanvas& canvas, SceneEngine* engine) {
    SceneFrame frame;
    {
        std::lock_guard lock(canvas.mutex_);
        frame = std::move(canvas.frame_);
    }
    SceneCanvas::Result result;
    if (engine) result.picture = engine->draw(frame, result.failures);
    std::lock_guard lock(canvas.mutex_);
    canvas.result_ = std::move(result);
    canvas.isFinished_ = true;
}

}  // namespace flarebox::detail
