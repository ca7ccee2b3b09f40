#include <SceneKit/PackedMesh.h>

#include <draco/compression/decode.h>
#include <draco/compression/point_cloud/point_cloud_decoder.h>
#include <draco/core/varint_decoding.h>
#include <draco/metadata/metadata_decoder.h>

#include <exception>
#include <memory>
#include <optional>

namespace flarebox::detail {
namespace {

template <class T>
bool copy(const draco::PointAttribute& from, std::size_t count, PackedAttribute& to) {
    to.elements.resize(count * to.width * sizeof(T));
    std::vector<T> element(to.width);
    for (std::size_t i = 0; i < count; ++i) {
        const auto index = from.mapped_index(draco::PointIndex(static_cast<std::uint32_t>(i)));
        if (index.value() >= from.size()) return false;
        if (!from.ConvertValue(index, static_cast<std::int8_t>(to.width), element.data())) return false;
        std::memcpy(to.elements.data() + i * to.width * sizeof(T), element.data(), to.width * sizeof(T));
    }
    return true;
}

bool copy(const draco::PointAttribute& from, std::size_t count, PackedAttribute& to) {
    // Models know no truth values, and the library takes any byte of the file for one.
    if (from.data_type() == draco::DT_BOOL) return false;
    switch (to.component) {
        case ComponentType::Byte:
            return copy<std::int8_t>(from, count, to);
        case ComponentType::UByte:
            return copy<std::uint8_t>(from, count, to);
        case ComponentType::Short:
            return copy<std::int16_t>(from, count, to);
        case ComponentType::UShort:
            return copy<std::uint16_t>(from, count, to);
        case ComponentType::UInt:
            return copy<std::uint32_t>(from, count, to);
        case ComponentType::Float:
            return copy<float>(from, count, to);
    }
    return false;
}

/// What the mesh says of its faces, for which the library makes room before it looks for them. Nothing for any release
/// of the format but the one that models use.
std::optional<std::uint32_t> announcedFaceCount(draco::DecoderBuffer buffer) {
    draco::DracoHeader header{};
    if (!draco::PointCloudDecoder::DecodeHeader(&buffer, &header).ok()) return std::nullopt;
    if (header.version_major != 2 || header.version_minor != 2) return std::nullopt;
    buffer.set_bitstream_version(DRACO_BITSTREAM_VERSION(2, 2));
    draco::GeometryMetadata metadata;
    const bool hasMetadata = header.flags & METADATA_FLAG_MASK;
    if (hasMetadata && !draco::MetadataDecoder().DecodeGeometryMetadata(&buffer, &metadata)) return std::nullopt;
    if (header.encoder_method == draco::MESH_EDGEBREAKER_ENCODING) {
        std::uint8_t traversal = 0;
        std::uint32_t vertexCount = 0;
        if (!buffer.Decode(&traversal) || !draco::DecodeVarint(&vertexCount, &buffer)) return std::nullopt;
    }
    std::uint32_t faceCount = 0;
    if (!draco::DecodeVarint(&faceCount, &buffer)) return std::nullopt;
    return faceCount;
}

std::string read(const draco::Mesh& mesh, std::size_t vertexCount, std::vector<PackedAttribute>& attributes,
                 std::span<std::uint32_t> indices) {
    if (mesh.num_points() != vertexCount || std::size_t{mesh.num_faces()} * 3 != indices.size())
        return "has packed vertices or indices of another count";
    for (std::uint32_t i = 0; i < mesh.num_faces(); ++i) {
        const draco::Mesh::Face& face = mesh.face(draco::FaceIndex(i));
        for (std::size_t k = 0; k < 3; ++k) indices[i * 3 + k] = face[k].value();
    }
    for (PackedAttribute& attribute : attributes) {
        const draco::PointAttribute* found = mesh.GetAttributeByUniqueId(attribute.id);
        if (!found || !copy(*found, vertexCount, attribute)) return "lacks a packed attribute";
    }
    return {};
}

}  // namespace

std::string unpackMesh(std::span<const std::byte> packed, std::size_t vertexCount,
                       std::vector<PackedAttribute>& attributes, std::span<std::uint32_t> indices) {
    // Sizes out of a hostile file may be too large for the library's own containers.
    try {
        draco::DecoderBuffer buffer;
        buffer.Init(reinterpret_cast<const char*>(packed.data()), packed.size());
        const auto faceCount = announcedFaceCount(buffer);
        if (!faceCount || std::size_t{*faceCount} * 3 != indices.size())
            return "cannot be unpacked: it is none of Draco 2.2, or has another count of faces";
        draco::Decoder decoder;
        auto mesh = decoder.DecodeMeshFromBuffer(&buffer);
        if (!mesh.ok()) return "cannot be unpacked: " + mesh.status().error_msg_string();
        return read(*mesh.value(), vertexCount, attributes, indices);
    } catch (const std::exception& fault) {
        return std::string("cannot be unpacked: ") + fault.what();
    }
}

}  // namespace flarebox::detail
