#include "GameProcess.h"

#include <UIKit/UIImage.h>

#include <Examples/Service/Service.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <set>

namespace flarebox::testing {
namespace {

Ref<UIImage> picture(const TemporaryDirectory& folder, const std::string& name) {
    return UIImage::imageWithData(NSData::dataWithBytes(folder.read(name)));
}

std::size_t colorsIn(const UIImage& image) {
    return std::set<std::uint32_t>(image.pixels().begin(), image.pixels().end()).size();
}

/// Share of the pixels that differ, of those left or right of the column.
double difference(const UIImage& a, const UIImage& b, int from, int to) {
    int count = 0;
    for (int y = 0; y < a.pixelHeight(); ++y) {
        for (int x = from; x < to; ++x) {
            const auto place =
                static_cast<std::size_t>(y) * static_cast<std::size_t>(a.pixelWidth()) + static_cast<std::size_t>(x);
            count += a.pixels()[place] != b.pixels()[place];
        }
    }
    return static_cast<double>(count) / ((to - from) * a.pixelHeight());
}

TEST(PictureTest, ShowsTheOpenTabOverTheGame) {
    const TemporaryDirectory folder;
    const GameResult opened = runGame(folder, {"--size", "667x375", "--screenshot", "open.png"});
    ASSERT_EQ(opened.status, 0) << opened.errors;
    // As many frames of the game pass as before the other picture, without the tab.
    const std::string script = folder.write("s.script", "wait 0.5\nawait idle 60\nwait 0.5\n");
    const GameResult closed = runGame(folder, {"--size", "667x375", "--script", script, "--screenshot", "closed.png"});
    ASSERT_EQ(closed.status, 0) << closed.errors;

    const Ref<UIImage> open = picture(folder, "open.png"), closedPicture = picture(folder, "closed.png");
    ASSERT_TRUE(open && closedPicture);
    ASSERT_EQ(open->pixelWidth(), 1334);
    ASSERT_EQ(open->pixelHeight(), 750);
    EXPECT_GT(colorsIn(*open), 1000U) << "a picture of one product and icons of several have many colours";
    const int panelWidth = 480;
    EXPECT_GT(difference(*open, *closedPicture, 0, panelWidth), 0.9);
    EXPECT_LT(difference(*open, *closedPicture, 700, 1334), 0.001) << "beside the panel the game is untouched";
}

TEST(PictureTest, IsTheSameForTheSameScript) {
    const TemporaryDirectory folder;
    const std::string script =
        folder.write("s.script",
                     "await idle 60\ncall open\nwait 0.15\nscreenshot sliding.png\nwait 0.3\nawait idle 60\nswipe "
                     "collectionView left\n"
                     "wait 1\nawait idle 60\nwait 0.3\nscreenshot scrolled.png\ntap 600 100\nwait 0.3\n");
    std::set<std::string> sliding, scrolled, last;
    for (int i = 0; i < 2; ++i) {
        const GameResult result =
            runGame(folder, {"--size", "667x375", "--script", script, "--screenshot", "last.png"});
        ASSERT_EQ(result.status, 0) << result.errors;
        sliding.insert(folder.read("sliding.png"));
        scrolled.insert(folder.read("scrolled.png"));
        last.insert(folder.read("last.png"));
    }
    EXPECT_EQ(sliding.size(), 1U);
    EXPECT_EQ(scrolled.size(), 1U);
    EXPECT_EQ(last.size(), 1U);
    EXPECT_NE(*scrolled.begin(), *last.begin()) << "the shot fired by the tap beside the panel is to be seen";
}

#ifdef FLAREBOX_OPENGLGAME
/// Largest difference of one colour, of the pixels left of the column.
int largestDifference(const UIImage& a, const UIImage& b, int columns) {
    int largest = 0;
    for (int y = 0; y < a.pixelHeight(); ++y) {
        for (int x = 0; x < columns; ++x) {
            const auto place = static_cast<std::size_t>(y * a.pixelWidth() + x);
            for (const int shift : {0, 8, 16}) {
                const auto part = [&](const UIImage& image) {
                    return static_cast<int>(image.pixels()[place] >> shift & 255);
                };
                largest = std::max(largest, std::abs(part(a) - part(b)));
            }
        }
    }
    return largest;
}

TEST(PictureTest, IsTheSameThroughOpenGL) {
    const TemporaryDirectory folder;
    const GameResult result =
        runProgram(folder, FLAREBOX_OPENGLGAME, {"--headless", "--size", "667x375", "--screenshot", "opengl.png"});
    if (result.errors.find("there is no") != std::string::npos) GTEST_SKIP() << result.errors;
    ASSERT_EQ(result.status, 0) << result.errors;
    ASSERT_EQ(runGame(folder, {"--size", "667x375", "--screenshot", "sample.png"}).status, 0);
    const Ref<UIImage> opengl = picture(folder, "opengl.png"), sample = picture(folder, "sample.png");
    ASSERT_TRUE(opengl && sample);
    ASSERT_EQ(opengl->pixelWidth(), sample->pixelWidth());
    ASSERT_EQ(opengl->pixelHeight(), sample->pixelHeight());
    const int opaquePanel = 460;
    EXPECT_LE(largestDifference(*opengl, *sample, opaquePanel), 3);

    const GameResult window = runProgram(folder, FLAREBOX_OPENGLGAME, {});
    EXPECT_EQ(window.status, 1);
    EXPECT_NE(window.errors.find("cannot open a window"), std::string::npos) << window.errors;
}
#endif

TEST(PictureTest, ComesFromAWindowToo) {
    const TemporaryDirectory folder;
    const GameResult result =
        runProgram(folder, FLAREBOX_HOSTGAME, {"--size", "667x375", "--screenshot", "window.png"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Ref<UIImage> window = picture(folder, "window.png");
    ASSERT_TRUE(window);
    EXPECT_EQ(window->pixelWidth(), 667);
    EXPECT_EQ(window->pixelHeight(), 375);
    EXPECT_GT(colorsIn(*window), 1000U);
}

TEST(WindowTest, ScriptInAWindowGoesOnUntilThePlayerLeaves) {
    const TemporaryDirectory folder;
    const std::string script = folder.write(
        "s.script",
        "await idle 60\ntap btnOpen\nwait 0.4\ndump s.json\norientation portrait 300x500\ndump done.json\n");
    // For SDL the signal is the player who closes the window.
    const GameResult result = runProgram(folder, FLAREBOX_HOSTGAME, {"--size", "667x375", "--script", script},
                                         [&](int) { return folder.has("done.json"); });
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(folder.read("s.json").find("\"isOpened\":true"), std::string::npos);
}

TEST(WindowTest, ShortestGameRuns) {
    const TemporaryDirectory folder;
    const auto start = std::chrono::steady_clock::now();
    const GameResult result = runProgram(folder, FLAREBOX_INTEGRATION, {}, [&](int process) {
        return handlesTermination(process) && std::chrono::steady_clock::now() - start > std::chrono::seconds(1);
    });
    EXPECT_EQ(result.status, 0) << result.errors;
}

/// Plays a sample game of another language, which writes what it shows, with so many pixels for a point.
void expectOpenTab(const std::string& program, std::vector<std::string> arguments, std::size_t scale) {
    examples::Service service;
    ASSERT_TRUE(service.start());
    const TemporaryDirectory folder;
    arguments.insert(arguments.end(), {service.baseURL(), "picture.ppm"});
    const GameResult result = runProgram(folder, program, arguments);
    EXPECT_EQ(result.status, 0) << result.errors;
    // A title, a point to the right of the panel's edge, and the game beside the panel.
    const std::string picture = folder.read("picture.ppm");
    const std::size_t wide = 667 * scale, high = 375 * scale;
    const std::size_t head =
        std::string("P6\n \n255\n").size() + std::to_string(wide).size() + std::to_string(high).size();
    ASSERT_EQ(picture.size(), head + wide * high * 3);
    const auto pixel = [&](std::size_t x, std::size_t y) {
        return picture.substr(head + (y * scale * wide + x * scale) * 3, 3);
    };
    EXPECT_EQ(pixel(600, 150), "\x28\x46\x78");
    EXPECT_NE(pixel(30, 150), "\x28\x46\x78");
    EXPECT_NE(result.output.find(": "), std::string::npos) << "no product was told of";
}

TEST(LanguageTest, GameInCShowsTheOpenTab) {
    expectOpenTab(FLAREBOX_CGAME, {}, 2);
}

#ifdef FLAREBOX_LIBRARY
TEST(LanguageTest, GameInPythonShowsTheOpenTab) {
    expectOpenTab(PYTHON, {"-B", FLAREBOX_PYTHONGAME, FLAREBOX_LIBRARY}, 1);
}
#endif

}  // namespace
}  // namespace flarebox::testing
