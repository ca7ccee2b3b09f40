#pragma once

#include <Flarebox/Core/Theme.h>
#include <Flarebox/Models/FXSessionInfo.h>
#include <Flarebox/Models/FXUserSession.h>
#include <Foundation/Export.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>
#include <Networking/LocalAddress.h>

#include <atomic>
#include <cstdint>
#include <vector>

namespace flarebox {

/// Seconds between refreshes while the configuration holds no positive period.
FLAREBOX_EXPORT extern std::int32_t refreshTimeIntervalDefault;

/// The settings of the kit, filled by the host before it shows the tab. One instance for the process; nothing of it is
/// stored. Main thread, except `defaultConfig` and the settings of the log, which any thread may use; on another thread
/// the setters do nothing, and the log says so.
class FLAREBOX_EXPORT FlareboxConfig : public NSObject {
    FLAREBOX_CLASS(FlareboxConfig)
public:
    /// The one instance, made by the first call. Any thread.
    static FlareboxConfig& defaultConfig();

    /// Stores the five values as they are, null ones included; a later call overwrites them.
    /// `gameUID` and `gameVersion` name the game to the service. `logLevel`: 1 everything, 2 warnings and errors, 3
    /// errors, other values nothing.
    void configFlareboxWithUserSession(const Ref<FXUserSession>& userSession, const NSString& gameUID,
                                       const NSString& gameVersion, bool enableLogging, std::uint64_t logLevel);

    /// The game's identifier on the service; null until configured.
    const NSString& gameUID() const { return gameUID_; }
    /// For the requests that follow; null: they are refused.
    void setGameUID(const NSString& gameUID);
    /// Of the game, as the service is told; null until configured.
    const NSString& gameVersion() const { return gameVersion_; }
    /// For the requests that follow; null: they are refused.
    void setGameVersion(const NSString& gameVersion);
    /// Stored for the host, true at first, and observable by its name. Tabs do not follow it: see their own
    /// `showFlareboxButton`.
    bool showFlareboxButton() const { return showFlareboxButton_; }
    void setShowFlareboxButton(bool show);  ///< tells those who observe it
    /// A slot for the host, true at first.
    bool initializeOnStart() const { return initializeOnStart_; }
    void setInitializeOnStart(bool initialize);  ///< the kit itself does not look at it
    /// A slot for the host; the current game session is kept by FlareboxManager.
    const Ref<FXSessionInfo>& sessionInfo() const { return sessionInfo_; }
    void setSessionInfo(const Ref<FXSessionInfo>& sessionInfo);  ///< may be null
    /// The player's data; also carries the device identifier. May be null.
    const Ref<FXUserSession>& sessionEdit() const { return sessionEdit_; }
    /// For the next game session; null: none can be created.
    void setSessionEdit(const Ref<FXUserSession>& sessionEdit);
    /// Whether anything is logged; false at first.
    bool enableLogging() const { return enableLogging_.load(std::memory_order_relaxed); }
    /// Holds for the next message. Any thread.
    void setEnableLogging(bool enable) { enableLogging_.store(enable, std::memory_order_relaxed); }
    /// The lowest LogLevel that is printed; 0, as at first, prints nothing.
    std::uint64_t logLevel() const { return logLevel_.load(std::memory_order_relaxed); }
    /// Holds for the next message. Any thread.
    void setLogLevel(std::uint64_t level) { logLevel_.store(level, std::memory_order_relaxed); }
    /// Seconds between refreshes as set; 0 or less stands for the default.
    std::int32_t refreshTimeInterval() const { return refreshTimeInterval_; }
    /// For the countdowns that begin from now on.
    void setRefreshTimeInterval(std::int32_t seconds);
    /// The period in force, in seconds: the one set when positive, the default otherwise.
    std::int32_t getTimeRefresh() const;
    /// The same.
    void setTimeRefresh(std::int32_t seconds) { setRefreshTimeInterval(seconds); }

    /// How the kit looks. Never null.
    const Ref<Theme>& theme() const { return theme_; }
    /// Takes a theme over; null for the kit's own look. Tabs follow at once, alerts and players when they are shown
    /// next: `setTheme(Theme::themeWithFile("theme.xml"))`.
    void setTheme(const Ref<Theme>& theme);

    /// The advertising identifier as an upper-case UUID text. Null while tracking is switched off; the player is then
    /// asked by an alert to allow it.
    static NSString deviceUID();
    /// Keeps the identifier in `sessionEdit`; without one the call does nothing.
    void setDeviceUID(const NSString& identifier);
    /// Whether `sessionEdit` holds an identifier that is not empty.
    bool validDeviceUID() const;
    /// Shows the alert that asks for advertising tracking, over the application's window; nothing happens without a
    /// window.
    static void handleAdsDisable();
    /// The IPv4 address of the interface "en0" or "pdp_ip0" in dotted decimal, the last one listed; "error" when there
    /// is none.
    static NSString getIPAddress();
    /// The same, of a list in the system's order.
    static NSString addressAmong(const std::vector<LocalAddress>& addresses);

private:
    template <class T, class... Arguments>
    friend Ref<T> make(Arguments&&...);
    FlareboxConfig() = default;
    void setupDefaultConfig();

    NSString gameUID_, gameVersion_;
    Ref<FXSessionInfo> sessionInfo_;
    Ref<FXUserSession> sessionEdit_;
    Ref<Theme> theme_ = make<Theme>();
    std::atomic<std::uint64_t> logLevel_{0};
    std::int32_t refreshTimeInterval_ = 0;
    bool showFlareboxButton_ = false, initializeOnStart_ = false;
    std::atomic<bool> enableLogging_{false};
};

}  // namespace flarebox
