#include <Examples/Service/Service.h>

#include <cairo/cairo.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <simdjson.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace flarebox::examples {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto patience = 20s;

/// A request in parts, so that a test can spoil one of them.
struct Draft {
    std::string method;
    std::string target;
    httplib::Headers headers;
    /// Key and JSON value; sent as an object unless `body` is set.
    std::vector<std::pair<std::string, std::string>> members;
    std::string body;

    void set(const std::string& key, const std::string& json) {
        for (auto& [name, value] : members) {
            if (name == key) value = json;
        }
    }
    void remove(const std::string& key) {
        std::erase_if(members, [&](const auto& member) { return member.first == key; });
    }
    std::string content() const {
        if (!body.empty() || members.empty()) return body;
        std::string text;
        for (const auto& [key, value] : members) text += (text.empty() ? "{\"" : ",\"") + key + "\":" + value;
        return text + "}";
    }
};

const httplib::Headers gameHeaders = {{"Accept", "application/json"}, {"Game-UID", "g-1"}, {"Game-Version", "1.4.0"}};
const httplib::Headers plainHeaders = {{"Accept", "application/json"}};

Draft session() {
    return {"POST",
            "/sessions/",
            gameHeaders,
            {{"first_name", "\"Zoë \\\"Z\\\"\""},
             {"last_name", "\"Lindqvist\""},
             {"age", "31"},
             {"sex", "\"f\""},
             {"state", "null"},
             {"city", "\"Malmö\""},
             {"country", "\"SE\""},
             {"ip_addr", "null"},
             {"device_id", "\"d-1\""}},
            ""};
}

Draft assets() {
    return {"GET", "/game/common-assets/?limit=20", gameHeaders, {}, ""};
}

Draft engagement() {
    Draft draft{"POST", "/kafka/engagement/", plainHeaders, {}, ""};
    for (const char* key : {"advertiser", "asset", "developer", "game", "session", "version", "country", "device_id"}) {
        draft.members.emplace_back(key, "\"some text\"");
    }
    for (const char* key : {"age", "browser", "browser_ver", "campaign", "ip_addr", "os", "os_ver", "sex", "spot"}) {
        draft.members.emplace_back(key, "null");
    }
    draft.members.insert(draft.members.end(), {{"action", "\"flarebox\""},
                                               {"desktop", "\"false\""},
                                               {"generic", "\"false\""},
                                               {"mobile", "\"true\""},
                                               {"duration", "\"12\""}});
    return draft;
}

Draft coupon() {
    return {"POST", "/coupons/", plainHeaders, {{"session", "\"s-1\""}, {"asset", "4101"}}, ""};
}

class ServiceTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(service.start()); }

    std::unique_ptr<httplib::Client> client() {
        auto result = std::make_unique<httplib::Client>("127.0.0.1", service.port());
        result->set_read_timeout(patience);
        return result;
    }

    httplib::Result send(const Draft& draft) {
        httplib::Request request;
        request.method = draft.method;
        request.path = draft.target;
        request.headers = draft.headers;
        request.body = draft.content();
        if (!request.body.empty() && !request.has_header("Content-Type")) {
            request.set_header("Content-Type", "application/json");
        }
        return client()->send(request);
    }

    simdjson::dom::element sendForJson(const Draft& draft) {
        auto result = send(draft);
        EXPECT_TRUE(result);
        if (!result) return {};
        EXPECT_EQ(result->get_header_value("Content-Type"), "application/json");
        simdjson::dom::element root;
        EXPECT_FALSE(parser.parse(result->body).get(root)) << result->body;
        return root;
    }

    std::string pathOf(std::string_view url) {
        EXPECT_TRUE(url.starts_with(service.baseURL() + "/")) << url;
        return std::string(url.substr(service.baseURL().size()));
    }

    Service service;
    simdjson::dom::parser parser;
};

TEST_F(ServiceTest, AcceptsWhatIsRight) {
    const struct {
        Draft draft;
        int status;
    } cases[] = {{session(), 201}, {assets(), 200}, {engagement(), 202}, {coupon(), 201}};
    for (const auto& [draft, status] : cases) {
        auto result = send(draft);
        ASSERT_TRUE(result) << draft.target;
        EXPECT_EQ(result->status, status) << draft.target << " " << result->body;
        EXPECT_EQ(service.requests().back().complaint, "") << draft.target;
    }
}

