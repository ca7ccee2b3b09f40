// A game in C plays: everything that it can ask of its tab and be told of it.

#include <AVFoundation/AVPlayer.h>
#include <AdSupport/ASIdentifierManager.h>
#include <Tests/C/RendererTesting.h>
#include <Tests/Views/TabTesting.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace flarebox::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Events = std::vector<std::string>;

/// What the game writes down of what it is told, and what it answers.
struct Diary {
    Events take() { return std::exchange(events, {}); }
    static void note(void* diary, std::string event) { static_cast<Diary*>(diary)->events.push_back(std::move(event)); }

    Events events;
    bool opensLinks = true, hasOpener = true;
};

flarebox_observer observerOf(Diary& diary) {
    flarebox_observer made = FLAREBOX_OBSERVER;
    made.context = &diary;
    made.opened = [](void* context, flarebox_tab*) { Diary::note(context, "open"); };
    made.closed = [](void* context, flarebox_tab*) { Diary::note(context, "close"); };
    made.asset_selected = [](void* context, flarebox_tab* tab, const char* uid, const char* title) {
        EXPECT_STREQ(flarebox_tab_asset(tab), uid);
        Diary::note(context, std::string("asset ") + uid + " " + title);
    };
    made.mode_changed = [](void* context, flarebox_tab* tab, std::int32_t mode) {
        EXPECT_EQ(flarebox_tab_mode(tab), mode);
        Diary::note(context, "mode " + std::to_string(mode));
    };
    made.coupon_saved = [](void* context, flarebox_tab*, const char* uid) {
        Diary::note(context, std::string("coupon ") + uid);
    };
    made.should_open_link = [](void* context, flarebox_tab*, const char* url) {
        Diary::note(context, std::string("asked ") + url);
        return static_cast<Diary*>(context)->opensLinks;
    };
    made.load_failed = [](void* context, flarebox_tab*, const char* domain, std::int32_t code, const char* reason) {
        EXPECT_STRNE(reason, "");
        Diary::note(context, std::string("failure ") + domain + " " + std::to_string(code));
    };
    return made;
}

flarebox_url_opener openerOf(Diary& diary) {
    flarebox_url_opener made = FLAREBOX_URL_OPENER;
    made.context = &diary;
    made.can_open = [](void*, const char*) { return false; };
    made.open = [](void* context, const char* url) {
        Diary::note(context, std::string("opened ") + url);
        return static_cast<Diary*>(context)->hasOpener;
    };
    return made;
}

/// On the service and the clock of a TabTest, with a host in C.
class CTabTest : public TabTest {
protected:
    void SetUp() override {
        TabTest::SetUp();
        TabTest::host_ = nullptr;
        const flarebox_renderer renderer = rendererOf(drawing_);
        host_ = flarebox_host_create(667, 375, 2, &renderer);
        ASSERT_TRUE(host_) << flarebox_last_error();
        AFNetworkReachabilityManager::sharedManager().setMonitor(network_);
        sharedService().behave("/game/common-assets/",
                               {.body = R"json([{"uid": "a", "title": "Ale", "file_icon": "x", "file_image": "y",
            "video_mobile": "z", "where_to_buy": "https://shop.example/a"},
            {"uid": "b", "title": "Bun", "file_icon": "x", "file_image": "y"}])json"});
        const flarebox_url_opener opener = openerOf(diary_);
        EXPECT_EQ(flarebox_set_url_opener(&opener), FLAREBOX_OK);
    }
    void TearDown() override {
        EXPECT_EQ(flarebox_tab_destroy(tab_), FLAREBOX_OK);
        EXPECT_EQ(flarebox_host_destroy(host_), FLAREBOX_OK);
        EXPECT_EQ(drawing_.textures, 0);
        flarebox_set_url_opener(nullptr);
        TabTest::TearDown();
    }
    /// Until its first list is there.
    void showTab() {
        tab_ = flarebox_tab_create();
        ASSERT_TRUE(tab_) << flarebox_last_error();
        EXPECT_STREQ(flarebox_tab_asset(tab_), "");
        EXPECT_EQ(flarebox_tab_set_mode(tab_, FLAREBOX_MODE_3D), FLAREBOX_FAILED) << "no product";
        const flarebox_observer observer = observerOf(diary_);
        EXPECT_EQ(flarebox_tab_set_observer(tab_, &observer), FLAREBOX_OK);
        EXPECT_EQ(flarebox_tab_show(tab_), FLAREBOX_OK);
        frames(0.2);
        settle();
    }
    void frames(double seconds) {
        for (double passed = 0; passed < seconds; passed += 1.0 / 60) {
            clock_.advance(1.0 / 60);
            flarebox_host_update(host_, 0.004);
        }
    }
    /// Until the diary has something new and nothing is under way any more.
    void settle() {
        EXPECT_TRUE(pumpUntil([this] {
            flarebox_host_update(host_, 0.004);
            return !diary_.events.empty() && MainQueue::shared().isIdle();
        }));
    }
    struct Element {
        std::string name;
        std::uint64_t id = 0;
        double x = 0, y = 0;
    };
    /// What is in sight under the name; id 0 for nothing.
    Element find(const std::string& name) {
        Element found{name};
        flarebox_host_visit_elements(
            host_,
            [](void* context, const flarebox_element* element) {
                auto& wanted = *static_cast<Element*>(context);
                const flarebox_rect& frame = element->frame;
                if (wanted.id == 0 && wanted.name == element->name)
                    wanted = {wanted.name, element->id, frame.x + frame.width / 2, frame.y + frame.height / 2};
            },
            &found);
        return found;
    }
    bool activate(const std::string& name) { return flarebox_host_activate_element(host_, find(name).id); }

    Diary diary_;
    Drawing drawing_;
    flarebox_host* host_ = nullptr;
    flarebox_tab* tab_ = nullptr;
};

