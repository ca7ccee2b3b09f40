#include <Foundation/LogSink.h>
#include <Host/Headless/Backend/PNGFile.h>

#include <cairo.h>

namespace flarebox {

bool writePNG(const std::string& path, std::span<const std::uint32_t> pixels, int width, int height) {
    // The library only reads from a surface that is written to a file.
    auto* bytes = reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(pixels.data()));
    cairo_surface_t* surface =
        cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_ARGB32, width, height, width * 4);
    const cairo_status_t status = cairo_surface_write_to_png(surface, path.c_str());
    cairo_surface_destroy(surface);
    if (status == CAIRO_STATUS_SUCCESS) return true;
    LogSink::write(LogLevelError, path + " cannot be written: " + cairo_status_to_string(status));
    return false;
}

}  // namespace flarebox
