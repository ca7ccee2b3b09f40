#pragma once

#include <SceneKit/SCNMath.h>

#include <atomic>
#include <cstddef>
#include <string>

namespace flarebox::detail {

/// A model file that has passed the first check, shared by the nodes that show it. Any thread.
class ModelSource {
public:
    ModelSource(std::string path, SCNBoundingBox bounds, bool isAnimated)
        : path_(std::move(path)), bounds_(bounds), isAnimated_(isAnimated) {}
    /// Tells the thread that draws.
    ~ModelSource();
    ModelSource(const ModelSource&) = delete;
    ModelSource& operator=(const ModelSource&) = delete;

    const std::string& path() const { return path_; }
    /// Around the model at rest, in its own coordinates; empty for a model without anything to see.
    const SCNBoundingBox& bounds() const { return bounds_; }
    bool isAnimated() const { return isAnimated_; }
    /// Whether drawing it has shown that there is nothing to be seen of it, for good.
    bool isBroken() const { return isBroken_; }
    void setBroken() const { isBroken_ = true; }

private:
    std::string path_;
    SCNBoundingBox bounds_;
    bool isAnimated_;
    mutable std::atomic<bool> isBroken_ = false;
};

}  // namespace flarebox::detail