TEST_F(ServiceTest, RefusesEachSingleWrongThingAndNamesIt) {
    using Spoil = std::function<void(Draft&)>;
    auto remove = [](const char* key) -> Spoil { return [key](Draft& draft) { draft.remove(key); }; };
    auto set = [](const char* key, const char* json) -> Spoil { return [=](Draft& draft) { draft.set(key, json); }; };
    auto add = [](const char* key, const char* json) -> Spoil {
        return [=](Draft& draft) { draft.members.emplace_back(key, json); };
    };
    auto header = [](const char* name, const char* value) -> Spoil {
        return [=](Draft& draft) {
            draft.headers.erase(name);
            draft.headers.emplace(name, value);
        };
    };
    auto noHeader = [](const char* name) -> Spoil { return [name](Draft& draft) { draft.headers.erase(name); }; };
    auto target = [](const char* text) -> Spoil { return [text](Draft& draft) { draft.target = text; }; };
    auto body = [](const char* text) -> Spoil { return [text](Draft& draft) { draft.body = text; }; };

    const struct {
        Draft right;
        Spoil spoil;
        const char* reason;
        int status = 400;
    } cases[] = {
        {session(), noHeader("Game-UID"), "missing header 'Game-UID'"},
        {session(), header("Game-Version", ""), "missing header 'Game-Version'"},
        {session(), noHeader("Accept"), "'Accept'"},
        {session(), header("Accept", "*/*"), "'Accept'"},
        {session(), header("Content-Type", "text/plain"), "'Content-Type'"},
        {session(), remove("city"), "missing key 'city'"},
        {session(), add("shoe_size", "44"), "surplus key 'shoe_size'"},
        {session(), add("age", "32"), "'age' appears twice"},
        {session(), set("age", "\"31\""), "'age' is not a number"},
        {session(), set("sex", "true"), "'sex' is not a text"},
        {session(), target("/sessions/?limit=20"), "surplus query"},
        {session(), body("[]"), "not a JSON object"},
        {session(), body("{\"first_name\":"), "not JSON"},
        {session(), body("{\"first_name\":\"\xff\"}"), "not JSON"},
        {assets(), noHeader("Game-UID"), "missing header 'Game-UID'"},
        {assets(), noHeader("Accept"), "'Accept'"},
        {assets(), target("/game/common-assets/"), "limit"},
        {assets(), target("/game/common-assets/?limit=0"), "limit=0"},
        {assets(), target("/game/common-assets/?limit=-1"), "limit=-1"},
        {assets(), target("/game/common-assets/?limit=2x"), "limit=2x"},
        {assets(), target("/game/common-assets/?limit=99999999999"), "limit=99999999999"},
        {assets(), target("/game/common-assets/?limit=20&page=2"), "page=2"},
        {engagement(), header("Game-UID", "g-1"), "surplus header 'Game-UID'"},
        {engagement(), header("game-version", "1"), "surplus header 'Game-Version'"},
        {engagement(), remove("spot"), "missing key 'spot'"},
        {engagement(), add("model", "null"), "surplus key 'model'"},
        {engagement(), set("desktop", "false"), "'desktop' is not the text"},
        {engagement(), set("mobile", "\"yes\""), "'mobile' is not the text"},
        {engagement(), set("duration", "12"), "'duration' is not a text of decimal digits"},
        {engagement(), set("duration", "\"-3\""), "'duration'"},
        {engagement(), set("age", "31"), "'age' is not a text or null"},
        {engagement(), set("action", "\"4d\""), "'action'"},
        {engagement(), set("asset", "null"), "'asset'"},
        {engagement(), set("session", "\"\""), "'session'"},
        {coupon(), header("Game-UID", "g-1"), "surplus header 'Game-UID'"},
        {coupon(), set("asset", "\"4101\""), "'asset' is not a number"},
        {coupon(), set("asset", "null"), "'asset' is not a number"},
        {coupon(), set("session", "7"), "'session' is not a text or null"},
        {coupon(), remove("session"), "missing key 'session'"},
        {coupon(), target("/coupons"), "nothing at /coupons", 404},
        {coupon(), target("//coupons/"), "nothing at //coupons/", 404},
        {coupon(), [](Draft& draft) { draft.method = "PUT"; }, "PUT", 405},
        {assets(), [](Draft& draft) { draft.method = "DELETE"; }, "DELETE", 405},
        {session(),
         [](Draft& draft) {
             draft = {"GET", "/sessions/", gameHeaders, {}, ""};
         },
         "GET", 405},
    };
    for (const auto& [right, spoil, reason, status] : cases) {
        SCOPED_TRACE(right.target + " " + reason);
        Draft draft = right;
        spoil(draft);
        auto result = send(draft);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->status, status);
        std::string_view error;
        ASSERT_FALSE(parser.parse(result->body)["error"].get(error)) << result->body;
        EXPECT_NE(error.find(reason), error.npos) << error;
        EXPECT_EQ(service.requests().back().complaint, error);
    }
}

