#include <Tests/Faults/FaultTesting.h>

#include <AVFoundation/AVPlayer.h>
#include <Flarebox/Views/AssetCollectionViewCell.h>
#include <Flarebox/Views/CouponView.h>
#include <Flarebox/Views/VideoView.h>
#include <Foundation/NSJSONSerialization.h>
#include <Foundation/NSUserDefaults.h>
#include <UIKit/UIButton.h>
#include <UIKit/UICollectionView.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>

#include <filesystem>
#include <fstream>

namespace flarebox::testing {
namespace {

namespace fs = std::filesystem;

/// Seconds of real time that a step takes at most.
constexpr double patience = 0.02;
/// Seconds of real time after which something that does not end counts as hanging.
constexpr double longest = 60;

template <class T>
T* part(UIView& view, std::string_view name) {
    const Outlet* outlet = view.classInfo().outlet(name);
    return outlet ? objectCast<T>(outlet->get(view)) : nullptr;
}

std::string lineOf(const fs::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

/// Seconds of real time after which the kit gives up waiting for the service.
void setServiceTimeout(int seconds) {
    NSUserDefaults::standardUserDefaults().setObject(seconds, "timeoutInterval");
    AVPlayerSettings silent;
    silent.hasSound = false;
    silent.stallTimeout = seconds;
    AVPlayer::setSettings(silent);
}

FaultProxy& sharedProxy() {
    static FaultProxy proxy;
    static const bool isBetween = [] {
        examples::Service& service = sharedService();
        const bool isStarted = service.start({.publicURL = proxy.url()});
        proxy.forwardTo(service.port());
        flareboxBundle().setInfoDictionaryValue("API_URL", proxy.url());
        return isStarted;
    }();
    EXPECT_TRUE(isBetween);
    return proxy;
}

}  // namespace

Holdings Holdings::now() {
    Holdings now;
    std::error_code gone;
    for (const auto& thread : fs::directory_iterator("/proc/self/task"))
        now.threads.insert(lineOf(thread.path() / "comm"));
    for (const auto& descriptor : fs::directory_iterator("/proc/self/fd")) {
        const std::string target = fs::read_symlink(descriptor, gone).string();
        now.descriptors.insert(target.substr(0, target.find('[')));
    }
    return now;
}

FaultProxy& FaultTest::proxy() {
    return sharedProxy();
}

void FaultTest::SetUp() {
    // The kit reads the address of its service once.
    sharedProxy();
    NSUserDefaults::standardUserDefaults().setFile("");
}

void FaultTest::TearDown() {
    AVPlayer::setSettings({});
    NSUserDefaults::standardUserDefaults().removeObjectForKey("timeoutInterval");
}

void FaultTest::begin(const Schedule& schedule) {
    setServiceTimeout(1);
    TabTest::SetUp();
    for (const auto& entry : fs::directory_iterator(documents_.path())) fs::remove_all(entry);
    network_->setStatus(AFNetworkReachabilityStatusReachableViaWiFi);
    proxy().begin(schedule.faults);
    makeTab()->showAtWindow();
    // It waits a moment before it attaches itself.
    pass(0.2);
}

bool FaultTest::settleWithin(double seconds, const std::function<bool()>& condition) {
    return pumpUntil(
        [&] {
            host_->update();
            return condition();
        },
        seconds);
}

void FaultTest::passSeconds(int seconds) {
    for (int passed = 0; passed < seconds; ++passed) {
        clock_.advance(1);
        host_->update();
    }
}

void FaultTest::perform(const Schedule& schedule) {
    const auto isIdle = [] { return MainQueue::shared().isIdle(); };
    settleWithin(patience, isIdle);
    for (const Schedule::Step& step : schedule.steps) {
        perform(step);
        pass(0.1);
        settleWithin(patience, isIdle);
    }
}

void FaultTest::perform(const Schedule::Step& step) {
    const bool hasAssets = tab_->assestsList() && !tab_->assestsList()->empty();
    switch (step.deed) {
        case Deed::Open:
            return tab_->open(), pass(0.4);
        case Deed::Close:
            return tab_->close(), pass(0.4);
        case Deed::Select:
            if (hasAssets) tab_->selectAsset((*tab_->assestsList())[step.argument % tab_->assestsList()->size()]);
            return;
        case Deed::ShowPicture:
            return tab_->currentAsset() ? tab_->changeAssetMode(AssetMode2D) : void();
        case Deed::ShowModel:
            return tab_->currentAsset() ? tab_->changeAssetMode(AssetMode3D) : void();
        case Deed::ShowVideo:
            return tab_->currentAsset() ? tab_->changeAssetMode(AssetModeVideo) : void();
        case Deed::SaveCoupon:
            return field<UIButton>("btnCoupon")->sendActions(UIControlEvents::TouchUpInside);
        case Deed::LeaveCoupon:
            leaveCoupon();
            return;
        case Deed::Play:
            return tab_->videoView()->pressPlayButton();
        case Deed::StopPlaying:
            host_->keyDown("escape");
            return pass(0.5);
        case Deed::Scroll:
            return tab_->pressNextAssetButton();
        case Deed::ChangeGame:
            return tab_->updateWithNewGameUDID();
        case Deed::LoseService:
            return proxy().refuse();
        case Deed::FindService:
            return proxy().listenAgain();
        case Deed::LoseNetwork:
            return network_->setStatus(AFNetworkReachabilityStatusNotReachable);
        case Deed::FindNetwork:
            return network_->setStatus(AFNetworkReachabilityStatusReachableViaWWAN);
        case Deed::Seconds:
            return passSeconds(static_cast<int>(step.argument));
        case Deed::Period:
            return passSeconds(181);
        case Deed::Rest:
            settleWithin(1.2, [] { return MainQueue::shared().isIdle(); });
            return;
    }
}

bool FaultTest::leaveCoupon() {
    auto* coupon = field<CouponView>("couponView");
    if (!coupon || coupon->isHidden()) return true;
    auto* button = part<UIButton>(*coupon, "btnClose");
    if (button->isHidden()) return false;
    tab_->closeCouponView(*coupon);
    return true;
}

bool FaultTest::comeToRest() {
    proxy().heal();
    setServiceTimeout(static_cast<int>(longest));
    network_->setStatus(AFNetworkReachabilityStatusReachableViaWiFi);
    host_->keyDown("escape");
    pass(0.5);
    // A list is only loaded anew for a tab that has been looked at and is not now.
    tab_->open();
    pass(0.5);
    tab_->close();
    pass(0.5);
    const bool isQuiet = settleWithin(longest, [&] { return MainQueue::shared().isIdle() && leaveCoupon(); });
    passSeconds(FlareboxConfig::defaultConfig().getTimeRefresh() + 1);
    return isQuiet && settleWithin(longest, [] { return MainQueue::shared().isIdle(); });
}

std::string FaultTest::couponMessage() {
    auto* coupon = field<CouponView>("couponView");
    return coupon && !coupon->isHidden() ? part<UILabel>(*coupon, "lbMessage")->text().string() : "";
}

std::string FaultTest::tryEverything(bool withVideo) {
    const auto isIdle = [] { return MainQueue::shared().isIdle(); };
    if (!tab_->currentAsset()) return "there is no asset to try";
    sharedService().forgetRequests();
    tab_->open();
    pass(0.5);
    field<UIButton>("btnCoupon")->sendActions(UIControlEvents::TouchUpInside);
    if (!settleWithin(longest, isIdle)) return "the coupon does not end";
    if (couponMessage() != "Coupon saved to My coupons in the Kestrin App") return "the coupon says " + couponMessage();
    if (!leaveCoupon()) return "the coupon cannot be left";
    const std::size_t events = sharedService().requests("/kafka/engagement/").size();
    if (events < 2) return std::to_string(events) + " events instead of opening and coupon";
    if (withVideo) {
        tab_->videoView()->pressPlayButton();
        AVPlayer& player = *tab_->videoView()->avPlayer();
        const bool plays = settleWithin(longest, [&] { return player.isReady() || player.error(); }) && !player.error();
        host_->keyDown("escape");
        pass(0.5);
        if (!plays) return "the video does not play";
    }
    tab_->close();
    pass(0.5);
    return "";
}

std::string FaultTest::state() {
    std::string text;
    for (const char* name : {"assetView", "emptyView", "loadingView", "lbErrorMessage"})
        text += std::string(name) + (field(name)->isHidden() ? " hidden\n" : " shown\n");
    text += std::string("session ") + (FlareboxManager::sharedInstance().sessionInfo() ? "there\n" : "missing\n");
    text += std::string("picture ") + (field<UIImageView>("imgAssetContent")->image() ? "there\n" : "missing\n");
    auto* list = field<UICollectionView>("collectionView");
    for (const NSIndexPath& path : list->indexPathsForVisibleItems()) {
        const auto cell = list->cellForItemAtIndexPath(path);
        const auto* icon = cell ? part<UIImageView>(*cell, "imgAsset") : nullptr;
        if (!icon || !icon->image()) text += "icon " + std::to_string(path.row) + " missing\n";
    }
    if (list->indexPathsForVisibleItems().empty()) text += "list empty\n";
    if (!tab_->assestsList()) return text + "no assets\n";
    for (const Ref<FXAssetInfo>& asset : *tab_->assestsList()) {
        text += asset == tab_->currentAsset() ? "current " : "asset ";
        text += asset->uid().string() + (tab_->assetNodesDict().contains(asset->uid().text()) ? " model\n" : "\n");
        text +=
            "  " + std::string(NSJSONSerialization::dataWithJSONObject(asset->toDictionary(), nullptr).text()) + "\n";
    }
    for (const auto& entry : fs::directory_iterator(documents_.path()))
        if (!tab_->assetNodesDict().contains(entry.path().filename().string()))
            text += "stray file " + entry.path().filename().string() + "\n";
    return text;
}

int FaultTest::countedInTenSeconds() {
    const int before = tab_->refreshDataTime();
    passSeconds(10);
    return before - tab_->refreshDataTime();
}

std::string FaultTest::end() {
    std::string left;
    AFNetworkReachabilityManager::sharedManager().setReachabilityStatusChangeBlock(nullptr);
    const Weak<FlareboxView> tab(tab_.get());
    tab_->removeFromSuperview();
    tab_ = nullptr;
    if (!settleWithin(longest, [&] { return !tab.lock() && MainQueue::shared().isIdle(); })) left += " the tab";
    pass(1);
    if (const auto due = MainQueue::shared().nextDueTime())
        left += " a timer due in " + std::to_string(*due - clock_.uptime()) + " s";
    TabTest::TearDown();
    proxy().end();
    return left;
}

}  // namespace flarebox::testing
