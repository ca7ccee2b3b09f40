#pragma once

#include <Foundation/Clock.h>
#include <UIKit/Geometry.h>

#include <string>

namespace flarebox::openglgame {

struct Screen {
    /// In points.
    CGSize size;
    /// Pixels per point.
    CGFloat scale = 1;
};

/// Writes a picture of the game with the open tab, drawn without a display, once the tab shows its first product.
/// Answers what went wrong; empty when nothing did.
std::string takePicture(const Screen& screen, VirtualClock& clock, const std::string& path);

}  // namespace flarebox::openglgame