TEST_F(ServiceTest, SessionAnswerEchoesThePlayer) {
    auto root = sendForJson(session());
    EXPECT_EQ(simdjson::dom::object(root).size(), 17U);
    EXPECT_EQ(std::string_view(root["game_uid"]), "g-1");
    EXPECT_EQ(std::string_view(root["first_name"]), "Zoë \"Z\"");
    EXPECT_EQ(std::int64_t(root["age"]), 31);
    EXPECT_TRUE(root["state"].is_null());
    EXPECT_TRUE(root["start"].is_int64());
    std::string first{std::string_view(root["uid"])};
    EXPECT_NE(std::string_view(sendForJson(session())["uid"]), first);
}

TEST_F(ServiceTest, AssetsHonourTheLimitAndOfferEveryKindOfAsset) {
    for (std::size_t limit : {1U, 3U}) {
        Draft draft = assets();
        draft.target = "/game/common-assets/?limit=" + std::to_string(limit);
        EXPECT_EQ(simdjson::dom::array(sendForJson(draft)).size(), limit);
    }

    std::set<std::int64_t> ids, brands;
    std::size_t count = 0, withoutIcon = 0, withoutImage = 0, withoutShop = 0;
    for (simdjson::dom::element asset : simdjson::dom::array(sendForJson(assets()))) {
        EXPECT_EQ(simdjson::dom::object(asset).size(), 27U);
        EXPECT_TRUE(asset["created"].is_int64());
        ids.insert(std::int64_t(asset["id"]));
        brands.insert(std::int64_t(asset["advertiser_id"]));
        count += 1;
        withoutIcon += asset["file_icon"].is_null();
        withoutImage += asset["file_image"].is_null();
        withoutShop += asset["where_to_buy"].is_null();
    }
    EXPECT_GE(count, 12U);
    EXPECT_EQ(ids.size(), count);
    EXPECT_GE(brands.size(), 8U);
    EXPECT_EQ(withoutIcon, 1U);
    EXPECT_EQ(withoutImage, 2U);
    EXPECT_EQ(withoutShop, 2U);
}

struct PngSize {
    int width;
    int height;
};

/// Decodes the whole picture; 0 x 0 when it is broken.
PngSize decode(std::string_view png) {
    auto read = [](void* closure, unsigned char* target, unsigned length) {
        auto& rest = *static_cast<std::string_view*>(closure);
        if (rest.size() < length) return CAIRO_STATUS_READ_ERROR;
        std::memcpy(target, rest.data(), length);
        rest.remove_prefix(length);
        return CAIRO_STATUS_SUCCESS;
    };
    cairo_surface_t* surface = cairo_image_surface_create_from_png_stream(read, &png);
    PngSize size{cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface)};
    cairo_surface_destroy(surface);
    return size;
}

