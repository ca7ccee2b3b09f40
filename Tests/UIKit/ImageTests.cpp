#include <UIKit/UIImage.h>

#include <Foundation/Values.h>

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <string>
#include <thread>

namespace flarebox::testing {
namespace {

// All show 8 x 4 pixels, the left half (200, 40, 40), the right half (40, 60, 220); the last GIF has a second, green
// frame.
constexpr const char* png =
    "iVBORw0KGgoAAAANSUhEUgAAAAgAAAAECAIAAAA8r+mnAAAAGUlEQVQI12M8oaHBAAMJIlvgbCYGHIB0CQDQ4AJIBM/tYwAAAABJRU5ErkJggg==";
constexpr const char* jpeg =
    "/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDAAMCAgICAgMCAgIDAwMDBAYEBAQEBAgGBgUGCQgKCgkICQkKDA8MCgsOCwkJDRENDg8Q"
    "EBEQCgwSExIQEw8QEBD/2wBDAQMDAwQDBAgEBAgQCwkLEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQ"
    "EBAQEBAQEBAQEBD/wAARCAAEAAgDAREAAhEBAxEB/8QAFAABAAAAAAAAAAAAAAAAAAAACP/EABgQAAIDAAAAAAAAAAAAAAAAAAAFQ4LB"
    "/8QAFAEBAAAAAAAAAAAAAAAAAAAAB//EABkRAAIDAQAAAAAAAAAAAAAAAABFB4PDCP/aAAwDAQACEQMRAD8AP72C2CXz0yp1EyfF9uR//9k=";
constexpr const char* webp = "UklGRiIAAABXRUJQVlA4TBYAAAAvB8AAAA9wHvajgJ6Je/6DB32I6H8A";
constexpr const char* lossyWebp =
    "UklGRk4AAABXRUJQVlA4IEIAAACQAgCdASoIAAQAAUAmJagCdLoBQAPwArv/cAAcGAD+83/mm+E8Gj/FuaLM/+2T6UbssP/jH/"
    "3byvN+tuEcdqywoAA=";
constexpr const char* gif =
    "R0lGODlhCAAEAPEAAMgoKCg83P///wAAACH5BAAAAAAAIf8LSW1hZ2VNYWdpY2sNZ2FtbWE9MC40NTQ1NQAsAAAAAAgABAAAAgiEERmHyroOLAA7";
constexpr const char* animatedGif =
    "R0lGODlhCAAEAPEAAMgoKCg83P///wAAACH5BAAAAAAAIf8LTkVUU0NBUEUyLjADAQAAACH/C0ltYWdlTWFnaWNrDWdhbW1hPTAu"
    "NDU0NTUALAAAAAAIAAQAAAIIhBEZh8q6DiwAIfkEAAAAAAAsAAAAAAgABACAAIAAAAAAAgWEj6mLBQA7";
// 4 x 4 pixels of half-transparent red.
constexpr const char* translucentPng =
    "iVBORw0KGgoAAAANSUhEUgAAAAQAAAAECAYAAACp8Z5+AAAAFUlEQVQI12P8z8BQz4AEmBjQAGEBAGPRAYYLD8ztAAAAAElFTkSuQmCC";

std::string bytesOf(const char* base64) {
    return std::string(NSData::dataWithBase64EncodedString(base64).text());
}

Ref<UIImage> decode(const std::string& bytes, Ref<NSError>* error = nullptr, const PictureRoom& room = {}) {
    return UIImage::imageWithData(std::as_bytes(std::span(bytes)), error, room);
}

void expectColor(std::uint32_t pixel, std::uint32_t expected, int tolerance) {
    for (int shift = 0; shift < 32; shift += 8)
        EXPECT_NEAR(static_cast<int>(pixel >> shift & 255), static_cast<int>(expected >> shift & 255), tolerance);
}

TEST(Image, DecodesEveryFormat) {
    struct Case {
        const char* name;
        const char* data;
        int tolerance;
    };
    const Case cases[] = {{"PNG", png, 0},   {"JPEG", jpeg, 10},
                          {"WebP", webp, 0}, {"lossy WebP", lossyWebp, 40},
                          {"GIF", gif, 0},   {"first frame of a GIF", animatedGif, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Ref<NSError> error;
        const auto image = decode(bytesOf(c.data), &error);
        ASSERT_TRUE(image) << error->localizedDescription();
        ASSERT_EQ(image->pixelWidth(), 8);
        ASSERT_EQ(image->pixelHeight(), 4);
        EXPECT_EQ(image->byteCost(), 8U * 4 * 4);
        expectColor(image->pixels()[0], 0xFFC82828, c.tolerance);
        expectColor(image->pixels()[31], 0xFF283CDC, c.tolerance);
    }
}

TEST(Image, ColorsArePremultiplied) {
    const auto image = decode(bytesOf(translucentPng));
    ASSERT_TRUE(image);
    expectColor(image->pixels()[5], 0x80800000, 1);
}

TEST(Image, RefusesWhatItCannotOrMustNotRead) {
    const auto oversizedPng = [] {
        std::string bytes = bytesOf(png);
        bytes.replace(16, 8, std::string("\0\0\x4E\x20\0\0\x4E\x20", 8));
        return bytes;
    };
    const auto oversizedGif = [] {
        // The screen stays small; only the frame claims to be huge.
        std::string bytes = bytesOf(gif);
        bytes.replace(bytes.find(std::string("\x2C\0\0\0\0", 5)) + 5, 4, "\xFF\xFF\xFF\xFF");
        return bytes;
    };
    const auto oversizedJpeg = [] {
        std::string bytes = bytesOf(jpeg);
        bytes.replace(bytes.find("\xFF\xC0") + 5, 4, "\xFF\xDC\xFF\xDC");
        return bytes;
    };
    const auto manyScans = [] {
        const std::string bytes = bytesOf(jpeg);
        const auto start = bytes.find("\xFF\xDA");
        const std::string scan = bytes.substr(start, bytes.size() - 2 - start);
        std::string many = bytes.substr(0, start);
        for (int i = 0; i < 1000; ++i) many += scan;
        return many + "\xFF\xD9";
    };
    struct Case {
        const char* name;
        std::string data;
        int code;
    };
    const Case cases[] = {
        {"nothing", "", NSURLErrorCannotDecodeContentData},
        {"a page", "<html><body>Not found</body></html>", NSURLErrorCannotDecodeContentData},
        {"another format", std::string("BM\x46\0\0\0\0\0\0\0\x36\0\0\0", 14), NSURLErrorCannotDecodeContentData},
        {"a signature alone", "\x89PNG\r\n\x1A\n", NSURLErrorCannotDecodeContentData},
        {"half a PNG", bytesOf(png).substr(0, 50), NSURLErrorCannotDecodeContentData},
        {"half a JPEG", bytesOf(jpeg).substr(0, 280), NSURLErrorCannotDecodeContentData},
        {"a JPEG of countless scans", manyScans(), NSURLErrorCannotDecodeContentData},
        {"half a WebP", bytesOf(webp).substr(0, 30), NSURLErrorCannotDecodeContentData},
        {"no frame in a GIF", bytesOf(gif).substr(0, 40), NSURLErrorCannotDecodeContentData},
        {"a PNG of 400 megapixels", oversizedPng(), NSURLErrorDataLengthExceedsMaximum},
        {"a GIF with a huge frame", oversizedGif(), NSURLErrorDataLengthExceedsMaximum},
        {"a JPEG of 4,295 megapixels", oversizedJpeg(), NSURLErrorDataLengthExceedsMaximum},
        {"too much data", bytesOf(png) + std::string(UIImage::maximumDataLength, '\0'),
         NSURLErrorDataLengthExceedsMaximum},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Ref<NSError> error;
        EXPECT_FALSE(decode(c.data, &error));
        ASSERT_TRUE(error);
        EXPECT_EQ(error->domain(), NSURLErrorDomain);
        EXPECT_EQ(error->code(), c.code) << error->localizedDescription();
        EXPECT_FALSE(error->localizedDescription().empty());
    }
    EXPECT_FALSE(UIImage::imageWithData(NSData()));
    EXPECT_FALSE(UIImage::imageWithPixels(2, 2, std::vector<std::uint32_t>(3)));
    EXPECT_FALSE(UIImage::imageWithPixels(-1, -1, std::vector<std::uint32_t>(1)));
}

TEST(Image, SurvivesDamagedData) {
    std::mt19937 random(20260101);
    for (const char* sample : {png, jpeg, webp, lossyWebp, gif, animatedGif}) {
        const std::string whole = bytesOf(sample);
        for (std::size_t length = 0; length < whole.size(); ++length) decode(whole.substr(0, length));
        for (int round = 0; round < 300; ++round) {
            std::string damaged = whole;
            for (int i = 0; i < 4; ++i) damaged[random() % damaged.size()] = static_cast<char>(random());
            const auto image = decode(damaged, nullptr, {{64, 64}});
            EXPECT_LE(image ? std::max(image->pixelWidth(), image->pixelHeight()) : 0, 64);
        }
    }
}

TEST(Image, DecodesOnManyThreadsAtOnce) {
    std::atomic<int> decoded = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&decoded] {
            for (const char* sample : {gif, png, jpeg, webp, animatedGif})
                for (int round = 0; round < 20; ++round) decoded += decode(bytesOf(sample)) ? 1 : 0;
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(decoded, 4 * 5 * 20);
}

TEST(Image, GetsSmallerByAveraging) {
    // Columns of white and of nothing, and one row that differs.
    std::vector<std::uint32_t> stripes;
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x) stripes.push_back(y == 5 ? 0xFF000000 : x % 2 == 0 ? 0xFFFFFFFF : 0);
    const auto image = UIImage::imageWithPixels(8, 6, stripes, 2);
    EXPECT_EQ(image->size(), (CGSize{4, 3}));

    const auto half = image->resampledTo({4, 3});
    ASSERT_EQ(half->pixels().size(), 12U);
    expectColor(half->pixels()[0], 0x80808080, 1);
    expectColor(half->pixels()[8], 0xBF404040, 1);
    expectColor(image->resampledTo({1, 1})->pixels()[0], 0x956A6A6A, 2);
    // Sizes that do not divide each other keep the mean.
    const auto plain = UIImage::imageWithPixels(7, 5, std::vector<std::uint32_t>(35, 0xFF3264C8))->resampledTo({3, 2});
    EXPECT_EQ(plain->pixels().size(), 6U);
    for (const std::uint32_t pixel : plain->pixels()) expectColor(pixel, 0xFF3264C8, 1);
}

TEST(Image, TakesNoMorePixelsThanItsRoom) {
    const auto whole = decode(bytesOf(png));
    const NSData data = NSData::dataWithBytes(bytesOf(png));
    const CGFloat width = whole->pixelWidth(), height = whole->pixelHeight();
    // The data is kept where that takes less memory than the pixels left out.
    const std::pair<PictureRoom, bool> sizes[] = {{{{4, 4}}, true}, {{{width - 1, height}}, false}};
    for (const auto& [room, keepsData] : sizes) {
        const auto image = UIImage::imageWithData(data, nullptr, room);
        EXPECT_TRUE(image->isReduced());
        EXPECT_EQ(image->size(), whole->size()) << "layout does not depend on the pixels that are kept";
        EXPECT_EQ(image->byteCost(), image->pixels().size_bytes() + (keepsData ? data.length() : 0));
        EXPECT_EQ(image->sizedFor(room), image);
        EXPECT_EQ(image->canBeSizedFor({}), keepsData);
        const auto larger = image->sizedFor({});
        EXPECT_TRUE(larger->isSamePictureAs(*image));
        EXPECT_EQ(std::ranges::equal(larger->pixels(), whole->pixels()), keepsData);
        EXPECT_FALSE(image->isSamePictureAs(*whole));
    }
    EXPECT_TRUE(whole->sizedFor({{2, 2}})->isSamePictureAs(*whole));

    using enum UIViewContentMode;
    const std::pair<PictureRoom, PixelSize> rooms[] = {
        {{{10, 10}, ScaleAspectFit}, {10, 5}},      {{{10, 10}, ScaleAspectFill}, {20, 10}},
        {{{10, 10}, ScaleToFill}, {10, 10}},        {{{1000, 10}, ScaleToFill}, {100, 10}},
        {{{0, 0}, ScaleAspectFill}, {1, 1}},        {{{1000, 1000}, ScaleAspectFill}, {100, 50}},
        {{{10, 40}, ScaleAspectFill, 16}, {16, 8}}, {{}, {100, 50}},
    };
    for (const auto& [room, size] : rooms) {
        EXPECT_EQ(room.sizeOf({100, 50}), size) << room.pixels.width << " x " << room.pixels.height;
    }
}

TEST(Image, KeepsItsProportions) {
    struct Case {
        int width, height;
        CGSize limit;
        int expectedWidth, expectedHeight;
    };
    const Case cases[] = {
        {100, 50, {10, 10}, 10, 5}, {50, 100, {10, 10}, 5, 10}, {100, 50, {1000, 1000}, 100, 50},
        {100, 1, {10, 10}, 10, 1},  {100, 50, {0, 0}, 1, 1},    {100, 50, {40, 5}, 10, 5},
    };
    for (const Case& c : cases) {
        const auto pixels = static_cast<std::size_t>(c.width * c.height);
        const auto image = UIImage::imageWithPixels(c.width, c.height, std::vector<std::uint32_t>(pixels, 0xFF112233));
        const auto small = image->resampledTo(UIImage::Room{c.limit}.sizeOf(image->pixelSize()));
        EXPECT_EQ(small->pixelWidth(), c.expectedWidth);
        EXPECT_EQ(small->pixelHeight(), c.expectedHeight);
    }
    const auto decoded = decode(bytesOf(png), nullptr, {{4, 4}});
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->pixelWidth(), 4);
    EXPECT_EQ(decoded->pixelHeight(), 2);
    expectColor(decoded->pixels()[0], 0xFFC82828, 0);
}

}  // namespace
}  // namespace flarebox::testing
