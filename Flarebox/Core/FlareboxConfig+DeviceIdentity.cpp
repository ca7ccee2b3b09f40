#include <AdSupport/ASIdentifierManager.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Core/FlareboxText.h>
#include <UIKit/UIAlertController.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UINavigationController.h>
#include <UIKit/UITabBarController.h>
#include <UIKit/UIViewController.h>
#include <UIKit/UIWindow.h>

namespace flarebox {
namespace {

constexpr const char* trackingMessage =
    "Advertising tracking may be disabled. Please turn off the 'Limit Ad Tracking' from Settings -> Privacy -> "
    "Advertising.";
constexpr const char* trackingSettings = "App-Prefs:root=Privacy&path=Advertising";

void openTrackingSettings() {
    const NSURL settings = NSURL::URLWithString(trackingSettings);
    UIApplication& application = UIApplication::sharedApplication();
    if (application.canOpenURL(settings)) application.openURL(settings);
}

/// The controller over which the kit shows an alert: of a navigation stack the bottom one, of a tab bar the selected
/// one. Null without a window.
Ref<UIViewController> alertPresenter() {
    UIApplicationDelegate* delegate = UIApplication::sharedApplication().delegate();
    UIWindow* window = delegate ? delegate->window() : nullptr;
    Ref<UIViewController> presenter = window ? window->rootViewController() : nullptr;
    if (auto* navigation = objectCast<UINavigationController>(presenter.get())) {
        presenter = navigation->viewControllers().empty() ? nullptr : navigation->viewControllers().front();
    }
    if (auto* tabBar = objectCast<UITabBarController>(presenter.get())) presenter = tabBar->selectedViewController();
    return presenter;
}

}  // namespace

NSString FlareboxConfig::deviceUID() {
    ASIdentifierManager& manager = ASIdentifierManager::sharedManager();
    if (manager.isAdvertisingTrackingEnabled()) return manager.advertisingIdentifier().UUIDString();
    handleAdsDisable();
    return nullptr;
}

void FlareboxConfig::setDeviceUID(const NSString& identifier) {
    if (sessionEdit_) sessionEdit_->setDeviceId(identifier);
}

bool FlareboxConfig::validDeviceUID() const {
    if (!sessionEdit_) return false;
    return !sessionEdit_->deviceId().text().empty();
}

void FlareboxConfig::handleAdsDisable() {
    const Ref<UIViewController> presenter = alertPresenter();
    if (!presenter) return;
    const Ref<UIAlertController> alert =
        UIAlertController::alertControllerWithTitle("", flareboxText(trackingMessage), UIAlertControllerStyle::Alert);
    alert->addAction(UIAlertAction::actionWithTitle(flareboxText("OK"), UIAlertActionStyle::Default,
                                                    [](UIAlertAction&) { openTrackingSettings(); }));
    alert->addAction(
        UIAlertAction::actionWithTitle(flareboxText("Cancel"), UIAlertActionStyle::Cancel, [](UIAlertAction&) {}));
    presenter->presentViewController(alert, true, nullptr);
}

NSString FlareboxConfig::addressAmong(const std::vector<LocalAddress>& addresses) {
    NSString address = "error";
    for (const LocalAddress& local : addresses) {
        if (local.interfaceName == "en0" || local.interfaceName == "pdp_ip0") address = local.address;
    }
    return address;
}

NSString FlareboxConfig::getIPAddress() {
    return addressAmong(localAddresses());
}

}  // namespace flarebox