TEST_F(ServiceTest, EveryPictureOfAnAssetIsAPngOfItsSizeAndNoOther) {
    std::set<std::string> seen;
    auto http = client();
    for (simdjson::dom::element asset : simdjson::dom::array(sendForJson(assets()))) {
        for (auto [key, width, height] : {std::tuple("file_icon", 256, 256), std::tuple("file_image", 1080, 790)}) {
            if (asset[key].is_null()) continue;
            std::string path = pathOf(asset[key]);
            auto result = http->Get(path);
            ASSERT_TRUE(result) << path;
            EXPECT_EQ(result->status, 200) << path;
            EXPECT_EQ(result->get_header_value("Content-Type"), "image/png");
            PngSize size = decode(result->body);
            EXPECT_EQ(size.width, width) << path;
            EXPECT_EQ(size.height, height) << path;
            EXPECT_TRUE(seen.insert(result->body).second) << path << " looks like another";
        }
    }
    for (const char* path : {"/media/icons/nobody.png", "/media/images/", "/media/icons/../icons/halo-one.png",
                             "/media/icons/halo-one.jpg", "/"}) {
        auto result = http->Get(path);
        ASSERT_TRUE(result) << path;
        EXPECT_EQ(result->status, 404) << path;
    }
}

TEST_F(ServiceTest, PicturesAreDrawnOnceAndCanBeCached) {
    const std::string path = "/media/icons/halo-one.png";
    std::vector<std::future<std::string>> downloads;
    for (int index = 0; index < 4; ++index) {
        downloads.push_back(std::async(std::launch::async, [&] {
            auto result = client()->Get(path);
            return result ? result->body : std::string();
        }));
    }
    std::set<std::string> bodies;
    for (auto& download : downloads) bodies.insert(download.get());
    EXPECT_EQ(bodies.size(), 1U);
    EXPECT_FALSE(bodies.contains(""));

    auto first = client()->Get(path);
    ASSERT_TRUE(first);
    EXPECT_NE(first->get_header_value("Cache-Control").find("max-age="), std::string::npos);
    auto second = client()->Get(path, {{"If-None-Match", first->get_header_value("ETag")}});
    ASSERT_TRUE(second);
    EXPECT_EQ(second->status, 304);
    EXPECT_EQ(second->body, "");
}

TEST_F(ServiceTest, ModelsAndVideosAreWhatTheirNamesSay) {
    struct Kind {
        const char* key;
        /// How the files of a suffix begin, and at which byte that is.
        std::map<std::string, std::tuple<std::string, std::size_t, std::string>> formats;
        int fewest;
    };
    const Kind kinds[] = {
        {"file_ios", {{".glb", {"model/gltf-binary", 0, "glTF"}}}, 12},
        {"video_mobile", {{".mp4", {"video/mp4", 4, "ftyp"}}, {".webm", {"video/webm", 0, "\x1A\x45\xDF\xA3"}}}, 9},
    };
    auto http = client();
    http->set_keep_alive(true);
    for (const Kind& kind : kinds) {
        int count = 0;
        std::set<std::string> suffixes;
        for (simdjson::dom::element asset : simdjson::dom::array(sendForJson(assets()))) {
            if (asset[kind.key].is_null()) continue;
            ++count;
            const std::string path = pathOf(asset[kind.key]);
            SCOPED_TRACE(path);
            const std::string suffix = path.substr(path.rfind('.'));
            suffixes.insert(suffix);
            const auto& [type, offset, sign] = kind.formats.at(suffix);
            auto whole = http->Get(path);
            ASSERT_TRUE(whole && whole->status == 200);
            EXPECT_EQ(whole->get_header_value("Content-Type"), type);
            EXPECT_EQ(whole->body.compare(offset, sign.size(), sign), 0);
        }
        EXPECT_GE(count, kind.fewest);
        EXPECT_EQ(suffixes.size(), kind.formats.size()) << "one of each format at least";
    }
    for (const char* wrong : {"/media/models/nobody.glb", "/media/models/halo-one.mp4", "/media/models/",
                              "/media/models/../models/halo-one.glb", "/media/videos/../../Service.cpp"})
        EXPECT_EQ(http->Get(wrong)->status, 404) << wrong;
}

