#pragma once

#include <Foundation/Export.h>
#include <Foundation/Values.h>
#include <UIKit/UrlOpener.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

class UIWindow;

namespace detail {
template <class T>
class Immortal;
}

/// The host game, as the kit sees it.
class FLAREBOX_EXPORT UIApplicationDelegate {
public:
    virtual ~UIApplicationDelegate() = default;
    /// The application's main window, or null.
    virtual UIWindow* window() = 0;
};

/// The application around the kit. Main thread.
class FLAREBOX_EXPORT UIApplication {
public:
    /// The one instance; lasts as long as the process.
    static UIApplication& sharedApplication();

    /// Set by the host adapter while one exists; null otherwise.
    UIApplicationDelegate* delegate() const { return delegate_; }
    /// Borrowed; null takes it back. For hosts that keep several windows.
    void setDelegate(UIApplicationDelegate* delegate) { delegate_ = delegate; }
    /// The delegate's window, or null.
    UIWindow* keyWindow() const;

    /// Whether links of this scheme may be opened at all. An absent link may not.
    bool isAllowed(const NSURL& url) const;
    /// Whether a link of this scheme would be opened. An absent link, one of a scheme that is not allowed, and one to
    /// the web that names no host, or a user before it, never is.
    bool canOpenURL(const NSURL& url) const;
    /// Hands the link to the desktop without waiting for it. False when it was refused.
    bool openURL(const NSURL& url);

    /// The only schemes that links may have, in lower case.
    const std::vector<std::string>& allowedSchemes() const { return allowedSchemes_; }
    /// Replaces them all, the usual ones included; empty: no link is opened.
    void setAllowedSchemes(std::vector<std::string> schemes);
    /// Adds one, in lower case.
    void allowScheme(const std::string& scheme);
    /// Who opens links; null for the desktop's own way.
    void setUrlOpener(std::shared_ptr<UrlOpener> opener);

private:
    friend class detail::Immortal<UIApplication>;
    UIApplication();
    ~UIApplication() = default;
    UrlOpener& urlOpener() const;

    UIApplicationDelegate* delegate_ = nullptr;
    std::vector<std::string> allowedSchemes_;
    std::shared_ptr<UrlOpener> opener_;
};

}  // namespace flarebox
