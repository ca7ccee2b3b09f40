#pragma once

#include <AVFoundation/AVPlayer.h>
#include <Flarebox/Views/CouponView.h>
#include <Flarebox/Views/SCNContentView.h>
#include <Flarebox/Views/VideoView.h>
#include <SceneKit/SCNView.h>
#include <Tests/SceneKit/ModelBuilder.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/UIAlertController.h>
#include <UIKit/UICollectionView.h>

#include <functional>
#include <string>
#include <string_view>

namespace flarebox::testing {

/// Shows the tab in each of its states, one after the other, for what has to be true of all of them.
class StatesTest : public TabTest {
protected:
    /// Where there are fewer assets the list does not scroll.
    static constexpr int assetCount = 9;

    void SetUp() override {
        TabTest::SetUp();
        AVPlayerSettings silent;
        silent.hasSound = false;
        AVPlayer::setSettings(silent);
    }

    void visitStates(const std::function<void(const std::string& state)>& visit) {
        const auto show = [&](const char* state) {
            host_->update();
            SCOPED_TRACE(state);
            visit(state);
        };
        visitStatesWithoutAssets(show);
        visitStatesOfAnAsset(show);
    }

private:
    using Show = std::function<void(const char*)>;

    static std::string asset(int number, bool hasMore) {
        const std::string id = std::to_string(number), host = sharedService().baseURL();
        return R"({"id":)" + id + R"(,"uid":"u)" + id +
               R"(","advertiser_uid":"v","campaign_uid":"c","file_icon":"/i",)" + R"("title":"Product )" + id +
               R"(","description":"What it is","file_image":")" + host + "/p" + id + "\"" +
               (hasMore ? R"(,"where_to_buy":"https://shop.example","video_mobile":")" + host +
                              R"(/no-video","file_ios":")" + host + "/cube\""
                        : "") +
               "}";
    }
    static std::string list() {
        std::string assets;
        for (int number = 1; number <= assetCount; ++number)
            assets += (number > 1 ? "," : "") + asset(number, number == 1);
        return "[" + assets + "]";
    }

    void attach() {
        makeTab()->showAtWindow();
        pass(0.2);
        tab_->open();
        pass(0.5);
    }
    /// One attempt to load, which has to come to its end.
    void reload(std::string_view path, examples::Behaviour behaviour) {
        sharedService().behave(path, std::move(behaviour));
        tab_->removeFromSuperview();
        attach();
        EXPECT_TRUE(settleIdle());
    }

    void visitStatesWithoutAssets(const Show& show) {
        makeTab()->showAtWindow();
        pass(0.2);
        EXPECT_TRUE(settleIdle());
        show("closed");
        reload("/game/common-assets/", {.status = 500});
        show("failed");
        reload("/game/common-assets/", {.body = "[]"});
        show("empty");
        tab_->showLoadingView(true);
        show("loading");
        tab_->showLoadingView(false);
    }

    void visitStatesOfAnAsset(const Show& show) {
        sharedService().behaveNormally();
        sharedService().behave("/cube",
                               {.status = 200, .body = cubeModel().file(), .contentType = "model/gltf-binary"});
        sharedService().behave("/no-video", {.status = 404});
        reload("/game/common-assets/", {.body = list()});
        EXPECT_TRUE(settle([&] { return tab_->currentAsset() != nullptr; }));
        EXPECT_TRUE(settleIdle());
        pass(0.5);
        show("picture");
        network_->setStatus(AFNetworkReachabilityStatusNotReachable);
        pass(0.2);
        show("offline");
        tab_->hideErrorMessage();
        network_->setStatus(AFNetworkReachabilityStatusReachableViaWiFi);
        EXPECT_TRUE(settleIdle());
        showContents(show);
        showCoupon(show);
        showAlert(show);
    }

    void showContents(const Show& show) {
        tab_->changeAssetMode(AssetMode3D);
        show("model");
        tab_->scnContent()->press3DFullButton();
        show("model, full screen");
        tab_->scnContent()->press3DFullButton();
        tab_->changeAssetMode(AssetModeVideo);
        show("video");
        tab_->videoView()->pressPlayButton();
        pass(0.3);
        show("video, full screen");
        EXPECT_TRUE(settle([&] { return tab_->videoView()->avPlayer()->error() != nullptr; }));
        show("broken video, full screen");
        tab_->videoView()->dismissPlayer();
        pass(0.3);
        field<UICollectionView>("collectionView")->setContentOffset({60, 0});
        tab_->selectAsset((*tab_->assestsList())[1]);
        tab_->reloadCellVisibles();
        tab_->changeAssetMode(AssetMode3D);
        show("no model");
        tab_->selectAsset((*tab_->assestsList())[0]);
        tab_->changeAssetMode(AssetMode2D);
        field<UICollectionView>("collectionView")->setContentOffset({});
    }

    void showCoupon(const Show& show) {
        sharedService().behave("/coupons/", {.delay = std::chrono::milliseconds(600)});
        tap("btnCoupon");
        show("saving a coupon");
        EXPECT_TRUE(settleIdle());
        pass(0.5);
        show("coupon saved");
        sharedService().behave("/coupons/", {.ending = examples::Behaviour::Ending::Cut});
        auto* const coupon = field<CouponView>("couponView");
        coupon->saveCoupon(tab_->currentAsset());
        EXPECT_TRUE(settleIdle());
        show("coupon failed");
        tab_->closeCouponView(*coupon);
    }

    void showAlert(const Show& show) {
        const auto alert = UIAlertController::alertControllerWithTitle("Sure?", "Really?", {});
        alert->addAction(UIAlertAction::actionWithTitle("Cancel", UIAlertActionStyle::Cancel, nullptr));
        alert->addAction(UIAlertAction::actionWithTitle("OK", UIAlertActionStyle::Default, nullptr));
        window().rootViewController()->presentViewController(alert, true, nullptr);
        pass(0.3);
        show("alert");
        alert->dismissViewController(false, nullptr);
        pass(0.3);
    }
};

}  // namespace flarebox::testing
