#include <Foundation/NSError.h>
#include <Foundation/Shutdown.h>
#include <Tests/Networking/ServerIdentity.h>

#include <utility>
#include <vector>

#include "VideoTesting.h"

namespace flarebox::testing {
namespace {

class VideoServer : public VideoTest {
protected:
    void setStallTimeout(double seconds) {
        AVPlayerSettings settings = AVPlayer::settings();
        settings.stallTimeout = seconds;
        AVPlayer::setSettings(settings);
    }
    /// Plays what the script serves until it fails or has been shown; null when it has.
    Ref<NSError> outcomeOf(const ScriptedServer::Script& script) {
        const ScriptedServer server(script);
        const Ref<AVPlayer> player = playerOf(server);
        const Ref<AVPlayerLayer> layer = show(player);
        player->play();
        EXPECT_TRUE(until([&] { return player->error() || player->hasEnded(); }));
        EXPECT_EQ(player->rate(), 0);
        EXPECT_FALSE(player->isWaiting());
        layer->removeFromSuperview();
        return player->error();
    }
};

ScriptedServer::Script refusing(const char* status) {
    return answering([status](ScriptedServer::Connection& connection, const std::string&) {
        connection.answer(status, "", "<html>no</html>");
    });
}

/// Sends the beginning of the file and then nothing any more.
ScriptedServer::Script stallingAfter(std::size_t bytes, const std::string& file) {
    return [bytes, file](ScriptedServer::Connection& connection) {
        if (!connection.readRequest()) return;
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(file.size()) + "\r\n\r\n");
        connection.send(std::string_view(file).substr(0, bytes));
        connection.hang();
    };
}

/// Sends the beginning of the file and hangs up.
ScriptedServer::Script breakingOffAfter(std::size_t bytes, const std::string& file) {
    return [bytes, file](ScriptedServer::Connection& connection) {
        if (!connection.readRequest()) return;
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(file.size()) + "\r\n\r\n");
        connection.send(std::string_view(file).substr(0, bytes));
    };
}

