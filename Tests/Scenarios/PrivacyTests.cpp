// Docs/privacy.md names everything that leaves the machine and everything that is written to disk; the log names
// nobody.

#include "GameProcess.h"

#include <Examples/Service/Service.h>
#include <Foundation/NSJSONSerialization.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fnmatch.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace flarebox::testing {
namespace {

using examples::Behaviour;
using examples::ReceivedRequest;
using examples::Service;
using ::testing::HasSubstr;
using ::testing::IsSubsetOf;
using ::testing::Not;

using Names = std::set<std::string>;

constexpr const char* device = "6F9619FF-8B86-D011-B42D-00C04FC964FF";
constexpr const char* icon = "/media/icons/halo-one.png";
constexpr const char* image = "/media/images/halo-one.png";
constexpr const char* model = "/media/models/halo-one.glb";
constexpr const char* video = "/media/videos/halo-one.mp4";

/// The page's tables by their first columns: what stands in backticks, and what stands so in the rest of the row.
std::map<std::string, Names> rowsOfPage() {
    std::map<std::string, Names> rows;
    std::ifstream page(FLAREBOX_DOCS "/privacy.md");
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with("| `")) continue;
        std::vector<std::string> texts;
        for (std::size_t at = line.find('`'); at != line.npos; at = line.find('`', at + 1)) {
            const std::size_t end = line.find('`', at + 1);
            texts.push_back(line.substr(at + 1, end - at - 1));
            at = end;
        }
        rows[texts.front()].insert(texts.begin() + 1, texts.end());
    }
    return rows;
}

class PrivacyTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(service_.start());
        const std::string at = service_.baseURL();
        const std::string query = "?holder=secret-7\"";
        service_.behave(
            "/game/common-assets/",
            {.body = R"([{"id": 1, "uid": "product-1", "title": "One", "advertiser_uid": "v",
                            "campaign_uid": "c", "where_to_buy": "nowhere://shop.example/)" +
                     query + R"(, "file_icon": ")" + at + icon + query + R"(, "file_image": ")" + at + image + query +
                     R"(, "file_ios": ")" + at + model + query + R"(, "video_mobile": ")" + at + video + query + "}]"});
    }
    GameResult play(const std::string& script) {
        // Where an application keeps them by itself. A headless sample game would not.
        const std::string settings = ".config/flarebox-hostgame/UserDefaults.plist";
        const std::string documents = ".local/share/flarebox-hostgame/Documents";
        std::vector<std::string> options = {"--api-url",   service_.baseURL(),
                                            "--game-uid",  "game-77",
                                            "--log-level", "1",
                                            "--defaults",  folder_.path(settings),
                                            "--documents", folder_.path(documents),
                                            "--script",    folder_.write("s.script", script)};
        if (hasIdentifier_) options.insert(options.end(), {"--advertising-id", device});
        std::filesystem::create_directories(folder_.path(documents));
        return runGame(folder_, std::move(options));
    }
    /// Every path of the session departs from the normal answer in the same way, the list alone keeps its body.
    void behaveEverywhere(Behaviour behaviour) {
        for (const char* path : {"/sessions/", "/kafka/engagement/", "/coupons/", icon, image, model, video})
            service_.behave(path, behaviour);
    }

    static constexpr const char* useOfEverything =
        "await idle 60\ncall open\nawait idle 60\nwait 0.5\ntap btn3d\nawait idle 60\nwait 1\ntap btnVideo\n"
        "await idle 60\nwait 1\ntap btnBuy\nwait 0.2\ntap btnCoupon\nawait idle 60\nwait 0.5\n";
    Service service_;
    TemporaryDirectory folder_;
    /// Else the kit makes one.
    bool hasIdentifier_ = true;
};

TEST_F(PrivacyTest, ThePageNamesWhatLeavesTheMachine) {
    behaveEverywhere({.headers = {{"Set-Cookie", "visitor=cookie-77; Path=/"}}});
    const GameResult result = play(useOfEverything + std::string("await frame videoView 60\n"));
    ASSERT_EQ(result.status, 0) << result.errors;

    const std::map<std::string, Names> page = rowsOfPage();
    Names paths;
    for (const ReceivedRequest& request : service_.requests()) {
        // Whatever the pictures, models and videos of a service are called, they are asked for alike.
        const bool isMedia = request.path.starts_with("/media/");
        const bool isVideo = request.path == video;
        const std::string path = isVideo ? "video" : isMedia ? "picture or model" : request.path;
        paths.insert(path);
        const auto row = page.find(path);
        ASSERT_NE(row, page.end()) << path;
        Names sent;
        for (const auto& [name, value] : request.headers) sent.insert(name);
        if (!request.body.empty()) {
            const auto body = NSJSONSerialization::JSONObjectWithText(request.body, NSJSONReadingStrict, nullptr);
            for (const auto& [key, value] : body.as<NSDictionary>().entries()) sent.insert(key.description());
        }
        EXPECT_THAT(sent, IsSubsetOf(row->second)) << path;
        EXPECT_THAT(request.body, Not(HasSubstr("cookie-77")));
    }
    EXPECT_EQ(paths, (Names{"/sessions/", "/game/common-assets/", "/kafka/engagement/", "/coupons/", "picture or model",
                            "video"}));
}

TEST_F(PrivacyTest, ThePageNamesWhatIsWrittenToDisk) {
    hasIdentifier_ = false;
    const GameResult result = play(useOfEverything + std::string("await frame videoView 60\n"));
    ASSERT_EQ(result.status, 0) << result.errors;
    const std::map<std::string, Names> page = rowsOfPage();
    const std::filesystem::path home = folder_.path();
    int files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home)) {
        if (!entry.is_regular_file()) continue;
        const std::string file = "~/" + entry.path().lexically_relative(home).string();
        // The test's own.
        if (file == "~/s.script" || file == "~/stdout" || file == "~/stderr") continue;
        bool isNamed = false;
        for (const auto& [pattern, rest] : page) isNamed |= ::fnmatch(pattern.c_str(), file.c_str(), FNM_PATHNAME) == 0;
        EXPECT_TRUE(isNamed) << file;
        ++files;
    }
    // The identifier and the one model, at least.
    EXPECT_GE(files, 2);
}

TEST_F(PrivacyTest, TheLogNamesNobody) {
    const Behaviour failures[] = {
        {.status = 503, .body = "visitor secret-7"},
        {.status = 302, .headers = {{"Location", "ftp://elsewhere.example/?holder=secret-7"}}},
        {.body = "{\"uid\": \"secret-7", .contentType = "application/json"},
        {.ending = Behaviour::Ending::Cut},
    };
    for (const Behaviour& failure : failures) {
        behaveEverywhere(failure);
        service_.behave("/sessions/", {.body = R"({"uid": "session-77"})", .contentType = "application/json"});
        GameResult result = play(useOfEverything);
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_THAT(result.errors, HasSubstr("KestrinSDK Error"));
        service_.behave("/sessions/", failure);
        result.errors += play("await idle 60\ncall open\nawait idle 60\n").errors;
        for (const char* secret : {device, "secret-7", "session-77", "game-77", "/media/", "shop.example"})
            EXPECT_THAT(result.errors, Not(HasSubstr(secret)));
    }
}

}  // namespace
}  // namespace flarebox::testing
