#include <UIKit/AreaAverager.h>
#include <UIKit/ByteReader.h>
#include <UIKit/GIFDecoder.h>
#include <UIKit/ImageHeader.h>
#include <UIKit/UIImage.h>

#include <SDL.h>
#include <SDL_image.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace flarebox {
namespace {

struct SurfaceRelease {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};
using Surface = std::unique_ptr<SDL_Surface, SurfaceRelease>;

Ref<UIImage> fail(Ref<NSError>* error, NSURLErrorCode code, const std::string& reason) {
    if (error) *error = NSError::errorWithDomain(NSURLErrorDomain, code, reason);
    return nullptr;
}

// A picture that gets better with each scan has about ten of them; thousands would keep the decoder busy for minutes.
constexpr int mostScans = 32;

/// What the library takes for success: a JPEG that was cut off, whose rest it fills with grey, and one of countless
/// scans.
const char* faultOfJPEG(std::span<const std::byte> data) {
    const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
    if (text.rfind("\xFF\xD9") == std::string_view::npos) return "The picture is cut off";
    int scans = 0;
    for (auto at = text.find("\xFF\xDA"); at != std::string_view::npos; at = text.find("\xFF\xDA", at + 2)) ++scans;
    return scans > mostScans ? "The picture has too many scans" : nullptr;
}

/// The library reads on, for minutes or for ever, where a chunk is longer than the data or the last one is missing.
const char* faultOfPNG(std::span<const std::byte> data) {
    constexpr std::uint32_t lastChunk = 0x49454E44;
    ByteReader bytes(data);
    bytes.skip(8);
    for (bool isLast = false; bytes.ok() && !isLast;) {
        const std::size_t length = bytes.bigEndian(4);
        isLast = bytes.bigEndian(4) == lastChunk;
        bytes.skip(length + 4);
    }
    return bytes.ok() ? nullptr : "The picture is cut off";
}

Surface readSurface(ImageFormat format, std::span<const std::byte> data) {
    static std::once_flag once;
    std::call_once(once, [] { IMG_Init(IMG_INIT_PNG | IMG_INIT_JPG | IMG_INIT_WEBP); });
    struct StreamRelease {
        void operator()(SDL_RWops* stream) const { SDL_RWclose(stream); }
    };
    const std::unique_ptr<SDL_RWops, StreamRelease> stream(
        SDL_RWFromConstMem(data.data(), static_cast<int>(data.size())));
    if (!stream) return nullptr;
    switch (format) {
        case ImageFormat::PNG:
            return Surface(IMG_LoadPNG_RW(stream.get()));
        case ImageFormat::JPEG:
            return Surface(IMG_LoadJPG_RW(stream.get()));
        case ImageFormat::WebP:
            return Surface(IMG_LoadWEBP_RW(stream.get()));
        case ImageFormat::GIF:
            break;
    }
    return nullptr;
}

/// The surface with rows that can be converted one at a time: pictures with a palette or a transparent colour are
/// converted whole.
Surface withDirectColors(Surface surface) {
    if (!SDL_ISPIXELFORMAT_INDEXED(surface->format->format) && !SDL_HasColorKey(surface.get())) return surface;
    return Surface(SDL_ConvertSurfaceFormat(surface.get(), SDL_PIXELFORMAT_ARGB8888, 0));
}

std::uint32_t premultiplied(std::uint32_t pixel) {
    const std::uint32_t alpha = pixel >> 24;
    if (alpha == 255) return pixel;
    const auto times = [alpha](std::uint32_t value) { return (value * alpha + 127) / 255; };
    return alpha << 24 | times(pixel >> 16 & 255) << 16 | times(pixel >> 8 & 255) << 8 | times(pixel & 255);
}

/// The library hands the inks of a JPEG in four colours over as they are, stored as such files do: 255 is no ink.
std::uint32_t mixed(const std::byte* inks) {
    const auto level = [inks](int i) { return std::to_integer<std::uint32_t>(inks[i]); };
    const auto times = [&](int i) { return (level(i) * level(3) + 127) / 255; };
    return 0xFF000000 | times(0) << 16 | times(1) << 8 | times(2);
}

bool readRow(const SDL_Surface& surface, bool isFourColor, int y, std::span<std::uint32_t> row) {
    const auto* bytes = static_cast<const std::byte*>(surface.pixels) + static_cast<std::ptrdiff_t>(y) * surface.pitch;
    if (isFourColor && surface.format->BytesPerPixel == 4) {
        for (std::size_t x = 0; x < row.size(); ++x) row[x] = mixed(bytes + 4 * x);
        return true;
    }
    if (SDL_ConvertPixels(surface.w, 1, surface.format->format, bytes, surface.pitch, SDL_PIXELFORMAT_ARGB8888,
                          row.data(), surface.w * 4) != 0)
        return false;
    for (std::uint32_t& pixel : row) pixel = premultiplied(pixel);
    return true;
}

/// Empty when the colours cannot be converted.
std::vector<std::uint32_t> pixelsOfSurface(const SDL_Surface& surface, bool isFourColor, UIImage::PixelSize size) {
    const bool isWhole = size == UIImage::PixelSize{surface.w, surface.h};
    AreaAverager averager(surface.w, surface.h, size.width, size.height);
    std::vector<std::uint32_t> row(static_cast<std::size_t>(surface.w)), pixels;
    if (isWhole) pixels.reserve(row.size() * static_cast<std::size_t>(surface.h));
    for (int y = 0; y < surface.h; ++y) {
        if (!readRow(surface, isFourColor, y, row)) return {};
        if (isWhole)
            pixels.insert(pixels.end(), row.begin(), row.end());
        else
            averager.addRow(row);
    }
    return isWhole ? pixels : averager.takePixels();
}

}  // namespace

