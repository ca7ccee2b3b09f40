#pragma once

#include <Foundation/NSObject.h>
#include <SceneKit/SCNNode.h>

#include <vector>

namespace flarebox {

class SCNView;

/// A tree of nodes with the light that falls on it. Main thread only.
class SCNScene : public NSObject {
    FLAREBOX_CLASS(SCNScene)
public:
    SCNScene();
    ~SCNScene() override;

    SCNNode& rootNode() const { return *root_; }

    /// Whether soft lamps stand around the scene and a key light above it; without them it is dark. They stay when
    /// nodes are removed.
    bool hasStudioLight() const { return studioLight_; }
    void setHasStudioLight(bool has);
    /// Whether the floor below what is shown glows faintly.
    bool hasFloorGlow() const { return floorGlow_; }
    void setHasFloorGlow(bool has);

private:
    friend class SCNNode;
    friend class SCNView;
    void didChange();

    Ref<SCNNode> root_;
    std::vector<SCNView*> views_;
    bool studioLight_ = false, floorGlow_ = false;
};

}  // namespace flarebox
