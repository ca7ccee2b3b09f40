#include "NetworkTest.h"
#include "ScriptedServer.h"

#include <Foundation/MainQueue.h>
#include <Foundation/Shutdown.h>
#include <Networking/AFHTTPSessionManager.h>
#include <Networking/AFImageResponseSerializer.h>
#include <Networking/UIImageView+AFNetworking.h>
#include <UIKit/BitmapCanvas.h>

#include <gmock/gmock.h>

#include <atomic>
#include <string>
#include <vector>

namespace flarebox::testing {

namespace {

using ::testing::ElementsAre;
using Connection = ScriptedServer::Connection;

/// A red and a blue pixel.
const char* const twoPixels =
    "iVBORw0KGgoAAAANSUhEUgAAAAIAAAABCAYAAAD0In+KAAAADklEQVR42mP4z8AAQv8BD/kD/Zh51wAAAAAASUVORK5CYII=";
/// 400 x 200 grey pixels.
const char* const wide =
    "iVBORw0KGgoAAAANSUhEUgAAAZAAAADICAAAAADjfug+AAABJklEQVR42u3RMQEAAAzCMKQjHRM7dqQSmlSvigVABASIgAARECAC"
    "AkRABASIgAARECACAkRABASIgAARECACAkRABASIgAARECACAkRABASIgAARECACAkRABASIgAARECACAkRABASIgAARECACAkRA"
    "BASIgAARECACAkRABASIgAARECACAkRABASIgAARECACAkRAgAiIgAARECACAkRAgAiIgAARECACAkRAgAiIgAARECACAkRAgAiI"
    "gAARECACAkRAgAiIgAARECACAkRAgAiIgAARECACAkRAgAiIgAARECACAkRAgAiIgAARECACAkRAgAiIgAARECACAkRAgAgIEAER"
    "ECACAkRAgAgIEAERECACAkRAgAgIEAERECACAkSXDaPUSSUywj6sAAAAAElFTkSuQmCC";
/// Says that it measures 20,000 by 20,000 pixels.
const char* const enormous =
    "iVBORw0KGgoAAAANSUhEUgAATiAAAE4gCAYAAADjcEY5AAAAC0lEQVR42mNggAEAAAoAAewkA7kAAAAASUVORK5CYII=";

std::string bytesOf(const char* base64) {
    return std::string(NSData::dataWithBase64EncodedString(base64).text());
}

class ImageLoadingTest : public NetworkTest {
protected:
    /// While set, the server keeps its answers back.
    std::atomic<bool> held_ = false;
    ScriptedServer server_{answering([this](Connection& connection, const std::string& request) {
        const std::string line = firstLine(request);
        auto asks = [&](const char* path) { return line.find(path) != std::string::npos; };
        while (held_ && connection.pause(0.002)) {
        }
        if (asks("/missing"))
            connection.answer("404 Not Found", "Content-Type: text/html\r\n", "no");
        else if (asks("/text"))
            connection.answer("200 OK", "Content-Type: text/html\r\n", bytesOf(twoPixels));
        else if (asks("/broken"))
            connection.answer("200 OK", "Content-Type: image/png\r\n", "no picture");
        else if (asks("/enormous"))
            connection.answer("200 OK", "Content-Type: image/png\r\n", bytesOf(enormous));
        else if (asks("/wide"))
            connection.answer("200 OK", "Content-Type: image/png\r\n", bytesOf(wide));
        else if (asks("/none"))
            connection.answer("200 OK", "Content-Type: image/png\r\n", "");
        else if (asks("/long"))
            connection.send("HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nContent-Length: 99999999\r\n\r\n");
        else
            connection.answer("200 OK", "Content-Type: image/png\r\n", bytesOf(twoPixels));
    })};

    /// Starts a load that notes its end in `events_`, as "name: 2x1" or "name: error code".
    void start(const std::string& name, const std::string& url) {
        auto request = get(url);
        setImageWithURLRequest(
            *view_, request, nullptr,
            [this, name, request](auto& loaded, auto& response, auto& image) {
                EXPECT_EQ(loaded, request);
                events_.push_back(name + ": " + std::to_string(image->pixelWidth()) + "x" +
                                  std::to_string(image->pixelHeight()) + (response ? "" : " cached"));
            },
            [this, name, request](auto& failed, auto&, auto& error) {
                EXPECT_EQ(failed, request);
                events_.push_back(name + ": " + std::to_string(error->code()));
            });
    }

