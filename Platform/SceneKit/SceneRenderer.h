#pragma once

#include <Foundation/Thread.h>
#include <SceneKit/SceneEngine.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace flarebox {
namespace detail {

template <class T>
class Immortal;

/// Where one view's frames are handed to the thread that draws, and its pictures back. Neither side ever waits.
class SceneCanvas {
public:
    /// Whether a frame is waiting to be drawn, or its picture to be taken.
    bool isBusy() const;

    struct Result {
        /// Without pixels where scenes cannot be drawn.
        ScenePicture picture;
        /// What could not be shown; each told once.
        std::vector<std::string> failures;
    };
    /// The picture of the frame last submitted, once; false as long as there is none.
    bool takeResult(Result& result);

private:
    friend class SceneRenderer;
    mutable std::mutex mutex_;
    bool isBusy_ = false, isFinished_ = false;
    SceneFrame frame_;
    Result result_;
};

/// Draws the frames of all views on one thread, which is started when first needed. Main thread except where said.
class SceneRenderer {
public:
    using EngineMaker = std::function<std::unique_ptr<SceneEngine>(std::string& unavailableReason)>;

    static SceneRenderer& shared();

    /// Has the frame drawn; ignored while the canvas is busy.
    void submit(const std::shared_ptr<SceneCanvas>& canvas, SceneFrame frame);
    /// Why nothing can be drawn; empty as long as that is not known. Any thread.
    std::string unavailableReason() const;
    /// Forgets a reason that may have passed meanwhile, lack of threads for example.
    void tryAgain();
    /// A model is not held by anybody any more: the engine may drop it. Any thread.
    void modelReleased() noexcept;
    /// Another engine from the next start of the thread on; null for the usual one.
    void setEngineMaker(EngineMaker maker);
    /// Waits for the picture being drawn and ends the thread; the next frame starts it anew.
    void stop();
    bool isRunning() const { return thread_.isRunning(); }

private:
    friend class Immortal<SceneRenderer>;
    SceneRenderer() = default;
    ~SceneRenderer() = default;

    void start();
    void run(const EngineMaker& maker);
    std::unique_ptr<SceneEngine> makeEngine(const EngineMaker& maker);
    void setUnavailable(std::string reason, bool mayPass);
    bool isStopping() const;
    static void letGo(SceneCanvas& canvas);
    static void drawInto(SceneCanvas& canvas, SceneEngine* engine);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::shared_ptr<SceneCanvas>> waiting_;
    std::string unavailableReason_;
    bool reasonMayPass_ = false, isStopping_ = false, modelReleased_ = false;
    EngineMaker engineMaker_;
    Thread thread_;
};

}  // namespace detail
}  // namespace flarebox