Ref<UIImage> UIImage::decode(const Source& source, Ref<NSError>* error, const Room& room) {
    const std::span<const std::byte> data = source.bytes;
    const auto keep = [&](PixelSize whole, PixelSize size, std::vector<std::uint32_t> pixels) {
        auto origin = source.origin;
        if (!origin) {
            const bool keepsData = data.size() < (whole.count() - size.count()) * sizeof(std::uint32_t);
            origin = std::make_shared<const Origin>(Origin{whole, 1, keepsData ? source.data : NSData()});
        }
        return make<UIImage>(size, std::move(pixels), std::move(origin));
    };
    if (data.size() > maximumDataLength)
        return fail(error, NSURLErrorDataLengthExceedsMaximum, "The picture's data is longer than 8 MiB");
    const auto header = readImageHeader(data);
    if (!header) return fail(error, NSURLErrorCannotDecodeContentData, "The data is no PNG, JPEG, GIF or WebP picture");
    if (header->width > 32'767 || header->height > 32'767 || header->width * header->height > maximumPixelCount)
        return fail(error, NSURLErrorDataLengthExceedsMaximum,
                    "The picture is too large: " + std::to_string(header->width) + " x " +
                        std::to_string(header->height) + " pixels");
    const char* fault = header->format == ImageFormat::JPEG  ? faultOfJPEG(data)
                        : header->format == ImageFormat::PNG ? faultOfPNG(data)
                                                             : nullptr;
    if (fault) return fail(error, NSURLErrorCannotDecodeContentData, fault);
    if (header->format == ImageFormat::GIF) {
        const Ref<UIImage> frame = decodeGIF(data);
        if (!frame) return fail(error, NSURLErrorCannotDecodeContentData, "The picture is damaged");
        const Ref<UIImage> sized = frame->sizedFor(room);
        return keep(frame->pixelSize(), sized->pixelSize(), {sized->pixels().begin(), sized->pixels().end()});
    }
    Surface surface = readSurface(header->format, data);
    if (surface) surface = withDirectColors(std::move(surface));
    if (!surface || surface->w < 1 || surface->h < 1)
        return fail(error, NSURLErrorCannotDecodeContentData, std::string("The picture is damaged: ") + SDL_GetError());
    const PixelSize whole{surface->w, surface->h}, size = room.sizeOf(whole);
    auto pixels = pixelsOfSurface(*surface, header->isFourColor, size);
    if (pixels.empty())
        return fail(error, NSURLErrorCannotDecodeContentData, "The picture's colours cannot be converted");
    return keep(whole, size, std::move(pixels));
}

}  // namespace flarebox
