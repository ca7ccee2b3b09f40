#include <SceneKit/ZorbRendererUtils.h>

#include <SceneKit/SCNScene.h>
#include <SceneKit/SCNView.h>
#include <SceneKit/SceneEngine.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace flarebox {
namespace {

/// The part of the view that a model may fill.
constexpr double fill = 0.92;

/// How large something may be that reaches `across` sideways and `deep` towards the onlooker, for its outline to stay
/// within a half-angle of the given tangent.
double largestScale(double across, double deep, double tangent) {
    return detail::SceneCamera::distance * tangent / (across + deep * tangent);
}

}  // namespace

void ZorbRendererUtils::loadDefaultSceneForView(SCNView& view) {
    const auto scene = make<SCNScene>();
    scene->setHasStudioLight(true);
    scene->setHasFloorGlow(true);
    view.setScene(scene);
}

void ZorbRendererUtils::scaleNode(SCNNode& node, SCNView& forView) {
    const SCNBoundingBox box = node.boundingBox();
    if (box.isEmpty()) return;
    const SCNVector3 center = box.center();
    const double radius = std::hypot(box.max.x - center.x, box.max.z - center.z);
    const double height = box.max.y - center.y;
    const double tilt = detail::Turntable::restingPitch;
    const double up = height * std::cos(tilt) + radius * std::sin(tilt);
    const double deep = height * std::sin(tilt) + radius * std::cos(tilt);
    if (!(radius + height > 0) || !std::isfinite(radius + height)) return;

    const CGSize size = forView.bounds().size;
    const double smaller = std::max(1.0, std::min(size.width, size.height));
    const double tangent = std::tan(detail::SceneCamera::fieldOfView / 2 * std::numbers::pi / 180) * fill;
    const double scale = std::min(largestScale(radius, deep, tangent * std::max(1.0, size.width / smaller)),
                                  largestScale(up, deep, tangent * std::max(1.0, size.height / smaller)));
    const auto factor = static_cast<float>(scale);
    if (!(factor > 0) || !std::isfinite(factor)) return;
    node.setScale({factor, factor, factor});
    node.setPosition({-center.x * factor, -center.y * factor, -center.z * factor});
}

}  // namespace flarebox
