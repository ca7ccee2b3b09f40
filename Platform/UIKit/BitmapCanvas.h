#pragma once

#include <UIKit/Canvas.h>

#include <atomic>
#include <cstdint>
#include <memory>

namespace flarebox {

/// A canvas that draws into memory: `height` rows of `width` pixels, `stridePixels` (at least `width`) apart, each
/// 0xAARRGGBB in the machine's byte order with the colour premultiplied by the alpha. It draws over what is there.
/// `scale` is the number of pixels per point, above 0. The memory must outlive the canvas and is up to date after each
/// call. Main thread.
std::unique_ptr<Canvas> makeBitmapCanvas(std::uint32_t* pixels, int width, int height, int stridePixels, CGFloat scale);

/// Opens the fonts of ordinary texts one after the other, until told to stop, and lays out the texts that are asked for
/// meanwhile. Any thread; texts may be drawn meanwhile.
void openUsualFonts(const std::atomic<bool>& stops);
/// Whether a text has been measured or drawn, or fonts have been opened, in this process. Any thread.
bool fontsAreInUse();

/// How many texts have been broken into lines so far, which a text that is remembered is not: for measurements and
/// tests. Main thread.
std::uint64_t laidOutTextCount();

}  // namespace flarebox
