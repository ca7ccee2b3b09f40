#include <SceneKit/PackedMesh.h>

namespace flarebox::detail {

#ifndef FLAREBOX_HAS_3D
std::string unpackMesh(std::span<const std::byte>, std::size_t, std::vector<PackedAttribute>&,
                       std::span<std::uint32_t>) {
    return "this build cannot unpack KHR_draco_mesh_compression";
}
#endif

}  // namespace flarebox::detail
