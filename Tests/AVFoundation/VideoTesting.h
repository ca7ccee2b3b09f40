#pragma once

#include <AVFoundation/AVPlayer.h>
#include <AVFoundation/AVPlayerLayer.h>
#include <Host/Headless/HeadlessHost.h>
#include <Tests/Networking/ScriptedServer.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIWindow.h>

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace flarebox::testing {

/// The bytes of a video in the Media folder.
inline std::string media(std::string_view name) {
    std::ifstream file(std::string(MEDIA_FOLDER "/") + std::string(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The first byte that a request asks for; none when it asks for all.
inline std::optional<std::size_t> firstByteOf(const std::string& request) {
    for (const std::string& line : headerLines(request)) {
        constexpr std::string_view start = "Range: bytes=";
        if (line.starts_with(start)) return std::stoul(line.substr(start.size()));
    }
    return std::nullopt;
}

/// Answers as a file server does; without ranges it sends everything from the beginning.
inline void answerFile(ScriptedServer::Connection& connection, const std::string& request, std::string_view file,
                       bool hasRanges = true) {
    const std::optional<std::size_t> first = hasRanges ? firstByteOf(request) : std::nullopt;
    if (!first || *first == 0) {
        connection.answer("200 OK", hasRanges ? "Accept-Ranges: bytes\r\n" : "", file);
        return;
    }
    if (*first >= file.size()) {
        connection.answer("416 Range Not Satisfiable", "Content-Range: bytes */" + std::to_string(file.size()) + "\r\n",
                          "");
        return;
    }
    const std::string range = "Content-Range: bytes " + std::to_string(*first) + "-" + std::to_string(file.size() - 1) +
                              "/" + std::to_string(file.size()) + "\r\n";
    connection.answer("206 Partial Content", range, file.substr(*first));
}

inline ScriptedServer::Script serving(std::string file, bool hasRanges = true) {
    return answering(
        [file = std::move(file), hasRanges](ScriptedServer::Connection& connection, const std::string& request) {
            answerFile(connection, request, file, hasRanges);
        });
}

/// How much longer everything may take than in a plain build.
inline double slowness() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return 10;
#else
    return 1;
#endif
}

/// A window of 320 x 240 points without a display, and players without sound.
class VideoTest : public ::testing::Test {
protected:
    explicit VideoTest(CGSize screen = {320, 240}) : host(screen, 1) {
        AVPlayerSettings settings;
        settings.hasSound = false;
        AVPlayer::setSettings(settings);
    }
    ~VideoTest() override { AVPlayer::setSettings({}); }
    void SetUp() override {
        if (!VideoPipeline::isSupported()) GTEST_SKIP() << "This build cannot play videos.";
    }

    UIWindow& window() { return *UIApplication::sharedApplication().keyWindow(); }

    Ref<AVPlayer> playerOf(const ScriptedServer& server, std::string_view path = "/video") {
        return AVPlayer::playerWithURL(NSURL::URLWithString(NSString(server.url(path))));
    }
    /// Over the whole window.
    Ref<AVPlayerLayer> show(const Ref<AVPlayer>& player) {
        auto layer = AVPlayerLayer::playerLayerWithPlayer(player);
        layer->setFrame(window().bounds());
        window().addSubview(*layer);
        return layer;
    }

    void frame() {
        host.update(1e9);
        if (host.needsDisplay()) host.drawFrame();
    }
    /// Runs frames until the condition holds; false when `seconds` of real time have passed first.
    bool until(const std::function<bool()>& condition, double seconds = 30) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        for (frame(); !condition(); frame()) {
            if (std::chrono::steady_clock::now() > deadline) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return true;
    }

    std::uint32_t pixelAt(CGPoint point) {
        return host.picture().pixelAt(static_cast<int>(point.x), static_cast<int>(point.y));
    }
    /// The name of the nearest pure colour in the middle of the window: 'r', 'g', 'b', 'k' for black, '?' otherwise.
    char shownColor() { return colorOf(pixelAt({window().bounds().midX(), window().bounds().midY()})); }
    static char colorOf(std::uint32_t pixel) {
        const auto isHigh = [&](int shift) { return (pixel >> shift & 255) > 200; };
        const auto isLow = [&](int shift) { return (pixel >> shift & 255) < 50; };
        if (isHigh(16) && isLow(8) && isLow(0)) return 'r';
        if (isLow(16) && isHigh(8) && isLow(0)) return 'g';
        if (isLow(16) && isLow(8) && isHigh(0)) return 'b';
        return isLow(16) && isLow(8) && isLow(0) ? 'k' : '?';
    }

    HeadlessHost host;
};

}  // namespace flarebox::testing
