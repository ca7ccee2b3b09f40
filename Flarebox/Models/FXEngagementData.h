#pragma once

#include <Flarebox/Models/FXBaseObject.h>
#include <Foundation/Export.h>

namespace flarebox {

/// One engagement event that is sent to the service.
class FLAREBOX_EXPORT FXEngagementData : public FXBaseObject {
    // clang-format off
    FX_RECORD(FXEngagementData, FXBaseObject,
        (action,     setAction,     NSString, "action"),
        (advertiser, setAdvertiser, NSString, "advertiser"),
        (age,        setAge,        NSString, "age",         Optional),
        (asset,      setAsset,      NSString, "asset"),
        (browser,    setBrowser,    NSString, "browser",     Optional),
        (browserVer, setBrowserVer, NSString, "browser_ver", Optional),
        (campaign,   setCampaign,   NSString, "campaign"),
        (country,    setCountry,    NSString, "country",     Optional),
        (desktop,    setDesktop,    NSString, "desktop"),
        (developer,  setDeveloper,  NSString, "developer"),
        (deviceId,   setDeviceId,   NSString, "device_id"),
        (duration,   setDuration,   NSString, "duration"),
        (game,       setGame,       NSString, "game"),
        (generic,    setGeneric,    NSString, "generic"),
        (ipAddr,     setIpAddr,     NSString, "ip_addr"),
        (mobile,     setMobile,     NSString, "mobile"),
        (os,         setOs,         NSString, "os",          Optional),
        (osVer,      setOsVer,      NSString, "os_ver",      Optional),
        (session,    setSession,    NSString, "session"),
        (sex,        setSex,        NSString, "sex",         Optional),
        (spot,       setSpot,       NSString, "spot",        Optional),
        (version,    setVersion,    NSString, "version"))
    // clang-format on
};

}  // namespace flarebox
