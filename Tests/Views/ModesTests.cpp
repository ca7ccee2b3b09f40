#include <Tests/Views/TabTesting.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>

#include <gmock/gmock.h>

namespace flarebox::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A list of one asset of each kind: A has a picture and a video, B a picture, C neither, D a video.
constexpr const char* mixedList = R"([
    {"id": 1, "uid": "a", "advertiser_uid": "v", "campaign_uid": "c", "file_icon": "/a", "title": "A", "file_image": "http://127.0.0.1:1/a", "video_mobile": "http://127.0.0.1:1/a.mp4", "where_to_buy": "https://shop.example/a"},
    {"id": 2, "uid": "b", "advertiser_uid": "v", "campaign_uid": "c", "file_icon": "/b", "title": "B", "file_image": "http://127.0.0.1:1/b", "video_mobile": ""},
    {"id": 3, "uid": "c", "advertiser_uid": "v", "campaign_uid": "c", "file_icon": "/c", "title": "C", "file_image": "", "where_to_buy": ""},
    {"id": 4, "uid": "d", "advertiser_uid": "v", "campaign_uid": "c", "file_icon": "/d", "title": "D", "video_mobile": "http://127.0.0.1:1/d.mp4"}])";

class ModesTest : public TabTest {
protected:
    enum Kind : std::size_t { A, B, C, D };

    void SetUp() override {
        TabTest::SetUp();
        sharedService().behave("/game/common-assets/", {.body = mixedList});
        showLoadedTab();
    }
    void select(Kind kind) { tab_->selectAsset((*tab_->assestsList())[kind]); }
    /// The modes whose buttons can be pressed, and the one that is shown.
    std::string modes() {
        std::string text;
        for (const char* name : {"btn2d", "btn3d", "btnVideo"}) {
            const auto* button = field<UIButton>(name);
            text += std::string(name + 3) + (button->isEnabled() ? "+" : "-") + (button->isSelected() ? "*" : "") + " ";
        }
        return text;
    }
    /// The content views in sight.
    std::string content() {
        std::string text;
        for (const char* name : {"imgAssetContent", "scnContainer", "videoContainer"}) {
            if (!field(name)->isHidden()) text += std::string(name) + " ";
        }
        return text;
    }
    /// The actions of the events that the service was told of since the last call, in no order.
    std::vector<std::string> events() {
        EXPECT_TRUE(settleIdle());
        std::vector<std::string> actions;
        for (const auto& request : sharedService().requests("/kafka/engagement/")) {
            EXPECT_EQ(request.complaint, "");
            const std::size_t at = request.body.find("\"action\":\"") + 10;
            actions.push_back(request.body.substr(at, request.body.find('"', at) - at));
        }
        sharedService().forgetRequests();
        return actions;
    }
};

TEST_F(ModesTest, EachAssetAllowsItsOwn) {
    EXPECT_EQ(modes(), "2d+* 3d+ Video+ ");
    EXPECT_EQ(content(), "imgAssetContent ");
    select(B);
    EXPECT_EQ(modes(), "2d+* 3d+ Video- ");
    tab_->changeAssetMode(AssetModeVideo);
    EXPECT_EQ(tab_->currentAssetMode(), AssetMode2D) << "refused";
    tab_->changeAssetMode(AssetMode3D);
    EXPECT_EQ(modes(), "2d+ 3d+* Video- ");
    EXPECT_EQ(content(), "scnContainer ");
}

TEST_F(ModesTest, AnAssetWithoutAPictureLeavesTheContentAsItWas) {
    select(C);
    EXPECT_EQ(modes(), "2d-* 3d+ Video- ");
    EXPECT_EQ(content(), "imgAssetContent ");
    EXPECT_EQ(field<UILabel>("lbAssetTitle")->text(), "C");
    EXPECT_FALSE(field<UIButton>("btnBuy")->isEnabled());
    tab_->changeAssetMode(AssetMode2D);
    EXPECT_EQ(content(), "imgAssetContent ");
    tab_->changeAssetMode(AssetMode3D);
    select(D);
    EXPECT_EQ(modes(), "2d- 3d+* Video+ ") << "D has a video: 3D stays";
    select(C);
    EXPECT_EQ(tab_->currentAssetMode(), AssetMode2D);
    EXPECT_EQ(modes(), "2d- 3d+* Video- ") << "it cannot show pictures: what was shown stays";
    EXPECT_EQ(content(), "scnContainer ");
}

TEST_F(ModesTest, AnAssetWithoutAVideoGoesBackToPictures) {
    for (const AssetMode mode : {AssetMode3D, AssetModeVideo}) {
        select(A);
        tab_->changeAssetMode(mode);
        ASSERT_EQ(tab_->currentAssetMode(), mode);
        select(D);
        EXPECT_EQ(tab_->currentAssetMode(), mode) << "the mode outlives the asset";
        select(B);
        EXPECT_EQ(tab_->currentAssetMode(), AssetMode2D);
        EXPECT_EQ(content(), "imgAssetContent ");
    }
}

TEST_F(ModesTest, AreToldOfWhileTheTabIsOpen) {
    tab_->changeAssetMode(AssetMode3D);
    tab_->changeAssetMode(AssetModeVideo);
    tab_->changeAssetMode(AssetMode2D);
    EXPECT_THAT(events(), IsEmpty());
    tab_->open();
    EXPECT_THAT(events(), ElementsAre("flarebox"));
    tap("btn3d");
    EXPECT_THAT(events(), ElementsAre("3d"));
    tap("btnVideo");
    EXPECT_THAT(events(), ElementsAre("video"));
    select(D);
    EXPECT_THAT(events(), ElementsAre("video")) << "each asset shown counts";
    tab_->focusAssetMode(AssetMode3D);
    select(A);
    tap("btn2d");
    EXPECT_THAT(events(), ElementsAre("3d"));
    select(B);
    tab_->open();
    EXPECT_THAT(events(), IsEmpty());
    tab_->close();
    tab_->open();
    EXPECT_THAT(events(), ElementsAre("flarebox"));
}

}  // namespace
}  // namespace flarebox::testing
