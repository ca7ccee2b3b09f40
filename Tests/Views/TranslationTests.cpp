#include <AVFoundation/PlayerView.h>
#include <Flarebox/Core/FlareboxText.h>
#include <Flarebox/Views/VideoPlayerViewController.h>
#include <Tests/Support/TemporaryDirectory.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

namespace flarebox::testing {
namespace {

class TranslationTest : public TabTest {
protected:
    void TearDown() override {
        NSBundle::setPreferredLanguages({});
        NSBundle::setMainBundlePath("");
        TabTest::TearDown();
    }
    TemporaryDirectory folder_;
};

TEST_F(TranslationTest, TheHostsTableCountsBeforeTheKits) {
    std::filesystem::create_directories(folder_.path() + "/de.lproj");
    folder_.write(
        "de.lproj/Flarebox.strings",
        "\"Get coupon\" = \"Gutschein\"; \"Done\" = \"Fertig\"; \"Something went wrong\" = \"Das ging schief\";\n");
    NSBundle::setMainBundlePath(folder_.path());
    NSBundle::setPreferredLanguages({"de-DE"});
    sharedService().behave("/sessions/", {.status = 500});
    makeTab()->showAtWindow();
    EXPECT_EQ(field<UIButton>("btnCoupon")->currentTitle(), "Gutschein");
    EXPECT_EQ(field<UIButton>("btnBuy")->currentTitle(), "Buy") << "what is not translated is English";
    EXPECT_EQ(field<UILabel>("lbEmptyAssets")->text(), "Nothing here yet");
    EXPECT_TRUE(settle([&] { return field<UILabel>("lbErrorMessage")->text() == "Das ging schief"; }));
    const auto player = make<VideoPlayerViewController>();
    EXPECT_EQ(static_cast<PlayerView&>(player->view()).doneButton().currentTitle(), "Fertig");
    EXPECT_EQ(flareboxText(""), "");
    EXPECT_EQ(flareboxText("No such text"), "No such text");
}

TEST_F(TranslationTest, EveryTextOfTheLayoutFilesIsListed) {
    const std::string resources = KIT_RESOURCES;
    const auto read = [](const std::filesystem::path& path) {
        std::ifstream file(path);
        return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    };
    const std::string table = read(resources + "/en.lproj/Flarebox.strings");
    const std::regex text(R"re(\s(?:text|title|accessibilityLabel)(?:\.\w+)?="([^"]+)")re");
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(resources)) {
        if (entry.path().extension() != ".xml") continue;
        const std::string layout = read(entry.path());
        for (std::sregex_iterator at(layout.begin(), layout.end(), text), end; at != end; ++at, ++count) {
            EXPECT_NE(table.find("\"" + (*at)[1].str() + "\" = "), std::string::npos)
                << (*at)[1] << " of " << entry.path();
        }
    }
    EXPECT_GT(count, 10);
}

}  // namespace
}  // namespace flarebox::testing