TEST_F(VideoServer, RefusalsAreErrors) {
    setStallTimeout(4 * slowness());
    struct Case {
        const char* name;
        ScriptedServer::Script script;
        int code;
        const char* text;
    };
    const std::string video = media("colors.mp4");
    const Case cases[] = {
        {"not there", refusing("404 Not Found"), NSURLErrorBadServerResponse, "does not exist"},
        {"broken", refusing("503 Service Unavailable"), NSURLErrorBadServerResponse, "refused the video (503)"},
        {"forbidden", refusing("403 Forbidden"), NSURLErrorBadServerResponse, "refused"},
        {"no video", serving("<html>hello</html>"), NSURLErrorCannotDecodeContentData, "damaged or of an unknown kind"},
        {"empty", serving(""), NSURLErrorCannotDecodeContentData, "damaged"},
        {"noise", serving(std::string(70'000, '\x5A')), NSURLErrorCannotDecodeContentData, "damaged"},
        {"sound only", serving(media("sound-only.mp4")), NSURLErrorCannotDecodeContentData, "cannot show"},
        {"too large a picture", serving(media("too-large.mp4")), NSURLErrorCannotDecodeContentData, "too large"},
        {"cut off in its table", serving(video.substr(0, 900)), NSURLErrorCannotDecodeContentData, "damaged"},
        {"hangs up at once", [](ScriptedServer::Connection&) {}, NSURLErrorNetworkConnectionLost, "connection"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Ref<NSError> error = outcomeOf(c.script);
        ASSERT_NE(error, nullptr);
        EXPECT_EQ(error->domain(), NSURLErrorDomain);
        EXPECT_EQ(error->code(), c.code);
        EXPECT_NE(error->localizedDescription().find(c.text), std::string::npos) << error->localizedDescription();
    }
}

TEST_F(VideoServer, AddressesThatAreNoneAreRefusedAtOnce) {
    for (const char* address : {"file:///etc/passwd", "ftp://127.0.0.1/a.mp4", "rtsp://127.0.0.1/", "fd://3",
                                "http:///a.mp4", "data:video/mp4;base64,AAAA", "a.mp4"}) {
        const Ref<AVPlayer> player = AVPlayer::playerWithURL(NSURL::URLWithString(NSString(address)));
        EXPECT_NE(player->error(), nullptr) << address;
        player->play();
        player->seekToTime(1);
        player->pause();
        EXPECT_EQ(player->rate(), 0);
        EXPECT_FALSE(player->isWaiting());
    }
}

TEST_F(VideoServer, NobodyListens) {
    int port = 0;
    {
        const ScriptedServer gone(serving(""));
        port = gone.port();
    }
    const Ref<AVPlayer> player =
        AVPlayer::playerWithURL(NSURL::URLWithString(NSString("http://127.0.0.1:" + std::to_string(port) + "/a")));
    player->play();
    ASSERT_TRUE(until([&] { return player->error() != nullptr; }));
    EXPECT_EQ(player->error()->code(), NSURLErrorCannotConnectToHost);
}

TEST_F(VideoServer, NeedsNoRanges) {
    for (const char* file : {"colors.mp4", "colors.webm"}) {
        SCOPED_TRACE(file);
        const ScriptedServer server(serving(media(file), false));
        const Ref<AVPlayer> player = playerOf(server);
        const Ref<AVPlayerLayer> layer = show(player);
        ASSERT_TRUE(until([&] { return shownColor() == 'r'; }));
        for (const auto& [time, color] : {std::pair{2.5, 'b'}, std::pair{1.5, 'g'}, std::pair{0.0, 'r'}}) {
            player->seekToTime(time);
            ASSERT_TRUE(until([&] { return !player->isWaiting(); }));
            frame();
            EXPECT_EQ(player->error(), nullptr);
            EXPECT_EQ(shownColor(), color);
        }
        layer->removeFromSuperview();
    }
}

TEST_F(VideoServer, AStallFailsAfterTheTimeOut) {
    setStallTimeout(0.5);
    const std::string video = media("colors.webm");
    const std::pair<const char*, ScriptedServer::Script> cases[] = {
        {"no answer", [](ScriptedServer::Connection& connection) { connection.hang(); }},
        {"no body", stallingAfter(0, video)},
        {"in the middle", stallingAfter(video.size() / 2, video)},
    };
    for (const auto& [name, script] : cases) {
        SCOPED_TRACE(name);
        const Ref<NSError> error = outcomeOf(script);
        ASSERT_NE(error, nullptr);
        EXPECT_EQ(error->domain(), NSURLErrorDomain);
        EXPECT_EQ(error->code(), NSURLErrorTimedOut);
    }
}

TEST_F(VideoServer, SlownessIsNoStall) {
    setStallTimeout(2);
    const std::string video = media("colors.webm");
    const Ref<NSError> error = outcomeOf([&](ScriptedServer::Connection& connection) {
        if (!connection.readRequest()) return;
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(video.size()) + "\r\n\r\n");
        const std::size_t part = video.size() / 10 + 1;
        for (std::size_t sent = 0; sent < video.size(); sent += part) {
            connection.send(std::string_view(video).substr(sent, part));
            if (!connection.pause(0.3)) return;
        }
        connection.readRequest();
    });
    EXPECT_EQ(error, nullptr) << error->localizedDescription();
}

TEST_F(VideoServer, ACutOffVideoPlaysWhatIsThereOrFails) {
    setStallTimeout(2);
    for (const char* file : {"colors.mp4", "colors.webm"}) {
        const std::string video = media(file);
        for (const double share : {0.3, 0.6, 0.9}) {
            SCOPED_TRACE(std::string(file) + " " + std::to_string(share));
            const auto bytes = static_cast<std::size_t>(static_cast<double>(video.size()) * share);
            outcomeOf(serving(video.substr(0, bytes)));
            outcomeOf(breakingOffAfter(bytes, video));
        }
    }
}

TEST_F(VideoServer, IsWhoItSaysItIs) {
    const ServerIdentity identity;
    const ScriptedServer server(serving(media("colors.mp4")), &identity);
    const Ref<AVPlayer> stranger = playerOf(server);
    stranger->play();
    ASSERT_TRUE(until([&] { return stranger->error() != nullptr; }));
    EXPECT_EQ(stranger->currentFrame(), nullptr);

    AVPlayerSettings settings = AVPlayer::settings();
    settings.certificateAuthorityFile = identity.certificateFile();
    AVPlayer::setSettings(settings);
    const Ref<AVPlayer> player = playerOf(server);
    player->load();
    ASSERT_TRUE(until([&] { return player->isReady() || player->error(); }));
    EXPECT_EQ(player->error(), nullptr) << player->error()->localizedDescription();
}

TEST_F(VideoServer, NobodyWaitsForIt) {
    const auto hangs = [](ScriptedServer::Connection& connection) { connection.hang(); };
    const std::string video = media("colors.webm");
    for (const ScriptedServer::Script& script :
         {ScriptedServer::Script(hangs), stallingAfter(video.size() / 2, video)}) {
        const ScriptedServer server(script);
        std::vector<Ref<AVPlayer>> players;
        for (int i = 0; i < 4; ++i) {
            players.push_back(playerOf(server));
            players.back()->play();
        }
        ASSERT_TRUE(until([&] { return server.acceptedConnections() >= 4; }));
        players.back()->seekToTime(1);
        const auto start = std::chrono::steady_clock::now();
        players.pop_back();
        for (const Ref<AVPlayer>& player : players) player->pause();
        const std::chrono::duration<double> commands = std::chrono::steady_clock::now() - start;
        EXPECT_LT(commands.count(), 0.05) << "the main thread never waits";
        Shutdown::run();
        const std::chrono::duration<double> all = std::chrono::steady_clock::now() - start;
        EXPECT_LT(all.count(), 0.2 * slowness()) << "and all has ended";
        players.front()->play();
        players.front()->seekToTime(1);
    }
}

}  // namespace
}  // namespace flarebox::testing
