#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox::testing {

/// Writes binary glTF files, good and bad ones.
class ModelBuilder {
public:
    /// Adds an entry, as JSON text, to one of the description's lists; answers its number.
    std::size_t add(const std::string& list, const std::string& json) {
        lists_[list].push_back(json);
        return lists_[list].size() - 1;
    }
    /// Puts another text in the place of an entry's; used to spoil it.
    void replaceIn(const std::string& list, std::size_t index, std::string_view from, std::string_view to) {
        std::string& text = lists_.at(list).at(index);
        text.replace(text.find(from), from.size(), to);
    }
    /// A member of the description that is no list.
    void set(const std::string& name, const std::string& json) { members_[name] = json; }

    /// Adds binary data, aligned to four bytes, and a view of it.
    template <class T>
    std::size_t view(const std::vector<T>& values, std::size_t stride = 0) {
        data_.resize((data_.size() + 3) / 4 * 4);
        const std::size_t offset = data_.size(), bytes = values.size() * sizeof(T);
        data_.resize(offset + bytes);
        if (bytes > 0) std::memcpy(data_.data() + offset, values.data(), bytes);
        std::string json =
            R"({"buffer":0,"byteOffset":)" + std::to_string(offset) + R"(,"byteLength":)" + std::to_string(bytes);
        if (stride) json += R"(,"byteStride":)" + std::to_string(stride);
        return add("bufferViews", json + "}");
    }
    std::size_t accessor(std::size_t view, int component, std::size_t count, std::string_view type,
                         const std::string& more = {}) {
        return add("accessors", R"({"bufferView":)" + std::to_string(view) + R"(,"componentType":)" +
                                    std::to_string(component) + R"(,"count":)" + std::to_string(count) +
                                    R"(,"type":")" + std::string(type) + "\"" + more + "}");
    }
    std::size_t floats(const std::vector<float>& values, std::string_view type, const std::string& more = {}) {
        const std::size_t width = type == "SCALAR" ? 1 : type == "MAT4" ? 16 : static_cast<std::size_t>(type[3] - '0');
        return accessor(view(values), 5126, values.size() / width, type, more);
    }
    std::size_t shorts(const std::vector<std::uint16_t>& values) {
        return accessor(view(values), 5123, values.size(), "SCALAR");
    }

    std::string description() const {
        std::string json = "{\"asset\":{\"version\":\"2.0\"}";
        for (const auto& [name, text] : members_) json += ",\"" + name + "\":" + text;
        for (const auto& [name, entries] : lists_) {
            json += ",\"" + name + "\":[";
            for (std::size_t i = 0; i < entries.size(); ++i) json += (i ? "," : "") + entries[i];
            json += "]";
        }
        if (!data_.empty()) json += ",\"buffers\":[{\"byteLength\":" + std::to_string(data_.size()) + "}]";
        return json + "}";
    }
    std::string file() const { return file(description()); }
    /// The binary data with another description.
    std::string file(std::string json) const {
        json.resize((json.size() + 3) / 4 * 4, ' ');
        std::string data(data_.begin(), data_.end());
        data.resize((data.size() + 3) / 4 * 4, '\0');
        std::string body = word(json.size()) + "JSON" + json;
        if (!data.empty()) body += word(data.size()) + std::string("BIN\0", 4) + data;
        return "glTF" + word(2) + word(12 + body.size()) + body;
    }

    static std::string word(std::size_t number) {
        std::string bytes(4, '\0');
        for (std::size_t i = 0; i < 4; ++i) bytes[i] = static_cast<char>(number >> (8 * i) & 255);
        return bytes;
    }

private:
    std::map<std::string, std::vector<std::string>> lists_;
    std::map<std::string, std::string> members_;
    std::vector<char> data_;
};

/// A cube from -1 to 1 with four vertices a face; the face towards +z is the first.
struct Cube {
    std::vector<float> positions, normals, texturePoints;
    std::vector<std::uint16_t> indices;

    Cube() {
        using Vector = std::array<float, 3>;
        constexpr std::array<std::array<Vector, 3>, 6> faces = {{{{{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}},
                                                                 {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
                                                                 {{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}},
                                                                 {{{0, 0, -1}, {0, 1, 0}, {1, 0, 0}}},
                                                                 {{{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}}},
                                                                 {{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}}}};
        constexpr std::array<std::array<float, 2>, 4> corners = {{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}};
        for (const auto& [normal, across, up] : faces) {
            const auto first = static_cast<std::uint16_t>(positions.size() / 3);
            for (const auto& [a, b] : corners) {
                for (std::size_t i = 0; i < 3; ++i) {
                    positions.push_back(normal[i] + a * across[i] + b * up[i]);
                    normals.push_back(normal[i]);
                }
                texturePoints.insert(texturePoints.end(), {(a + 1) / 2, (1 - b) / 2});
            }
            for (const int corner : {0, 1, 2, 0, 2, 3}) indices.push_back(static_cast<std::uint16_t>(first + corner));
        }
    }
};

inline constexpr std::string_view cubeBounds = R"(,"min":[-1,-1,-1],"max":[1,1,1])";

/// A scene of one node that shows mesh 0.
inline void addScene(ModelBuilder& model) {
    model.add("nodes", R"({"mesh":0})");
    model.add("scenes", R"({"nodes":[0]})");
}

/// An unlit material shows its colour as it is.
inline std::string unlit(const std::string& color, const std::string& more = {}) {
    return R"({"pbrMetallicRoughness":{"baseColorFactor":)" + color + "}," +
           R"("extensions":{"KHR_materials_unlit":{}})" + more + "}";
}

/// A cube of one material: accessors 0 (positions), 1 (normals) and 2 (indices).
inline ModelBuilder cubeModel(const std::string& material = unlit("[1,0,0,1]")) {
    const Cube cube;
    ModelBuilder model;
    model.set("extensionsUsed", R"(["KHR_materials_unlit"])");
    model.floats(cube.positions, "VEC3", std::string(cubeBounds));
    model.floats(cube.normals, "VEC3");
    model.shorts(cube.indices);
    model.add("materials", material);
    model.add("meshes", R"({"primitives":[{"attributes":{"POSITION":0,"NORMAL":1},"indices":2,"material":0}]})");
    addScene(model);
    return model;
}

}  // namespace flarebox::testing
