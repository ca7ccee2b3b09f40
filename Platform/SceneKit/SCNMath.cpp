#include <SceneKit/SCNMath.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace flarebox {

SCNMatrix4 operator*(const SCNMatrix4& a, const SCNMatrix4& b) {
    SCNMatrix4 product;
    for (std::size_t column = 0; column < 4; ++column) {
        for (std::size_t row = 0; row < 4; ++row) {
            float sum = 0;
            for (std::size_t i = 0; i < 4; ++i) sum += a.m[i * 4 + row] * b.m[column * 4 + i];
            product.m[column * 4 + row] = sum;
        }
    }
    return product;
}

SCNVector3 transformed(const SCNMatrix4& matrix, SCNVector3 point) {
    const auto& m = matrix.m;
    return {m[0] * point.x + m[4] * point.y + m[8] * point.z + m[12],
            m[1] * point.x + m[5] * point.y + m[9] * point.z + m[13],
            m[2] * point.x + m[6] * point.y + m[10] * point.z + m[14]};
}

SCNMatrix4 makePlacement(SCNVector3 position, SCNVector3 scale) {
    return {{scale.x, 0, 0, 0, 0, scale.y, 0, 0, 0, 0, scale.z, 0, position.x, position.y, position.z, 1}};
}

SCNMatrix4 makeRotationX(float angle) {
    const float c = std::cos(angle), s = std::sin(angle);
    return {{1, 0, 0, 0, 0, c, s, 0, 0, -s, c, 0, 0, 0, 0, 1}};
}

SCNMatrix4 makeRotationY(float angle) {
    const float c = std::cos(angle), s = std::sin(angle);
    return {{c, 0, -s, 0, 0, 1, 0, 0, s, 0, c, 0, 0, 0, 0, 1}};
}

SCNMatrix4 makeTransform(SCNVector3 translation, const std::array<float, 4>& quaternion, SCNVector3 scale) {
    const auto [x, y, z, w] = quaternion;
    const SCNMatrix4 rotation{{1 - 2 * (y * y + z * z), 2 * (x * y + w * z), 2 * (x * z - w * y), 0,  //
                               2 * (x * y - w * z), 1 - 2 * (x * x + z * z), 2 * (y * z + w * x), 0,  //
                               2 * (x * z + w * y), 2 * (y * z - w * x), 1 - 2 * (x * x + y * y), 0,  //
                               0, 0, 0, 1}};
    return makePlacement(translation, {1, 1, 1}) * rotation * makePlacement({}, scale);
}

SCNBoundingBox SCNBoundingBox::empty() {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    return {{infinity, infinity, infinity}, {-infinity, -infinity, -infinity}};
}

void SCNBoundingBox::include(SCNVector3 point) {
    min = {std::min(min.x, point.x), std::min(min.y, point.y), std::min(min.z, point.z)};
    max = {std::max(max.x, point.x), std::max(max.y, point.y), std::max(max.z, point.z)};
}

SCNBoundingBox SCNBoundingBox::transformedBy(const SCNMatrix4& matrix) const {
    SCNBoundingBox box = empty();
    if (isEmpty()) return box;
    for (int corner = 0; corner < 8; ++corner) {
        box.include(
            transformed(matrix, {corner & 1 ? max.x : min.x, corner & 2 ? max.y : min.y, corner & 4 ? max.z : min.z}));
    }
    return box;
}

void SCNBoundingBox::include(const SCNBoundingBox& box) {
    if (box.isEmpty()) return;
    include(box.min);
    include(box.max);
}

SCNVector3 SCNBoundingBox::center() const {
    return {(min.x + max.x) / 2, (min.y + max.y) / 2, (min.z + max.z) / 2};
}

}  // namespace flarebox
