#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSUUID.h>

#include <optional>

namespace flarebox {

/// Keys of the user defaults that the manager keeps its own state under.
inline constexpr const char* ASAdvertisingIdentifierKey = "ASAdvertisingIdentifier";
inline constexpr const char* ASAdvertisingTrackingEnabledKey = "ASAdvertisingTrackingEnabled";

/// The device's identifier for advertising and the player's permission to use it. Main thread.
///
/// A desktop has neither, so one random identifier for each application and a switch (on until changed) are kept in the
/// user defaults. A game that runs on a system with its own supplies them.
class FLAREBOX_EXPORT ASIdentifierManager {
public:
    static ASIdentifierManager& sharedManager();

    /// What the host has supplied, else the switch in the user defaults.
    bool isAdvertisingTrackingEnabled() const;
    /// What the host has supplied, else the application's own, made at the first call. All zero when the system's
    /// random source fails.
    NSUUID advertisingIdentifier() const;

    /// Supplied by the host for this process; nothing is written. None means this manager's own again.
    void setAdvertisingTrackingEnabled(std::optional<bool> isEnabled) { isEnabled_ = isEnabled; }
    void setAdvertisingIdentifier(std::optional<NSUUID> identifier) { identifier_ = identifier; }

private:
    ASIdentifierManager() = default;

    std::optional<bool> isEnabled_;
    std::optional<NSUUID> identifier_;
};

}  // namespace flarebox