TEST_F(CTabTest, ItsObserverIsToldOfEveryChangeOnce) {
    showTab();
    EXPECT_THAT(diary_.take(), ElementsAre("asset a Ale"));
    flarebox_tab_open(tab_, true);
    flarebox_tab_open(tab_, true);
    frames(0.5);
    EXPECT_EQ(flarebox_tab_set_mode(tab_, FLAREBOX_MODE_3D), FLAREBOX_OK);
    EXPECT_EQ(flarebox_tab_set_mode(tab_, FLAREBOX_MODE_3D), FLAREBOX_OK);
    EXPECT_EQ(flarebox_tab_set_mode(tab_, 3), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_THAT(diary_.take(), ElementsAre("open", "mode 1"));

    // Refused, then opened by the game, then allowed.
    const char* const shop = "https://shop.example/a";
    diary_.opensLinks = false;
    EXPECT_TRUE(activate("Buy"));
    EXPECT_THAT(diary_.take(), ElementsAre("asked https://shop.example/a"));
    EXPECT_EQ(flarebox_open_link(shop), FLAREBOX_OK);
    EXPECT_THAT(diary_.take(), ElementsAre("opened https://shop.example/a"));
    diary_.opensLinks = true;
    EXPECT_TRUE(activate("Buy"));
    EXPECT_THAT(diary_.take(), ElementsAre("asked https://shop.example/a", "opened https://shop.example/a"));

    EXPECT_TRUE(activate("Bun"));
    EXPECT_THAT(diary_.take(), ElementsAre("mode 0", "asset b Bun"));
    EXPECT_EQ(flarebox_tab_set_mode(tab_, FLAREBOX_MODE_VIDEO), FLAREBOX_FAILED) << "it has none";
    EXPECT_TRUE(activate("Get coupon"));
    settle();
    EXPECT_THAT(diary_.take(), ElementsAre("coupon b"));

    flarebox_tab_close(tab_, true);
    flarebox_tab_close(tab_, true);
    flarebox_tab_open(tab_, false);
    EXPECT_EQ(flarebox_tab_remove(tab_), FLAREBOX_OK);
    EXPECT_EQ(flarebox_tab_remove(tab_), FLAREBOX_OK);
    EXPECT_FALSE(flarebox_tab_is_open(tab_));
    EXPECT_THAT(diary_.take(), ElementsAre("close", "open", "close"));

    sharedService().behave("/sessions/", {.status = 500});
    EXPECT_EQ(flarebox_tab_reload(tab_), FLAREBOX_OK);
    settle();
    EXPECT_THAT(diary_.take(), ElementsAre("failure NSURLErrorDomain " + std::to_string(NSURLErrorBadServerResponse)));
    flarebox_tab_set_observer(tab_, nullptr);
    network_->setStatus(AFNetworkReachabilityStatusNotReachable);
    frames(0.1);
    EXPECT_THAT(diary_.take(), IsEmpty());
}

TEST_F(CTabTest, WithoutAnIdentifierOfTheDeviceItFailsToLoad) {
    FlareboxConfig::defaultConfig().setDeviceUID(nullptr);
    flarebox_set_tracking_allowed(false);
    showTab();
    EXPECT_THAT(diary_.take(), ElementsAre("failure " + std::string(kApiErrorDomain) + " " +
                                           std::to_string(kApiMissingParamErrorCode)));
    flarebox_set_tracking_allowed(true);
    frames(181);
    settle();
    EXPECT_THAT(diary_.take(), ElementsAre("asset a Ale"));
    ASIdentifierManager::sharedManager().setAdvertisingTrackingEnabled(std::nullopt);
}

TEST_F(CTabTest, InputReachesThePanelOrIsTheGames) {
    showTab();
    const Element button = find("Open Flarebox");
    ASSERT_NE(button.id, 0U);
    // What comes into sight later is made ahead, over several frames.
    const auto drawAll = [&] {
        for (int frame = 0; frame < 100 && flarebox_host_needs_display(host_); ++frame) flarebox_host_draw(host_);
    };
    drawAll();
    EXPECT_FALSE(flarebox_host_pointer_hovered(host_, 600, 10));
    EXPECT_TRUE(flarebox_host_pointer_hovered(host_, button.x, button.y));
    EXPECT_TRUE(flarebox_host_needs_display(host_));
    drawAll();
    EXPECT_EQ(flarebox_host_pointer_left(host_), FLAREBOX_OK);
    EXPECT_TRUE(flarebox_host_needs_display(host_)) << "it looks as before";

    EXPECT_TRUE(flarebox_host_pointer_down(host_, 2, button.x, button.y));
    EXPECT_TRUE(flarebox_host_pointer_moved(host_, 2, button.x + 1, button.y));
    EXPECT_FALSE(flarebox_host_pointer_moved(host_, 3, button.x, button.y)) << "another finger";
    EXPECT_EQ(flarebox_host_pointer_cancelled(host_, 2), FLAREBOX_OK);
    EXPECT_FALSE(flarebox_host_pointer_up(host_, 2, button.x, button.y));
    EXPECT_FALSE(flarebox_tab_is_open(tab_));
    flarebox_host_pointer_down(host_, 2, button.x, button.y);
    EXPECT_TRUE(flarebox_host_pointer_up(host_, 2, button.x, button.y));
    EXPECT_TRUE(flarebox_tab_is_open(tab_));
    frames(0.5);

    const Element list = find("Bun");
    EXPECT_TRUE(flarebox_host_scrolled(host_, list.x, list.y, 5, 0));
    EXPECT_FALSE(flarebox_host_scrolled(host_, 600, 10, 5, 0));
    flarebox_tab_set_mode(tab_, FLAREBOX_MODE_3D);
    EXPECT_FALSE(flarebox_host_stick_moved(host_, 1, 0));
    flarebox_host_take_focus(host_);
    EXPECT_TRUE(flarebox_host_stick_moved(host_, 1, 0));
    EXPECT_EQ(flarebox_host_give_back_focus(host_), FLAREBOX_OK);
    EXPECT_FALSE(flarebox_host_has_focus(host_));
    EXPECT_FALSE(flarebox_host_key_down(host_, "left"));

    drawAll();
    EXPECT_GT(drawing_.textures, 0);
    EXPECT_EQ(flarebox_host_release_textures(host_), FLAREBOX_OK);
    EXPECT_EQ(drawing_.textures, 0);
    drawAll();
    EXPECT_GT(drawing_.textures, 0);
}

TEST_F(CTabTest, WhatIsSetHolds) {
    showTab();
    flarebox_tab_open(tab_, false);
    EXPECT_EQ(flarebox_tab_show_button(tab_, false), FLAREBOX_OK);
    frames(0.5);
    EXPECT_FALSE(flarebox_tab_is_open(tab_));
    EXPECT_FALSE(flarebox_tab_is_button_visible(tab_));
    EXPECT_EQ(find("Open Flarebox").id, 0U);
    flarebox_tab_show_button(tab_, true);
    EXPECT_TRUE(flarebox_tab_is_button_visible(tab_));
    EXPECT_EQ(flarebox_tab_set_button_alpha(tab_, 0.25), FLAREBOX_OK);
    EXPECT_EQ(flarebox_tab_set_button_alpha(tab_, 1.5), FLAREBOX_INVALID_ARGUMENT);
    float opacity = 0;
    drawing_.inQuad = [&](const flarebox_quad& quad) { opacity = std::max(opacity, quad.opacity); };
    frames(0.1);
    flarebox_host_draw(host_);
    EXPECT_FLOAT_EQ(opacity, 0.25F);

    EXPECT_EQ(flarebox_tab_set_refresh(tab_, 7), FLAREBOX_OK);
    EXPECT_EQ(flarebox_tab_set_refresh(tab_, -1), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_EQ(FlareboxConfig::defaultConfig().getTimeRefresh(), 7);
    for (const bool muted : {true, false}) {
        EXPECT_EQ(flarebox_set_muted(muted), FLAREBOX_OK);
        EXPECT_EQ(flarebox_is_muted(), muted);
        EXPECT_EQ(AVPlayer::isEverythingMuted(), muted);
        EXPECT_EQ(flarebox_set_tracking_allowed(muted), FLAREBOX_OK);
        EXPECT_EQ(ASIdentifierManager::sharedManager().isAdvertisingTrackingEnabled(), muted);
    }
    ASIdentifierManager::sharedManager().setAdvertisingTrackingEnabled(std::nullopt);
    const std::vector<std::string> ofMachine = NSBundle::preferredLanguages();
    const char* const languages[] = {"de-DE", "fr", nullptr};
    EXPECT_EQ(flarebox_set_languages(languages, 2), FLAREBOX_OK);
    EXPECT_EQ(flarebox_set_languages(languages, 3), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_EQ(flarebox_set_languages(nullptr, 1), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_THAT(NSBundle::preferredLanguages(), ElementsAre("de-DE", "fr"));
    EXPECT_EQ(flarebox_set_languages(nullptr, 0), FLAREBOX_OK);
    EXPECT_EQ(NSBundle::preferredLanguages(), ofMachine);

    EXPECT_EQ(flarebox_host_longest_turn(host_), 0);
    EXPECT_EQ(flarebox_host_set_turn_budget(host_, INFINITY), FLAREBOX_OK);
    frames(0.1);
    EXPECT_GT(flarebox_host_longest_turn(host_), 0);
    EXPECT_EQ(flarebox_host_set_turn_budget(host_, 0), FLAREBOX_OK);
    EXPECT_EQ(flarebox_host_set_turn_budget(host_, -1), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_EQ(flarebox_host_reset_longest_turn(host_), FLAREBOX_OK);
    EXPECT_EQ(flarebox_host_longest_turn(host_), 0);
}

TEST_F(CTabTest, LinksAreOpenedByTheGameAsFarAsTheirSchemesAllow) {
    flarebox_url_opener half = FLAREBOX_URL_OPENER;
    half.open = openerOf(diary_).open;
    EXPECT_EQ(flarebox_set_url_opener(&half), FLAREBOX_INVALID_ARGUMENT);
    const auto usual = UIApplication::sharedApplication().allowedSchemes();
    for (const char* wrong : {"HTTP", "shop:", "", "1st"})
        EXPECT_EQ(flarebox_set_schemes(&wrong, 1), FLAREBOX_INVALID_ARGUMENT) << wrong;
    const char* const schemes[] = {"https", "shop"};
    EXPECT_EQ(flarebox_set_schemes(schemes, 2), FLAREBOX_OK);
    const struct {
        const char* url;
        flarebox_result result;
    } links[] = {{nullptr, FLAREBOX_INVALID_ARGUMENT},    {"", FLAREBOX_INVALID_ARGUMENT},
                 {"https://a.example", FLAREBOX_OK},      {"shop://item", FLAREBOX_OK},
                 {"http://a.example", FLAREBOX_FAILED},   {"javascript:alert(1)", FLAREBOX_FAILED},
                 {"https://a@b.example", FLAREBOX_FAILED}};
    for (const auto& [url, result] : links) EXPECT_EQ(flarebox_open_link(url), result) << (url ? url : "null");
    EXPECT_THAT(diary_.take(), ElementsAre("opened https://a.example", "opened shop://item"));
    diary_.hasOpener = false;
    EXPECT_EQ(flarebox_open_link("shop://item"), FLAREBOX_FAILED);
    EXPECT_STREQ(flarebox_last_error(), "nothing opens the link");
    EXPECT_EQ(flarebox_set_schemes(nullptr, 0), FLAREBOX_OK);
    EXPECT_EQ(flarebox_open_link("shop://item"), FLAREBOX_FAILED);
    EXPECT_STREQ(flarebox_last_error(), "such links are not opened");
    UIApplication::sharedApplication().setAllowedSchemes(usual);
}

}  // namespace
}  // namespace flarebox::testing
