#pragma once

#include <UIKit/Canvas.h>

#include <cairo.h>

#include <string_view>

namespace flarebox::text {

/// Draws the text within the rectangle, in the user space of the context, which must not be rotated for lines to be
/// sharp.
void draw(cairo_t& cairo, std::string_view text, const TextStyle& style, const CGRect& rect);

}  // namespace flarebox::text
