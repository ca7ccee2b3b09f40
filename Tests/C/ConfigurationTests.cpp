// What flarebox_configure promises. The address and the folder of resources can be set once in a process, so this test
// comes before those that use them.

#include <Flarebox/C/flarebox.h>
#include <Foundation/NSProcessInfo.h>
#include <Tests/Views/TabTesting.h>

#include <functional>
#include <string>

namespace flarebox::testing {
namespace {

class ConfigurationTest : public ::testing::Test {
protected:
    static std::string address() {
        return flareboxBundle().objectForInfoDictionaryKey("API_URL").as<NSString>().string();
    }
    static std::string folderOfModels() { return NSFileManager::defaultManager().documentsPath(); }

    UIHost host_{{100, 100}, 1};
    const FlareboxConfig& config_ = FlareboxConfig::defaultConfig();
};

TEST_F(ConfigurationTest, ALaterOneReplacesTheEarlierOneOrChangesNothing) {
    ASSERT_FALSE(FlareboxManager::hasSharedInstance()) << "by a test before this one";
    TemporaryDirectory folder;
    folder.write("Info.plist", "<plist><dict><key>API_URL</key><string>http://own.example</string></dict></plist>");
    flarebox_configuration bare = FLAREBOX_CONFIGURATION;
    const std::string resources = folder.path();
    bare.resources = resources.c_str();
    flarebox_configuration full = bare;
    full.game_uid = "game";
    full.api_url = "http://127.0.0.1:9";
    full.documents = "/models";
    full.first_name = "Ada";
    full.age = 30;
    full.refresh_seconds = 77;
    EXPECT_EQ(flarebox_configure(&full), FLAREBOX_OK) << flarebox_last_error();
    EXPECT_EQ(flareboxBundle().bundlePath(), folder.path());
    EXPECT_EQ(address(), "http://127.0.0.1:9");
    EXPECT_EQ(folderOfModels(), "/models");
    EXPECT_EQ(config_.sessionEdit()->age().integerValue(), 30);
    EXPECT_EQ(config_.getTimeRefresh(), 77);

    EXPECT_EQ(flarebox_configure(&bare), FLAREBOX_OK) << flarebox_last_error();
    EXPECT_EQ(address(), "http://own.example");
    EXPECT_EQ(folderOfModels(), NSProcessInfo::processInfo().dataDirectory() + "/Documents");
    EXPECT_FALSE(config_.gameUID());
    EXPECT_FALSE(config_.sessionEdit()->firstName());
    EXPECT_FALSE(config_.sessionEdit()->age());
    EXPECT_EQ(config_.getTimeRefresh(), 180);

    using Configuration = flarebox_configuration;
    const std::string service = sharedService().baseURL();
    bare.api_url = service.c_str();
    EXPECT_EQ(flarebox_configure(&bare), FLAREBOX_OK) << flarebox_last_error();
    FlareboxManager::sharedInstance();
    const struct {
        std::function<void(Configuration&)> change;
        flarebox_result result;
        const char* reason;
    } refused[] = {
        {[](Configuration& c) { c.age = -1; }, FLAREBOX_INVALID_ARGUMENT, "the age has to be 0 or more"},
        {[](Configuration& c) { c.refresh_seconds = -5; }, FLAREBOX_INVALID_ARGUMENT,
         "refresh_seconds have to be 0 or more"},
        {[](Configuration& c) { c.log_level = 0; }, FLAREBOX_INVALID_ARGUMENT, "the log_level has to be from 1 to 3"},
        {[](Configuration& c) { c.log_level = 7; }, FLAREBOX_INVALID_ARGUMENT, "the log_level has to be from 1 to 3"},
        {[](Configuration& c) { c.api_url = "nowhere"; }, FLAREBOX_INVALID_ARGUMENT,
         "the api_url is no address of http or https"},
        {[](Configuration& c) { c.api_url = "ftp://one.example"; }, FLAREBOX_INVALID_ARGUMENT,
         "the api_url is no address of http or https"},
        {[](Configuration& c) { c.struct_size = 7; }, FLAREBOX_INVALID_ARGUMENT,
         "the struct is null, or its struct_size is none"},
        {[](Configuration& c) { c.resources = "/elsewhere"; }, FLAREBOX_FAILED,
         "the folder of resources is fixed by the first configuration, or tab"},
        {[](Configuration& c) { c.resources = nullptr; }, FLAREBOX_FAILED,
         "the folder of resources is fixed by the first configuration, or tab"},
        {[](Configuration& c) { c.api_url = "http://127.0.0.1:9"; }, FLAREBOX_FAILED,
         "the api_url is fixed by the first request"},
        {[](Configuration& c) { c.api_url = nullptr; }, FLAREBOX_FAILED, "the api_url is fixed by the first request"},
    };
    for (const auto& [change, result, reason] : refused) {
        Configuration changed = full;
        changed.api_url = bare.api_url;
        change(changed);
        EXPECT_EQ(flarebox_configure(&changed), result);
        EXPECT_STREQ(flarebox_last_error(), reason);
        EXPECT_EQ(address(), service);
        EXPECT_FALSE(config_.gameUID());
        EXPECT_NE(folderOfModels(), "/models");
    }
    EXPECT_EQ(flarebox_configure(nullptr), FLAREBOX_INVALID_ARGUMENT);
    bare.enable_logging = false;
    bare.log_level = 0;
    EXPECT_EQ(flarebox_configure(&bare), FLAREBOX_OK) << "nothing is logged anyway";

    // Of a caller that knows more than this version.
    struct {
        flarebox_configuration known;
        long more[4] = {1, 2, 3, 4};
    } newer{bare};
    newer.known.struct_size = sizeof newer;
    newer.known.game_uid = "newer";
    EXPECT_EQ(flarebox_configure(&newer.known), FLAREBOX_OK);
    EXPECT_EQ(config_.gameUID(), NSString("newer"));
}

}  // namespace
}  // namespace flarebox::testing
