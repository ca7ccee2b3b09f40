#include <Foundation/Immortal.h>
#include <UIKit/Backend/Gio/DesktopUrlOpener.h>
#include <UIKit/UIApplication.h>

#include <algorithm>
#include <utility>

namespace flarebox {
namespace {

/// Whether it names a host, and nobody before it: what looks like one shop's address would lead to another's.
bool isPlainWebLink(const NSURL& url) {
    const std::string address = url.absoluteString();
    const std::size_t start = address.find("//");
    return !url.host().empty() && address.substr(0, address.find_first_of("/?#", start + 2)).find('@') == address.npos;
}

}  // namespace

UIApplication& UIApplication::sharedApplication() {
    static detail::Immortal<UIApplication> application;
    return *application;
}

UIApplication::UIApplication() : allowedSchemes_{"http", "https", "app-prefs"} {}

UIWindow* UIApplication::keyWindow() const {
    return delegate_ ? delegate_->window() : nullptr;
}

bool UIApplication::isAllowed(const NSURL& url) const {
    const bool isWeb = url.scheme() == "http" || url.scheme() == "https";
    if (isWeb && !isPlainWebLink(url)) return false;
    return std::ranges::find(allowedSchemes_, url.scheme()) != allowedSchemes_.end();
}

bool UIApplication::canOpenURL(const NSURL& url) const {
    return isAllowed(url) && urlOpener().canOpenURL(url);
}

bool UIApplication::openURL(const NSURL& url) {
    return isAllowed(url) && urlOpener().openURL(url);
}

void UIApplication::setAllowedSchemes(std::vector<std::string> schemes) {
    allowedSchemes_ = std::move(schemes);
}

void UIApplication::allowScheme(const std::string& scheme) {
    if (std::ranges::find(allowedSchemes_, scheme) == allowedSchemes_.end()) allowedSchemes_.push_back(scheme);
}

void UIApplication::setUrlOpener(std::shared_ptr<UrlOpener> opener) {
    opener_ = std::move(opener);
}

UrlOpener& UIApplication::urlOpener() const {
    return opener_ ? *opener_ : desktopUrlOpener();
}

}  // namespace flarebox
