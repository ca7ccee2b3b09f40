#include <Foundation/LogSink.h>
#include <SceneKit/SCNNode.h>

#include <SceneKit/ModelSource.h>
#include <SceneKit/SCNScene.h>

#include <algorithm>
#include <cmath>

namespace flarebox {
namespace {

bool isFinite(SCNVector3 v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

}  // namespace

const ClassInfo& SCNNode::staticClass() {
    static const ClassInfo info("SCNNode", &NSObject::staticClass(), createObject<SCNNode>);
    return info;
}

SCNNode::~SCNNode() {
    for (const auto& child : children_) child->parent_ = nullptr;
}

void SCNNode::setPosition(SCNVector3 position) {
    if (position == position_ || !isFinite(position)) return;
    position_ = position;
    didChange();
}

void SCNNode::setScale(SCNVector3 scale) {
    if (scale == scale_ || !isFinite(scale)) return;
    scale_ = scale;
    didChange();
}

void SCNNode::addChildNode(SCNNode& node) {
    for (const SCNNode* each = this; each; each = each->parent_) {
        if (each != &node) continue;
        LogSink::write(LogLevelError, "SCNNode: a node cannot be added to itself or to a node below it");
        return;
    }
    const Ref<SCNNode> kept(&node);
    node.removeFromParentNode();
    children_.push_back(kept);
    node.parent_ = this;
    didChange();
}

void SCNNode::removeFromParentNode() {
    if (!parent_) return;
    const Ref<SCNNode> kept(this);
    SCNNode& parent = *parent_;
    parent_ = nullptr;
    std::erase(parent.children_, kept);
    parent.didChange();
}

SCNBoundingBox SCNNode::boundingBox() const {
    SCNBoundingBox box = model_ ? model_->bounds() : SCNBoundingBox::empty();
    for (const auto& child : children_) box.include(child->boundingBox().transformedBy(child->transform()));
    return box;
}

bool SCNNode::hasBrokenModel() const {
    return model_ && model_->isBroken();
}

void SCNNode::didChange() {
    SCNNode* root = this;
    while (root->parent_) root = root->parent_;
    if (root->scene_) root->scene_->didChange();
}

}  // namespace flarebox
