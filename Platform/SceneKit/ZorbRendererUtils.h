#pragma once

namespace flarebox {

class SCNNode;
class SCNView;

/// What every view of a product needs. Main thread only.
class ZorbRendererUtils {
public:
    ZorbRendererUtils() = delete;

    /// Gives the view a new scene with a studio's light and a faintly glowing floor. The light is no node: it stays
    /// when the root's children are removed.
    static void loadDefaultSceneForView(SCNView& view);
    /// Places and scales the node so that, however it turns about the vertical axis, it fills the view without being
    /// cut off, with its middle in the middle. A node without anything to see is left as it is.
    static void scaleNode(SCNNode& node, SCNView& forView);
};

}  // namespace flarebox