TEST_F(ServiceTest, RecordsWhatArrived) {
    auto http = client();
    http->set_keep_alive(true);
    http->Get("/game/common-assets/?limit=20", gameHeaders);
    http->Post("/coupons/", plainHeaders, "{}", "application/json");
    send(assets());

    auto requests = service.requests();
    ASSERT_EQ(requests.size(), 3U);
    EXPECT_EQ(requests[0].method, "GET");
    EXPECT_EQ(requests[0].path, "/game/common-assets/");
    EXPECT_EQ(requests[0].query, "limit=20");
    EXPECT_EQ(requests[0].header("game-uid"), "g-1");
    EXPECT_EQ(requests[0].header("REMOTE_ADDR"), std::nullopt);
    EXPECT_EQ(requests[1].body, "{}");
    EXPECT_EQ(requests[0].connection, requests[1].connection);
    EXPECT_NE(requests[0].connection, requests[2].connection);
    EXPECT_EQ(service.requests("/coupons/").size(), 1U);
    service.forgetRequests();
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(ServiceTest, BehavesAsTold) {
    Behaviour unavailable;
    unavailable.status = 503;
    unavailable.body = "<p>later</p>";
    unavailable.contentType = "text/html";
    unavailable.headers = {{"Retry-After", "7"}};
    unavailable.times = 1;
    service.behave("/coupons/", unavailable);
    auto result = send(coupon());
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 503);
    EXPECT_EQ(result->body, "<p>later</p>");
    EXPECT_EQ(result->get_header_value("Content-Type"), "text/html");
    EXPECT_EQ(result->get_header_value("Retry-After"), "7");
    EXPECT_EQ(send(coupon())->status, 201) << "the behaviour was for one request";

    service.behave("/coupons/", {.delay = 30ms});
    auto start = Clock::now();
    EXPECT_EQ(send(coupon())->status, 201);
    EXPECT_GE(Clock::now() - start, 30ms);

    service.behave("/coupons/", {.ending = Behaviour::Ending::Cut});
    EXPECT_FALSE(send(coupon())) << "half an answer must not look whole";
    EXPECT_TRUE(send(assets())) << "other paths stay normal";

    service.behaveNormally();
    EXPECT_EQ(send(coupon())->status, 201);
}

TEST_F(ServiceTest, StopsAtOnceWhateverGoesOn) {
    service.behave("/coupons/", {.ending = Behaviour::Ending::Hang});
    service.behave("/sessions/", {.delay = 60s});
    auto idle = client();
    idle->set_keep_alive(true);
    ASSERT_TRUE(idle->Get("/media/icons/halo-one.png"));

    std::vector<std::future<bool>> answers;
    for (const Draft& draft : {coupon(), session()}) {
        answers.push_back(std::async(std::launch::async, [this, draft] { return bool(send(draft)); }));
    }
    ASSERT_TRUE(service.waitForRequests("/coupons/", 1, patience));
    ASSERT_TRUE(service.waitForRequests("/sessions/", 1, patience));

    auto start = Clock::now();
    service.stop();
    // Nothing above would have ended by itself within a minute, so a loaded machine may take its time.
    EXPECT_LT(Clock::now() - start, 2s);
    for (auto& answer : answers) EXPECT_FALSE(answer.get());
    EXPECT_EQ(service.port(), 0);
    EXPECT_EQ(service.baseURL(), "");
    EXPECT_FALSE(client()->Get("/"));
}

TEST_F(ServiceTest, AHangEndsWhenTheClientGivesUp) {
    service.behave("/coupons/", {.ending = Behaviour::Ending::Hang});
    // More than the service has threads: each must be free again once its client has gone.
    for (int index = 0; index < 40; ++index) {
        httplib::Client http("127.0.0.1", service.port());
        http.set_read_timeout(5ms);
        EXPECT_FALSE(http.Post("/coupons/", plainHeaders, "{}", "application/json"));
    }
    EXPECT_TRUE(send(assets()));
}

TEST_F(ServiceTest, StartsAgainButNeverSharesAPort) {
    Service second;
    EXPECT_FALSE(second.start({"127.0.0.1", service.port()}));
    EXPECT_EQ(second.port(), 0);
    EXPECT_FALSE(second.start({"not an address", 0}));

    int port = service.port();
    service.stop();
    ASSERT_TRUE(service.start({"127.0.0.1", port}));
    EXPECT_EQ(service.port(), port);
    EXPECT_EQ(send(assets())->status, 200);
}

}  // namespace
}  // namespace flarebox::examples
