#include <SceneKit/SceneEngine.h>

namespace flarebox::detail {

#ifndef FLAREBOX_HAS_3D
std::unique_ptr<SceneEngine> makeSceneEngine(std::string& unavailableReason) {
    unavailableReason = "This build cannot show 3D models";
    return nullptr;
}
#endif

}  // namespace flarebox::detail
