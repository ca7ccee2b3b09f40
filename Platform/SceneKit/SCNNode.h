#pragma once

#include <Foundation/NSObject.h>
#include <SceneKit/SCNMath.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace flarebox {

class SCNScene;
namespace detail {
class ModelSource;
}

/// A place in a scene, which may show a model, with further places below it. Owned by its parent. Main thread only.
class SCNNode : public NSObject {
    FLAREBOX_CLASS(SCNNode)
public:
    SCNNode() = default;
    /// Shows a model; see ZorbRenderer.
    explicit SCNNode(std::shared_ptr<const detail::ModelSource> model) : model_(std::move(model)) {}
    ~SCNNode() override;

    const std::string& name() const { return name_; }
    void setName(std::string name) { name_ = std::move(name); }

    /// Relative to the parent: first scaled, then moved. Numbers that are not finite are ignored.
    const SCNVector3& position() const { return position_; }
    void setPosition(SCNVector3 position);
    const SCNVector3& scale() const { return scale_; }
    void setScale(SCNVector3 scale);
    /// From the node's own coordinates to its parent's.
    SCNMatrix4 transform() const { return makePlacement(position_, scale_); }

    /// Null for a root and for a node in no tree.
    SCNNode* parentNode() const { return parent_; }
    std::span<const Ref<SCNNode>> childNodes() const { return children_; }
    /// Moves the node here, behind the others; a node that this one lies below is refused with a message.
    void addChildNode(SCNNode& node);
    void removeFromParentNode();

    /// Around everything at and below the node at rest, in its own coordinates; empty when there is nothing to see.
    SCNBoundingBox boundingBox() const;
    /// Null for a node that shows nothing itself.
    const std::shared_ptr<const detail::ModelSource>& model() const { return model_; }
    /// Whether drawing has shown that the file of its model is broken.
    bool hasBrokenModel() const;

private:
    friend class SCNScene;
    void didChange();

    SCNNode* parent_ = nullptr;
    /// Set for a scene's root alone.
    SCNScene* scene_ = nullptr;
    std::vector<Ref<SCNNode>> children_;
    std::string name_;
    SCNVector3 position_, scale_{1, 1, 1};
    std::shared_ptr<const detail::ModelSource> model_;
};

}  // namespace flarebox
