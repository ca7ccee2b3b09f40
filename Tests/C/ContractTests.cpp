// What the C interface promises beyond what it passes on.

#include <Flarebox/C/flarebox.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Foundation/MainQueue.h>
#include <Tests/C/RendererTesting.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIHost.h>
#include <UIKit/UIWindow.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace flarebox::testing {
namespace {

class ContractTest : public ::testing::Test {
protected:
    ContractTest() { sharedService(); }
    ~ContractTest() override {
        flarebox_host_destroy(host_);
        EXPECT_EQ(drawing_.textures, 0);
    }
    void makeHost() {
        const flarebox_renderer drawing = rendererOf(drawing_);
        host_ = flarebox_host_create(667, 375, 2, &drawing);
        ASSERT_TRUE(host_) << flarebox_last_error();
    }
    /// Without a configuration the tab's load fails an assertion, which ends an update: the next one does the rest.
    bool updateUntil(const std::function<bool()>& condition) {
        for (int i = 0; i < 20000 && !condition(); ++i) {
            flarebox_host_update(host_, 1);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return condition();
    }
    /// A host with a tab of which something can be told; null when there is none.
    flarebox_tab* showTab() {
        makeHost();
        flarebox_tab* const tab = flarebox_tab_create();
        flarebox_tab_show(tab);
        const auto isSeen = [this] { return flarebox_host_visit_elements(host_, nullptr, nullptr) > 0; };
        return tab && updateUntil(isSeen) ? tab : nullptr;
    }
    Drawing drawing_;
    flarebox_host* host_ = nullptr;
};

TEST_F(ContractTest, WrongArgumentsAreRefusedWithAReason) {
    const flarebox_renderer good = rendererOf(drawing_);
    flarebox_renderer unsized = good, incomplete = good;
    unsized.struct_size = 7;
    incomplete.draw_quad = nullptr;
    const double infinite = INFINITY, none = NAN;
    const struct {
        double width, height, scale;
        const flarebox_renderer* drawing;
    } hosts[] = {
        {667, 375, 2, nullptr}, {667, 375, 2, &unsized}, {667, 375, 2, &incomplete}, {0, 375, 2, &good},
        {667, -1, 2, &good},    {667, 375, none, &good}, {infinite, 375, 2, &good},  {1e300, 375, 2, &good},
        {667, 8193, 2, &good},  {667, 375, 16.5, &good},
    };
    for (const auto& [width, height, scale, drawing] : hosts) {
        EXPECT_EQ(flarebox_host_create(width, height, scale, drawing), nullptr);
        EXPECT_STRNE(flarebox_last_error(), "");
    }
    makeHost();
    EXPECT_EQ(flarebox_host_create(10, 10, 1, &good), nullptr);
    EXPECT_STREQ(flarebox_last_error(), "there is a host already");
    EXPECT_EQ(flarebox_host_update(host_, none), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_EQ(flarebox_host_set_screen(host_, 0, 0, 0), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_EQ(flarebox_host_set_screen(host_, 1e300, 1e300, 1e300), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_EQ(flarebox_host_set_screen(host_, 8192, 1, 2), FLAREBOX_OK);
    EXPECT_EQ(flarebox_host_set_orientation(host_, 9), FLAREBOX_INVALID_ARGUMENT);
}

TEST_F(ContractTest, InputThatIsNoneIsRefusedWithAReasonOfItsOwn) {
    makeHost();
    const struct {
        std::function<bool()> call;
        const char* reason;
    } calls[] = {
        {[&] { return flarebox_host_pointer_down(host_, -1, 1, 1); }, "pointers are numbered from 0 on"},
        {[&] { return flarebox_host_pointer_moved(host_, 0, NAN, 1); }, "a point is two numbers"},
        {[&] { return flarebox_host_pointer_up(host_, 0, 1, INFINITY); }, "a point is two numbers"},
        {[&] { return flarebox_host_pointer_hovered(host_, -INFINITY, 1); }, "a point is two numbers"},
        {[&] { return flarebox_host_pointer_cancelled(host_, -7) == FLAREBOX_OK; }, "pointers are numbered from 0 on"},
        {[&] { return flarebox_host_scrolled(host_, 1, 1, 0, NAN); }, "a point is two numbers"},
        {[&] { return flarebox_host_key_down(host_, nullptr); }, "the key is null"},
        {[&] { return flarebox_host_press(host_, 99); }, "there is no such press"},
        {[&] { return flarebox_host_stick_moved(host_, 0, NAN); }, "a deflection is two numbers"},
        {[&] { return flarebox_host_activate_element(host_, 0); }, "there is no such element, or not any more"},
        {[&] { return flarebox_host_adjust_element(host_, 0, 1); }, "there is no such element, or not any more"},
        {[&] { return flarebox_host_press(nullptr, FLAREBOX_PRESS_UP); }, "there is no such handle, or not any more"},
    };
    for (const auto& [call, reason] : calls) {
        flarebox_tab_set_button_alpha(nullptr, 2);
        EXPECT_FALSE(call());
        EXPECT_STREQ(flarebox_last_error(), reason);
    }
}

TEST_F(ContractTest, HandlesAreLookedUpBeforeTheyAreFollowed) {
    makeHost();
    flarebox_host* const gone = host_;
    flarebox_tab* const tab = flarebox_tab_create();
    ASSERT_TRUE(tab) << flarebox_last_error();
    EXPECT_EQ(flarebox_tab_destroy(tab), FLAREBOX_OK);
    EXPECT_EQ(flarebox_host_destroy(host_), FLAREBOX_OK);
    host_ = nullptr;
    // Others may lie where those lay.
    makeHost();
    flarebox_tab* const later = flarebox_tab_create();
    for (flarebox_tab* handle : {tab, static_cast<flarebox_tab*>(nullptr)}) {
        EXPECT_EQ(flarebox_tab_show(handle), FLAREBOX_INVALID_HANDLE);
        EXPECT_EQ(flarebox_tab_open(handle, true), FLAREBOX_INVALID_HANDLE);
        EXPECT_EQ(flarebox_tab_set_observer(handle, nullptr), FLAREBOX_INVALID_HANDLE);
        EXPECT_FALSE(flarebox_tab_is_open(handle));
    }
    for (flarebox_host* handle : {gone, static_cast<flarebox_host*>(nullptr)}) {
        EXPECT_EQ(flarebox_host_update(handle, 0.004), FLAREBOX_INVALID_HANDLE);
        EXPECT_EQ(flarebox_host_draw(handle), FLAREBOX_INVALID_HANDLE);
        EXPECT_FALSE(flarebox_host_pointer_down(handle, 0, 1, 1));
    }
    EXPECT_EQ(flarebox_tab_show(later), FLAREBOX_OK);
    EXPECT_EQ(flarebox_tab_destroy(later), FLAREBOX_OK);
    EXPECT_EQ(flarebox_tab_destroy(nullptr), FLAREBOX_OK);
    EXPECT_EQ(flarebox_host_destroy(gone), FLAREBOX_INVALID_HANDLE);
}

TEST_F(ContractTest, WhatCannotHappenIsNoSuccess) {
    makeHost();
    flarebox_tab* const tab = flarebox_tab_create();
    const auto failure = [](flarebox_result result) {
        return result == FLAREBOX_FAILED ? flarebox_last_error() : "none";
    };
    EXPECT_STREQ(failure(flarebox_tab_open(tab, false)), "the tab is not attached to a window");
    EXPECT_EQ(flarebox_tab_close(tab, false), FLAREBOX_OK);
    EXPECT_EQ(flarebox_host_destroy(host_), FLAREBOX_OK);
    EXPECT_STREQ(failure(flarebox_tab_show(tab)), "there is no host");
    EXPECT_STREQ(failure(flarebox_tab_open(tab, false)), "the tab is not attached to a window");
    EXPECT_EQ(flarebox_tab_destroy(tab), FLAREBOX_OK);
}

TEST_F(ContractTest, TheHostStaysUntilTheCallbackIsOver) {
    flarebox_tab* const tab = showTab();
    ASSERT_TRUE(tab) << flarebox_last_error();
    int attempts = 0;
    std::function<void()> attempt = [&] {
        ++attempts;
        for (const auto end : {flarebox_host_destroy, flarebox_host_release_textures}) {
            EXPECT_EQ(end(host_), FLAREBOX_FAILED);
            EXPECT_STREQ(flarebox_last_error(), "called inside a callback");
        }
    };
    const auto attempted = [&](const std::function<void()>& occasion) {
        const int before = attempts;
        occasion();
        return attempts > before;
    };
    EXPECT_TRUE(attempted([&] {
        flarebox_host_visit_elements(
            host_, [](void* context, auto*) { (*static_cast<std::function<void()>*>(context))(); }, &attempt);
    }));
    flarebox_observer observer = FLAREBOX_OBSERVER;
    observer.context = &attempt;
    observer.opened = [](void* context, flarebox_tab*) { (*static_cast<std::function<void()>*>(context))(); };
    flarebox_tab_set_observer(tab, &observer);
    EXPECT_TRUE(attempted([&] { flarebox_tab_open(tab, false); }));
    dispatch_async_main(attempt);
    EXPECT_TRUE(attempted([&] { updateUntil([&, before = attempts] { return attempts > before; }); }));
    drawing_.inQuad = [&](auto&) {
        attempt();
        flarebox_tab_destroy(tab);
    };
    EXPECT_TRUE(attempted([&] { flarebox_host_draw(host_); }));
    drawing_.inQuad = nullptr;
    EXPECT_EQ(flarebox_host_release_textures(host_), FLAREBOX_OK);
    EXPECT_EQ(drawing_.textures, 0);
}

TEST_F(ContractTest, OtherThreadsAreRefusedAndHaveTheirOwnReason) {
    makeHost();
    EXPECT_EQ(flarebox_host_update(nullptr, 0), FLAREBOX_INVALID_HANDLE);
    const std::string reason = flarebox_last_error();
    std::thread([this] {
        EXPECT_STREQ(flarebox_last_error(), "");
        EXPECT_EQ(flarebox_host_update(host_, 0), FLAREBOX_WRONG_THREAD);
        EXPECT_STREQ(flarebox_last_error(), "called from another thread than the main one");
        EXPECT_EQ(flarebox_tab_create(), nullptr);
        const flarebox_renderer drawing = rendererOf(drawing_);
        EXPECT_EQ(flarebox_host_create(667, 375, 2, &drawing), nullptr);
    }).join();
    EXPECT_EQ(flarebox_last_error(), reason);
}

TEST_F(ContractTest, NoExceptionLeavesAndTheLogGoesWhereItIsSent) {
    makeHost();
    dispatch_async_main([] { throw std::runtime_error("from a callback"); });
    EXPECT_EQ(flarebox_host_update(host_, 1), FLAREBOX_FAILED);
    EXPECT_STREQ(flarebox_last_error(), "from a callback");
    EXPECT_EQ(flarebox_host_update(host_, 1), FLAREBOX_OK);

    std::vector<std::string> lines;
    flarebox_set_log_sink(
        [](void* context, std::int32_t level, const char* message) {
            static_cast<std::vector<std::string>*>(context)->push_back(std::to_string(level) + message);
        },
        &lines);
    std::thread([this] { dispatch_async_main([] {}), FlareboxConfig::defaultConfig().setGameUID("x"); }).join();
    EXPECT_EQ(flarebox_set_log_sink(nullptr, nullptr), FLAREBOX_OK);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines.front().rfind("3FlareboxConfig::setGameUID", 0), 0U) << lines.front();
}

/// Fills the window.
class Dial : public UIView {
public:
    explicit Dial(CGRect frame) {
        setFrame(frame);
        setIsAccessibilityElement(true);
        setAccessibilityLabel("Dial");
    }
    bool accessibilityAdjust(int steps) override {
        position += steps;
        return true;
    }
    int position = 0;
};

TEST_F(ContractTest, OnlyWhatIsInReachIsAdjusted) {
    makeHost();
    UIWindow& window = *UIApplication::sharedApplication().delegate()->window();
    const auto dial = make<Dial>(window.bounds());
    window.addSubview(*dial);
    const std::uint64_t id = dial->accessibilityNumber();
    EXPECT_TRUE(flarebox_host_adjust_element(host_, id, 3));
    EXPECT_TRUE(UIHost::current()->accessibilityAdjust(*dial, -1));
    EXPECT_EQ(dial->position, 2);
    const auto cover = make<UIView>();
    cover->setFrame(window.bounds());
    cover->setBackgroundColor(UIColor::blackColor());
    window.addSubview(*cover);
    EXPECT_FALSE(UIHost::current()->accessibilityAdjust(*dial, 1)) << "covered";
    cover->removeFromSuperview();
    std::thread([&] { EXPECT_FALSE(UIHost::current()->accessibilityAdjust(*dial, 1)); }).join();
    dial->removeFromSuperview();
    EXPECT_FALSE(UIHost::current()->accessibilityAdjust(*dial, 1)) << "in no window";
    EXPECT_FALSE(flarebox_host_adjust_element(host_, id, 1));
    EXPECT_EQ(dial->position, 2);
}

TEST_F(ContractTest, ElementsAreToldOfAndActivated) {
    flarebox_tab* const tab = showTab();
    ASSERT_TRUE(tab) << flarebox_last_error();
    struct Known {
        std::uint64_t id;
        std::string told;
        flarebox_rect frame;
    };
    const auto first = [this] {
        Known known{};
        const auto visit = [](void* context, const flarebox_element* element) {
            auto& found = *static_cast<Known*>(context);
            EXPECT_EQ(element->struct_size, sizeof(flarebox_element));
            if (found.id != 0) return;
            found = {element->id,
                     std::to_string(element->role) + " " + element->name + "/" + element->value + " " +
                         std::to_string(element->state),
                     element->frame};
        };
        flarebox_host_visit_elements(host_, visit, &known);
        return known;
    };
    const Known button = first();
    EXPECT_EQ(button.told, "2 Open Flarebox/ 0");
    EXPECT_EQ(flarebox_host_set_interface_scale(host_, 2), FLAREBOX_OK);
    flarebox_host_update(host_, 1);
    EXPECT_NEAR(first().frame.width, button.frame.width, 1) << "fits no larger panel beside it";
    EXPECT_EQ(flarebox_host_set_interface_scale(host_, 1), FLAREBOX_OK);
    EXPECT_EQ(flarebox_host_set_safe_area(host_, 0, 50, 0, 0), FLAREBOX_OK);
    EXPECT_EQ(flarebox_host_set_reduce_motion(host_, true), FLAREBOX_OK);
    flarebox_host_update(host_, 1);
    EXPECT_NEAR(first().frame.x, 50, 0.01);

    EXPECT_FALSE(flarebox_host_press(host_, FLAREBOX_PRESS_SELECT));
    EXPECT_EQ(flarebox_host_take_focus(host_), FLAREBOX_OK);
    EXPECT_FALSE(flarebox_host_press(host_, 99));
    EXPECT_TRUE(flarebox_host_has_focus(host_));
    EXPECT_TRUE(flarebox_host_press(host_, FLAREBOX_PRESS_DOWN));
    EXPECT_EQ(first().told, "2 Open Flarebox/ 4") << "focused";
    EXPECT_FALSE(flarebox_host_adjust_element(host_, button.id, 1));
    EXPECT_STREQ(flarebox_last_error(), "nothing of the kind can be done with the element");
    EXPECT_FALSE(flarebox_host_activate_element(host_, button.id + 100000));
    EXPECT_TRUE(flarebox_host_activate_element(host_, button.id));
    EXPECT_TRUE(flarebox_tab_is_open(tab));
    EXPECT_TRUE(flarebox_host_press(host_, FLAREBOX_PRESS_BACK));
    EXPECT_FALSE(flarebox_tab_is_open(tab));
    EXPECT_FALSE(flarebox_host_has_focus(host_));

    EXPECT_EQ(flarebox_host_set_interface_scale(host_, NAN), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_EQ(flarebox_host_set_safe_area(host_, 0, -1, 0, 0), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_EQ(flarebox_host_visit_elements(nullptr, nullptr, nullptr), 0U);
    EXPECT_EQ(flarebox_tab_destroy(tab), FLAREBOX_OK);
}

}  // namespace
}  // namespace flarebox::testing
