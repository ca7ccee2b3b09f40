// The sample game follows its layout files and its theme while it runs.

#include "GameProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace flarebox::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(WatchTest, ShowsWhatIsSavedAndKeepsWhatWasRight) {
    const TemporaryDirectory folder;
    std::filesystem::copy(FLAREBOX_RESOURCES, folder.path("Resources"), std::filesystem::copy_options::recursive);
    const std::string layout = folder.read("Resources/FlareboxView.xml");
    const auto themed = [](const std::string& entry) { return "<theme>\n" + entry + "\n</theme>"; };
    const auto written = [&](const std::string& from, const std::string& to) {
        std::string text = layout;
        text.replace(text.find(from), from.size(), to);
        folder.write("Resources/FlareboxView.xml", text);
    };
    folder.write("theme.xml", themed(""));
    folder.write("s.script", R"(await idle 60
call open
wait 0.5
screenshot 0.png
await text lbFlareboxLogo "Changed layout" 60
screenshot 1.png
await text lbFlareboxLogo "Changed theme" 60
dump end.json
)");
    // Each step waits for what the one before led to.
    const auto isTold = [&](const char* text) { return folder.read("stderr").find(text) != std::string::npos; };
    int step = 0;
    const auto work = [&](int) {
        if (step == 0 && folder.has("0.png")) {
            written("title=\"Get coupon\"", "titel=\"Get coupon\"");
            step = 1;
        } else if (step == 1 && isTold("UINib: FlareboxView.xml:")) {
            written("text=\"Flarebox\"", "text=\"Changed layout\"");
            step = 2;
        } else if (step == 2 && folder.has("1.png")) {
            folder.write("theme.xml", themed("<text name=\"titel\" value=\"Wrong\"/>"));
            step = 3;
        } else if (step == 3 && isTold("theme.xml:2: ")) {
            folder.write("theme.xml", themed("<text name=\"title\" value=\"Changed theme\"/>"));
            step = 4;
        }
        return false;
    };
    const GameResult result =
        runProgram(folder, "/usr/bin/env",
                   {"FLAREBOX_RESOURCES=" + folder.path("Resources"), FLAREBOX_HOSTGAME, "--headless", "--clock",
                    "virtual", "--watch", "--inspect", "--theme", "theme.xml", "--script", "s.script"},
                   work);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(step, 4);
    EXPECT_THAT(result.errors, HasSubstr("\"UIButton\" has no attribute \"titel\"; did you mean \"title\"?"));
    EXPECT_THAT(result.errors, HasSubstr("theme.xml:2: there is no text \"titel\"; did you mean \"title\"?"));
    EXPECT_THAT(result.errors, Not(HasSubstr("cannot be met")));
    EXPECT_THAT(folder.read("end.json"), HasSubstr("Changed theme"));
}

}  // namespace
}  // namespace flarebox::testing
