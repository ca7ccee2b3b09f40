#include <UIKit/PictureRoom.h>

#include <algorithm>
#include <cmath>

namespace flarebox {

CGRect placedByContentMode(CGSize picture, const CGRect& area, UIViewContentMode mode) {
    if (mode == UIViewContentMode::ScaleToFill || !(picture.width > 0) || !(picture.height > 0)) return area;
    const CGFloat across = area.width() / picture.width, down = area.height() / picture.height;
    const CGFloat factor = mode == UIViewContentMode::ScaleAspectFit ? std::min(across, down) : std::max(across, down);
    const CGSize size = {picture.width * factor, picture.height * factor};
    return CGRectMake(area.midX() - size.width / 2, area.midY() - size.height / 2, size.width, size.height);
}

PixelSize PictureRoom::sizeOf(PixelSize picture) const {
    constexpr CGFloat most = 1e6;
    const CGRect area = CGRectMake(0, 0, std::min(pixels.width, most), std::min(pixels.height, most));
    const CGSize placed = placedByContentMode({CGFloat(picture.width), CGFloat(picture.height)}, area, mode).size;
    const CGFloat excess = std::max(1.0, std::max(placed.width, placed.height) / longestSide);
    const auto side = [excess](CGFloat length, int own) {
        return static_cast<int>(std::clamp<CGFloat>(std::round(length / excess), 1, own));
    };
    return {side(placed.width, picture.width), side(placed.height, picture.height)};
}

}  // namespace flarebox