    Ref<UIImageView> view_ = make<UIImageView>();
    std::vector<std::string> events_;
};

}  // namespace

TEST_F(ImageLoadingTest, APictureComesInThePixelsThatTheViewShows) {
    view_->setFrame(CGRectMake(0, 0, 10, 5));
    bool isSized = false;
    setImageWithURLRequest(
        *view_, get(server_.url("/wide")), nullptr,
        [&](auto&, auto&, auto& image) {
            EXPECT_TRUE(isMainThread());
            EXPECT_EQ(image->pixelSize(), (PixelSize{10, 5}));
            isSized = true;
        },
        nullptr);
    // Somebody else wants it larger, and is served by the same transfer.
    AFImageDownloader::defaultInstance().downloadImageForURLRequest(
        get(server_.url("/wide")), {},
        [&](auto&, auto&, auto& image) {
            EXPECT_EQ(image->pixelSize(), (PixelSize{400, 200}));
        },
        nullptr);
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_TRUE(isSized);
    EXPECT_EQ(server_.requests().size(), 1U);
}

TEST_F(ImageLoadingTest, OneTransferServesEverybodyWhoAsks) {
    held_ = true;
    start("a", server_.url("/p"));
    start("b", server_.url("/p"));
    start("other", server_.url("/q"));
    EXPECT_TRUE(events_.empty());
    held_ = false;
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_THAT(events_, ::testing::UnorderedElementsAre("a: 2x1", "b: 2x1", "other: 2x1"));
    EXPECT_EQ(server_.requests().size(), 2u);
    EXPECT_FALSE(view_->image()) << "what the callback does not set is not set";

    start("again", server_.url("/p"));
    EXPECT_EQ(events_.back(), "again: 2x1 cached") << "a picture from the cache comes at once";
    EXPECT_EQ(server_.requests().size(), 2u);
}

TEST_F(ImageLoadingTest, PicturesHaveNoMorePixelsThanAreShown) {
    const auto load = [this](double side, const std::string& url) {
        AFImageDownloader::defaultInstance().downloadImageForURLRequest(
            get(url), {{side, side}},
            [this](auto&, auto& response, auto& image) {
                events_.push_back(std::to_string(image->pixelWidth()) + "x" + std::to_string(image->pixelHeight()) +
                                  (response ? "" : " cached"));
            },
            nullptr);
    };
    load(100, server_.url("/wide"));
    EXPECT_TRUE(pumpUntilIdle());
    load(80, server_.url("/wide"));
    load(200, server_.url("/wide"));
    EXPECT_TRUE(pumpUntilIdle());
    load(5000, server_.url("/wide"));
    EXPECT_TRUE(pumpUntilIdle());
    load(1000, server_.url("/wide"));
    EXPECT_THAT(events_, ElementsAre("100x50", "100x50 cached", "200x100 cached", "400x200 cached", "400x200 cached"));
    EXPECT_EQ(server_.requests().size(), 1u) << "what was made smaller is decoded anew";

    // Whoever joins a transfer gets the size that he wants.
    events_.clear();
    held_ = true;
    load(50, server_.url("/wide?2"));
    load(300, server_.url("/wide?2"));
    held_ = false;
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_EQ(events_.back(), "300x150 cached");

    // A view of 10 x 10 points, on a screen of 1024 x 768 with one pixel a point.
    view_->setFrame({{0, 0}, {10, 10}});
    view_->setContentMode(UIViewContentMode::ScaleAspectFit);
    events_.clear();
    start("icon", server_.url("/wide?3"));
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_THAT(events_, ElementsAre("icon: 10x5"));
}

TEST_F(ImageLoadingTest, AViewThatGrowsShowsWhatItHasUntilThereIsMore) {
    struct Case {
        const char* path;
        CGSize before, after;
        PixelSize small, large;
        std::size_t requests;
    };
    // Where the encoded bytes take less than the pixels left out they are kept, and nothing is loaded anew.
    const Case cases[] = {
        {"/wide", {40, 40}, {300, 300}, {40, 20}, {300, 150}, 1},
        {"/p", {1, 1}, {2, 1}, {1, 1}, {2, 1}, 2},
    };
    const auto draw = [](UIImageView& view) {
        std::vector<std::uint32_t> pixels(300 * 300);
        view.drawRect(*makeBitmapCanvas(pixels.data(), 300, 300, 300, 1), view.bounds());
    };
    view_->setContentMode(UIViewContentMode::ScaleAspectFit);
    for (const Case& c : cases) {
        const std::size_t before = server_.requests().size();
        view_->setFrame({{}, c.before});
        setImageWithURLRequest(*view_, get(server_.url(c.path)), nullptr, nullptr, nullptr);
        EXPECT_TRUE(pumpUntilIdle());
        ASSERT_TRUE(view_->image());
        const CGSize size = view_->image()->size();
        EXPECT_EQ(view_->image()->pixelSize(), c.small);
        view_->setFrame({{}, c.after});
        const auto other = make<UIImageView>();
        other->setContentMode(view_->contentMode());
        setImageWithURLRequest(*other, get(server_.url(c.path)), nullptr, nullptr, nullptr);
        for (int frames = 0; frames < 3; ++frames) draw(*view_);
        EXPECT_EQ(view_->image()->pixelSize(), c.small);
        EXPECT_TRUE(pumpUntilIdle());
        EXPECT_EQ(view_->image()->pixelSize(), c.large) << c.path;
        EXPECT_EQ(view_->image()->size(), size);
        EXPECT_EQ(server_.requests().size() - before, c.requests) << c.path;
        draw(*view_);
        EXPECT_TRUE(MainQueue::shared().isIdle()) << "nothing more is asked for";
        // Another view finds the larger one at hand.
        EXPECT_EQ(AFImageDownloader::defaultInstance().imageCache().imageWithIdentifier(server_.url(c.path)),
                  view_->image());
        other->setFrame(view_->frame());
        draw(*other);
        EXPECT_EQ(other->image()->pixelSize(), c.small);
        EXPECT_TRUE(pumpUntilIdle());
        EXPECT_EQ(other->image()->pixelSize(), c.large);
        EXPECT_EQ(server_.requests().size() - before, c.requests) << c.path;
    }
}

TEST_F(ImageLoadingTest, AViewThatShrinksShowsTheFormerCopyUntilThereIsANewOne) {
    constexpr int side = 400;
    const std::string url = server_.url("/kept");
    AFImageDownloader::defaultInstance().imageCache().addImage(
        UIImage::imageWithPixels(side, side, std::vector<std::uint32_t>(side * side, 0xFF3264C8)), url);
    setImageWithURLRequest(*view_, get(url), nullptr, nullptr, nullptr);
    const auto drawnSideAt = [this](CGFloat frame) {
        view_->setFrame({{}, {frame, frame}});
        return view_->pixelBuffer().width;
    };
    EXPECT_EQ(drawnSideAt(200), 200) << "there is nothing else to show";
    EXPECT_EQ(drawnSideAt(100), 200);
    // Back before the new copy is there, and away again.
    EXPECT_EQ(drawnSideAt(200), 200);
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_EQ(drawnSideAt(100), 100);
    // Set anew, as a list does that is read again.
    const Ref<UIImage> image = view_->image();
    view_->setImage(nullptr);
    view_->setImage(image);
    EXPECT_EQ(drawnSideAt(50), 100);
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_EQ(drawnSideAt(50), 50);
    EXPECT_EQ(view_->image(), image) << "no pixels are lost";
    EXPECT_EQ(drawnSideAt(side), side);
}

TEST_F(ImageLoadingTest, WhatIsNoUsablePictureFails) {
    const std::pair<std::string, int> cases[] = {
        {server_.url("/missing"), NSURLErrorBadServerResponse},
        {server_.url("/text"), NSURLErrorCannotDecodeContentData},
        {server_.url("/broken"), NSURLErrorCannotDecodeContentData},
        {server_.url("/none"), NSURLErrorCannotDecodeContentData},
        {server_.url("/enormous"), NSURLErrorDataLengthExceedsMaximum},
        {server_.url("/long"), NSURLErrorDataLengthExceedsMaximum},
        {"file:///etc/hostname", NSURLErrorUnsupportedURL},
    };
    for (auto& [url, code] : cases) {
        events_.clear();
        start("x", url);
        EXPECT_TRUE(pumpUntilIdle());
        EXPECT_THAT(events_, ElementsAre("x: " + std::to_string(code))) << url;
    }
    const std::size_t requests = server_.requests().size();
    start("retry", server_.url("/missing"));
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_EQ(server_.requests().size(), requests + 1) << "failures are not kept";

    // A callback that asks at once for what has just failed starts a transfer of its own.
    bool failedTwice = false;
    auto again = get(server_.url("/missing"));
    setImageWithURLRequest(*view_, again, nullptr, nullptr, [&](auto& request, auto&, auto&) {
        setImageWithURLRequest(*view_, request, nullptr, nullptr, [&](auto&, auto&, auto&) { failedTwice = true; });
    });
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_TRUE(failedTwice);
}

TEST_F(ImageLoadingTest, WithoutACallbackTheViewShowsTheLastPictureItAskedFor) {
    auto placeholder = UIImage::imageWithPixels(1, 1, {0xFFFFFFFF});
    held_ = true;
    setImageWithURLRequest(*view_, get(server_.url("/first")), placeholder, nullptr, nullptr);
    setImageWithURLRequest(*view_, get(server_.url("/missing")), nullptr, nullptr, nullptr);
    EXPECT_EQ(view_->image(), placeholder);
    held_ = false;
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_EQ(view_->image(), placeholder);

    setImageWithURLRequest(*view_, get(server_.url("/second")), nullptr, nullptr, nullptr);
    EXPECT_TRUE(pumpUntilIdle());
    ASSERT_TRUE(view_->image());
    EXPECT_EQ(view_->image()->pixelWidth(), 2);

    held_ = true;
    Weak<UIImageView> weak = view_;
    setImageWithURLRequest(*view_, get(server_.url("/third")), nullptr, nullptr, nullptr);
    view_ = nullptr;
    EXPECT_FALSE(weak) << "loading keeps no view alive";
    held_ = false;
    EXPECT_TRUE(pumpUntilIdle());
}

TEST_F(ImageLoadingTest, AShutdownDropsTheLoadsAndTheNextBeginsAfresh) {
    held_ = true;
    start("dropped", server_.url("/p"));
    Shutdown::run();
    held_ = false;
    start("fresh", server_.url("/p"));
    EXPECT_TRUE(pumpUntilIdle());
    EXPECT_THAT(events_, ElementsAre("fresh: 2x1"));
}

TEST_F(ImageLoadingTest, ASessionManagerCanLoadPicturesToo) {
    auto manager = AFHTTPSessionManager::manager();
    manager->setResponseSerializer(AFImageResponseSerializer::serializer());
    Outcome outcome;
    manager->dataTaskWithRequest(get(server_.url("/p")), outcome.recorder())->resume();
    EXPECT_TRUE(pumpUntilIdle());
    auto* image = outcome.object.object<UIImage>();
    ASSERT_TRUE(image);
    EXPECT_THAT(image->pixels(), ElementsAre(0xFFFF0000u, 0xFF0000FFu));
}

TEST(ImageCache, KeepsWhatWasUsedLastWithinItsBound) {
    auto picture = [](int pixels) {
        return UIImage::imageWithPixels(pixels, 1, std::vector<std::uint32_t>(static_cast<std::size_t>(pixels)));
    };
    AFAutoPurgingImageCache cache(400);
    cache.addImage(picture(50), "a");
    cache.addImage(picture(50), "b");
    EXPECT_EQ(cache.memoryUsage(), 400u);
    EXPECT_TRUE(cache.imageWithIdentifier("a"));
    cache.addImage(picture(10), "c");
    EXPECT_TRUE(cache.imageWithIdentifier("a"));
    EXPECT_FALSE(cache.imageWithIdentifier("b"));
    EXPECT_EQ(cache.memoryUsage(), 240u);

    cache.addImage(picture(20), "a");
    EXPECT_EQ(cache.memoryUsage(), 120u);
    cache.addImage(picture(101), "larger than all");
    EXPECT_FALSE(cache.imageWithIdentifier("larger than all"));
    EXPECT_EQ(cache.memoryUsage(), 120u);

    cache.setMemoryCapacity(80);
    EXPECT_TRUE(cache.imageWithIdentifier("a"));
    EXPECT_FALSE(cache.imageWithIdentifier("c"));
    cache.removeAllImages();
    EXPECT_EQ(cache.memoryUsage(), 0u);
}

}  // namespace flarebox::testing
