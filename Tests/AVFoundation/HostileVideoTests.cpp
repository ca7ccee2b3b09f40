// Damaged and made-up files, and what players leave behind.

#include <Foundation/NSError.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <vector>

#include "VideoTesting.h"

namespace flarebox::testing {
namespace {

/// Damages the file in one of several ways; the same seed does the same damage.
std::string damaged(std::string file, unsigned seed) {
    std::mt19937 random(seed);
    const auto below = [&](std::size_t end) {
        return static_cast<std::size_t>(random() % std::max<std::size_t>(end, 1));
    };
    // Most of what a reader has to believe stands at the beginning.
    const std::size_t reach = seed % 2 == 0 ? std::min<std::size_t>(file.size(), 1500) : file.size();
    switch (seed % 5) {
        case 0:  // single bytes
            for (int i = 0; i < 12; ++i) file[below(reach)] = static_cast<char>(random());
            break;
        case 1:  // sizes and counts
            for (int i = 0; i < 3; ++i) {
                constexpr std::string_view extremes[] = {"\x7F\xFF\xFF\xFF", "\xFF\xFF\xFF\xFF", "\x01\x23\x45\x67"};
                file.replace(below(reach), 4, extremes[random() % 3]);
            }
            break;
        case 2:  // something in the middle is missing
            file.erase(below(reach), 1 + below(200));
            break;
        case 3:  // or there twice
            file.insert(below(reach), file.substr(below(file.size()), 1 + below(2000)));
            break;
        default:  // or noise
            for (std::size_t i = below(reach), end = std::min(i + 300, file.size()); i < end; ++i)
                file[i] = static_cast<char>(random());
            break;
    }
    return file;
}

/// A line of /proc/self/status in MiB.
std::size_t memoryOf(const char* field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(field)) return std::stoul(line.substr(line.find(':') + 1)) / 1024;
    }
    return 0;
}

std::size_t entriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

class HostileVideo : public VideoTest {
protected:
    HostileVideo() {
        AVPlayerSettings settings = AVPlayer::settings();
        settings.stallTimeout = 1.5 * slowness();
        settings.hasSound = true;  // whatever reads the sound is to be tried too
        AVPlayer::setSettings(settings);
    }
    /// Some of each kind of both containers.
    static std::vector<std::string> files(unsigned first, unsigned count) {
        const std::string originals[] = {media("colors.mp4"), media("colors.webm")};
        std::vector<std::string> made;
        for (unsigned seed = first; seed < first + count; ++seed)
            made.push_back(damaged(originals[seed / 5 % 2], seed));
        return made;
    }
};

TEST_F(HostileVideo, IsPlayedOrRefused) {
    constexpr unsigned count = 60, atOnce = 6;
    std::size_t refused = 0;
    for (unsigned first = 0; first < count; first += atOnce) {
        const std::vector<std::string> contents = files(first, atOnce);
        const ScriptedServer server(answering([&](ScriptedServer::Connection& connection, const std::string& request) {
            const std::size_t which = static_cast<std::size_t>(request.at(request.find('/') + 1) - 'a');
            answerFile(connection, request, contents.at(which));
        }));
        std::vector<Ref<AVPlayer>> players;
        for (unsigned i = 0; i < atOnce; ++i) {
            players.push_back(playerOf(server, std::string("/") + static_cast<char>('a' + i)));
            players.back()->setMuted(true);
            players.back()->seekToTime(2);
            players.back()->play();
        }
        const auto isDecided = [](const Ref<AVPlayer>& player) {
            return player->error() || player->hasEnded() ||
                   (player->timeControlStatus() == AVPlayerTimeControlStatus::Playing && player->currentTime() > 2.2);
        };
        ASSERT_TRUE(until([&] { return std::ranges::all_of(players, isDecided); }, 20 * slowness()))
            << "from " << first;
        for (const Ref<AVPlayer>& player : players) {
            if (!player->error()) continue;
            ++refused;
            EXPECT_EQ(player->rate(), 0);
            EXPECT_FALSE(player->error()->localizedDescription().empty());
        }
    }
    EXPECT_GT(refused, 5U);
    EXPECT_LT(refused, 55U);
    // A sanitizer has its own idea of memory.
    EXPECT_LT(memoryOf("VmHWM"), slowness() == 1 ? 512U : 8192U);
}

TEST_F(HostileVideo, AnEndlessAnswerTakesNoMoreThanItsShare) {
    std::atomic<std::size_t> sent = 0;
    // As a video would begin, with a size that never ends.
    const std::string beginning = media("colors.mp4").substr(0, 32) + std::string(
                                                                          "\x7F\xFF\xFF\xFF"
                                                                          "free",
                                                                          8);
    const ScriptedServer server([&](ScriptedServer::Connection& connection) {
        if (!connection.readRequest()) return;
        connection.send("HTTP/1.1 200 OK\r\nContent-Type: video/mp4\r\n\r\n" + beginning);
        const std::string noise(1 << 16, 'x');
        while (sent < 600U << 20 && connection.send(noise)) sent += noise.size();
    });
    const std::size_t before = memoryOf("VmRSS");
    const Ref<AVPlayer> player = playerOf(server);
    player->play();
    std::size_t most = before;
    until(
        [&] {
            most = std::max(most, memoryOf("VmRSS"));
            return player->error() || sent >= 200U << 20;
        },
        10);
    EXPECT_GT(sent, 1U << 20);
    EXPECT_LT(most - before, slowness() == 1 ? 128U : 512U) << (sent >> 20) << " MiB were sent";
}

TEST_F(HostileVideo, ManyPlayersLeaveNothingBehind) {
    const ScriptedServer server(serving(media("colors.mp4")));
    std::size_t threads = 0, descriptors = 0;
    const auto threadsNow = [] { return entriesOf("/proc/self/task"); };
    // The server keeps its ends of all connections.
    const auto descriptorsNow = [&] {
        return entriesOf("/proc/self/fd") - static_cast<std::size_t>(server.acceptedConnections());
    };
    const auto hasSettled = [&] { return threadsNow() <= threads && descriptorsNow() <= descriptors; };
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        Ref<AVPlayer> player = playerOf(server);
        const Ref<AVPlayerLayer> layer = show(player);
        player->play();
        // Some are gone before they have begun, others while they play.
        ASSERT_TRUE(round % 3 == 0 || until([&] { return player->isReady(); }));
        if (round % 3 == 2) player->seekToTime(2);
        layer->removeFromSuperview();
        if (round != 15) continue;
        layer->setPlayer(nullptr);
        player = nullptr;
        until([] { return false; }, 0.5);
        threads = threadsNow() + 2;
        descriptors = descriptorsNow() + 2;
    }
    EXPECT_TRUE(until(hasSettled, 10)) << threadsNow() << " threads, at first " << threads << "; " << descriptorsNow()
                                       << " descriptors, at first " << descriptors;
}

}  // namespace
}  // namespace flarebox::testing
