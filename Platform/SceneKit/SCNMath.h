#pragma once

#include <array>

namespace flarebox {

/// A point, a direction or a factor an axis. y points upwards, z towards the onlooker.
struct SCNVector3 {
    float x = 0, y = 0, z = 0;
    friend bool operator==(const SCNVector3&, const SCNVector3&) = default;
};

/// An affine or projective map; columns one after the other, so that elements 12 to 14 are the translation.
struct SCNMatrix4 {
    std::array<float, 16> m = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    friend bool operator==(const SCNMatrix4&, const SCNMatrix4&) = default;
};

/// First `b`, then `a`.
SCNMatrix4 operator*(const SCNMatrix4& a, const SCNMatrix4& b);
SCNVector3 transformed(const SCNMatrix4& matrix, SCNVector3 point);
/// Scales each axis, then moves.
SCNMatrix4 makePlacement(SCNVector3 position, SCNVector3 scale);
/// Radians, anticlockwise as seen from the tip of the axis.
SCNMatrix4 makeRotationX(float angle);
SCNMatrix4 makeRotationY(float angle);
/// glTF's order: scale, then the unit quaternion (x, y, z, w), then translation.
SCNMatrix4 makeTransform(SCNVector3 translation, const std::array<float, 4>& quaternion, SCNVector3 scale);

/// The smallest box with edges along the axes around something.
struct SCNBoundingBox {
    SCNVector3 min, max;

    /// Holds nothing; becomes a box with the first point.
    static SCNBoundingBox empty();
    bool isEmpty() const { return !(min.x <= max.x && min.y <= max.y && min.z <= max.z); }
    void include(SCNVector3 point);
    /// The box around this box's transformed corners.
    SCNBoundingBox transformedBy(const SCNMatrix4& matrix) const;
    void include(const SCNBoundingBox& box);
    SCNVector3 center() const;
};

}  // namespace flarebox
