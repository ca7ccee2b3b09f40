// What the C interface promises beyond what it passes on.

#include <Flarebox/C/flarebox.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Foundation/MainQueue.h>

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace flarebox::testing {
namespace {

std::uint32_t createTexture(void* count, std::int32_t, std::int32_t) {
    return static_cast<std::uint32_t>(++*static_cast<int*>(count));
}
void updateTexture(void*, std::uint32_t, std::int32_t, std::int32_t, std::int32_t, std::int32_t, const std::uint32_t*,
                   std::int32_t) {}
void destroyTexture(void* count, std::uint32_t) {
    --*static_cast<int*>(count);
}
void drawQuad(void*, const flarebox_quad*) {}

class ContractTest : public ::testing::Test {
protected:
    ~ContractTest() override {
        flarebox_host_destroy(host_);
        EXPECT_EQ(textures_, 0);
    }
    flarebox_renderer renderer() {
        flarebox_renderer made = FLAREBOX_RENDERER;
        made.context = &textures_;
        made.create_texture = createTexture;
        made.update_texture = updateTexture;
        made.destroy_texture = destroyTexture;
        made.draw_quad = drawQuad;
        return made;
    }
    void makeHost() {
        const flarebox_renderer drawing = renderer();
        host_ = flarebox_host_create(667, 375, 2, &drawing);
        ASSERT_TRUE(host_) << flarebox_last_error();
    }
    int textures_ = 0;
    flarebox_host* host_ = nullptr;
};

TEST_F(ContractTest, WrongArgumentsAreRefusedWithAReason) {
    const flarebox_renderer good = renderer();
    flarebox_renderer unsized = good, incomplete = good;
    unsized.struct_size = 7;
    incomplete.draw_quad = nullptr;
    const double infinite = INFINITY, none = NAN;
    const struct {
        double width, height, scale;
        const flarebox_renderer* drawing;
    } hosts[] = {
        {667, 375, 2, nullptr}, {667, 375, 2, &unsized}, {667, 375, 2, &incomplete}, {0, 375, 2, &good},
        {667, -1, 2, &good},    {667, 375, none, &good}, {infinite, 375, 2, &good},
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
    EXPECT_EQ(flarebox_host_set_orientation(host_, 9), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_FALSE(flarebox_host_key_down(host_, nullptr));
    EXPECT_EQ(flarebox_configure(nullptr), FLAREBOX_INVALID_ARGUMENT);
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

TEST_F(ContractTest, OtherThreadsAreRefusedAndHaveTheirOwnReason) {
    makeHost();
    EXPECT_EQ(flarebox_host_update(nullptr, 0), FLAREBOX_INVALID_HANDLE);
    const std::string reason = flarebox_last_error();
    std::thread([this] {
        EXPECT_STREQ(flarebox_last_error(), "");
        EXPECT_EQ(flarebox_host_update(host_, 0), FLAREBOX_WRONG_THREAD);
        EXPECT_STREQ(flarebox_last_error(), "called from another thread than the main one");
        EXPECT_EQ(flarebox_tab_create(), nullptr);
        const flarebox_renderer drawing = renderer();
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
    flarebox_set_log_sink(nullptr, nullptr);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines.front().rfind("3FlareboxConfig::setGameUID", 0), 0U) << lines.front();
}

TEST_F(ContractTest, ConfigurationsOfNewerCallersAreTakenAsFarAsTheyAreKnown) {
    makeHost();
    struct {
        flarebox_configuration known = FLAREBOX_CONFIGURATION;
        long more[4] = {1, 2, 3, 4};
    } newer;
    newer.known.struct_size = sizeof newer;
    newer.known.game_uid = "newer";
    newer.known.age = 30;
    newer.known.refresh_seconds = 77;
    newer.known.enable_logging = false;
    EXPECT_EQ(flarebox_configure(&newer.known), FLAREBOX_OK);
    const FlareboxConfig& config = FlareboxConfig::defaultConfig();
    EXPECT_EQ(config.gameUID(), NSString("newer"));
    EXPECT_FALSE(config.gameVersion());
    EXPECT_EQ(config.getTimeRefresh(), 77);
    EXPECT_EQ(config.sessionEdit()->age().integerValue(), 30);
    EXPECT_FALSE(config.sessionEdit()->deviceId());
}

}  // namespace
}  // namespace flarebox::testing
