#include <AdSupport/ASIdentifierManager.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Core/FlareboxText.h>
#include <Flarebox/Core/Logging.h>
#include <Flarebox/Views/FlareboxView.h>
#include <Foundation/MainQueue.h>
#include <Networking/AFImageResponseSerializer.h>
#include <Networking/AFNetworkReachabilityManager.h>
#include <Networking/NetworkError.h>
#include <UIKit/UIActivityIndicatorView.h>
#include <UIKit/UILabel.h>

namespace flarebox {
namespace {

constexpr const char* trackingMessage =
    "Advertising tracking may be disabled. Please turn off the 'Limit Ad Tracking' from Settings -> Privacy -> "
    "Advertising.";
/// Of the tab's width, what an error line may take, and how much smaller its text may become to stay one line.
constexpr double errorLineShare = 0.8, leastErrorScale = 0.7;
constexpr const char* requestErrorMessage = "Something went wrong";
constexpr const char* networkErrorMessage = "You have no internet connection";

/// Stands between the countdown and its tab: a timer keeps its target alive, and a tab that the host let go has to end.
class Countdown : public NSObject {
    FLAREBOX_CLASS(Countdown)
public:
    explicit Countdown(FlareboxView& tab) : tab_(&tab) {}

private:
    void tick() {
        if (const auto tab = tab_.lock()) tab->countDown();
    }
    Weak<FlareboxView> tab_;
};

const ClassInfo& Countdown::staticClass() {
    static const Action actions[] = {action<&Countdown::tick>("tick")};
    static const ClassInfo info("Countdown", &NSObject::staticClass(), nullptr, {.actions = actions});
    return info;
}

}  // namespace

bool FlareboxView::validSessionData() {
    FlareboxConfig& config = FlareboxConfig::defaultConfig();
    if (config.validDeviceUID()) return true;
    if (!ASIdentifierManager::sharedManager().isAdvertisingTrackingEnabled()) {
        showErrorMessage(flareboxText(trackingMessage).text());
        return false;
    }
    const NSString identifier = FlareboxConfig::deviceUID();
    config.setDeviceUID(identifier);
    return bool(identifier);
}

void FlareboxView::loadData() {
    if (!requireMainThread("FlareboxView::loadData")) return;
    assetView_->setHidden(true);
    emptyView_->setHidden(true);
    if (!validSessionData()) {
        startFreshTimer();
        return tellMissingIdentifier();
    }

    AFNetworkReachabilityManager& reachability = AFNetworkReachabilityManager::sharedManager();
    reachability.startMonitoring();
    reachability.setReachabilityStatusChangeBlock(
        [self = Ref<FlareboxView>(this)](std::int64_t status) { self->reachabilityChanged(status); });
}

void FlareboxView::tellMissingIdentifier() {
    // At the next turn: the first load begins before the host can follow the tab.
    dispatch_async_main([tab = Weak<FlareboxView>(this)] {
        const Ref<FlareboxView> self = tab.lock();
        if (!self || !self->delegate_) return;
        self->delegate_->flareboxViewDidFailToLoad(*self,
                                                   NSError::errorWithDomain(kApiErrorDomain, kApiMissingParamErrorCode,
                                                                            "There is no identifier of the device"));
    });
}

void FlareboxView::reachabilityChanged(std::int64_t status) {
    netWorkStatus_ = status;
    if (!isNetworkConnected()) {
        startFreshTimer();
        showNetworkErrorMessage();
        if (delegate_) delegate_->flareboxViewDidFailToLoad(*this, networkError(NSURLErrorNotConnectedToInternet, ""));
    } else if (FlareboxManager::sharedInstance().sessionInfo()) {
        loadAssets();
    } else {
        createGameSession();
    }
}

void FlareboxView::createGameSession() {
    if (!requireMainThread("FlareboxView::createGameSession")) return;
    startLoad([this] {
        infoLog("create a game session");
        FlareboxManager::sharedInstance().createSesstion(
            [self = Ref<FlareboxView>(this)](const Ref<FXSessionInfo>& session, const Ref<NSError>& error) {
                self->gameSessionCreated(session, error);
            });
    });
}

void FlareboxView::startLoad(const std::function<void()>& load) {
    if (!isNetworkConnected() || !loadingView_->isHidden()) return;
    showLoadingView(true);
    try {
        load();
    } catch (...) {
        // A failed assertion, as a rule: nothing is under way, and the next refresh tries again.
        startFreshTimer();
        showRequestErrorMessage();
        throw;
    }
}

void FlareboxView::gameSessionCreated(const Ref<FXSessionInfo>& session, const Ref<NSError>& error) {
    showLoadingView(false);
    if (error) {
        startFreshTimer();
        return loadFailed(error);
    }
    infoLog("Game session created");
    FlareboxManager::sharedInstance().setSessionInfo(session);
    loadAssets();
}

void FlareboxView::loadAssets() {
    startLoad([this] {
        infoLog("Load common game assets");
        FlareboxManager::sharedInstance().loadGameCommonAssets(
            [self = Ref<FlareboxView>(this)](const std::shared_ptr<AssetList>& assets, const Ref<NSError>& error) {
                self->assetsLoaded(assets, error);
            });
    });
}

void FlareboxView::assetsLoaded(const std::shared_ptr<AssetList>& assets, const Ref<NSError>& error) {
    showLoadingView(false);
    startFreshTimer();
    if (error) return loadFailed(error);
    infoLog("Common game assets load done");
    FlareboxManager& manager = FlareboxManager::sharedInstance();
    manager.setGameAssets(assets);
    assestsList_ = manager.gameAssets();
    loadAll3DAssets();
    showLoadingView(false);
    currentAsset_ = nullptr;
    updateFlarebox();
}

void FlareboxView::loadFailed(const Ref<NSError>& error) {
    errorLog("%@", error->localizedDescription());
    showRequestErrorMessage();
    if (delegate_) delegate_->flareboxViewDidFailToLoad(*this, error);
}

void FlareboxView::startFreshTimer() {
    if (refreshTimer_) refreshTimer_->invalidate();
    refreshDataTime_ = FlareboxConfig::defaultConfig().getTimeRefresh();
    refreshTimer_ = NSTimer::scheduledTimer(1.0, *make<Countdown>(*this), "tick", nullptr, true);
}

void FlareboxView::countDown() {
    if (--refreshDataTime_ != 0) return;
    refreshTimer_->invalidate();
    refreshTimer_ = nullptr;
    if (!shouldRefresh()) return startFreshTimer();
    infoLog("Refresh game assets data");
    loadData();
}

bool FlareboxView::shouldRefresh() const {
    if (!FlareboxConfig::defaultConfig().validDeviceUID()) return true;
    if (!assestsList_ || assestsList_->empty()) return true;
    return !isOpened() && isHasBeenOpened_ && loadingView_->isHidden();
}

void FlareboxView::changeRefreshDataTime(std::int32_t seconds) {
    if (!requireMainThread("FlareboxView::changeRefreshDataTime")) return;
    FlareboxConfig::defaultConfig().setTimeRefresh(seconds);
    startFreshTimer();
}

bool FlareboxView::isNetworkConnected() const {
    return netWorkStatus_ != 0 && netWorkStatus_ != -1;
}

void FlareboxView::showLoadingView(bool show) {
    if (show) {
        hideErrorMessage();
        loadingView_->setHidden(false);
        indicator_->startAnimating();
    } else {
        loadingView_->setHidden(true);
        indicator_->stopAnimating();
    }
}

void FlareboxView::showErrorMessage(std::string_view message) {
    showLoadingView(false);
    lbErrorMessage_->setHidden(false);
    lbErrorMessage_->setText(message);
    // What would have to shrink too much to stay readable wraps instead.
    lbErrorMessage_->setNumberOfLines(1);
    const double width = lbErrorMessage_->intrinsicContentSize().width;
    const bool isLong = width * leastErrorScale > getViewSize().width * errorLineShare;
    if (isLong) lbErrorMessage_->setNumberOfLines(0);
    lbErrorMessage_->setTextAlignment(isLong ? NSTextAlignment::Natural : NSTextAlignment::Center);
}

void FlareboxView::hideErrorMessage() {
    lbErrorMessage_->setHidden(true);
    lbErrorMessage_->setText("");
}

void FlareboxView::showRequestErrorMessage() {
    showErrorMessage(flareboxText(requestErrorMessage).text());
}

void FlareboxView::showNetworkErrorMessage() {
    showErrorMessage(flareboxText(networkErrorMessage).text());
    warningLog("%@", networkErrorMessage);
}

void FlareboxView::showEmptyView() {
    emptyView_->setHidden(false);
    assetView_->setHidden(true);
}

void FlareboxView::showAssetView() {
    emptyView_->setHidden(true);
    assetView_->setHidden(false);
}

AFHTTPSessionManager& FlareboxView::operationManager() {
    if (!operationManager_) {
        operationManager_ = AFHTTPSessionManager::manager();
        operationManager_->setResponseSerializer(AFImageResponseSerializer::serializer());
    }
    return *operationManager_;
}

}  // namespace flarebox
