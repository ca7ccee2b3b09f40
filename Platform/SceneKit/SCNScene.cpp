#include <SceneKit/SCNScene.h>

#include <SceneKit/SCNView.h>

namespace flarebox {

const ClassInfo& SCNScene::staticClass() {
    static const ClassInfo info("SCNScene", &NSObject::staticClass(), createObject<SCNScene>);
    return info;
}

SCNScene::SCNScene() : root_(make<SCNNode>()) {
    root_->scene_ = this;
}

SCNScene::~SCNScene() {
    root_->scene_ = nullptr;
}

void SCNScene::setHasStudioLight(bool has) {
    if (studioLight_ == has) return;
    studioLight_ = has;
    didChange();
}

void SCNScene::setHasFloorGlow(bool has) {
    if (floorGlow_ == has) return;
    floorGlow_ = has;
    didChange();
}

void SCNScene::didChange() {
    for (SCNView* view : views_) view->sceneDidChange();
}

}  // namespace flarebox
