#pragma once

#include <Flarebox/Models/FXBaseObject.h>
#include <Foundation/Export.h>

namespace flarebox {

/// The player's data, which the host hands to the configuration and which opens a game session. Every field may be left
/// out.
class FLAREBOX_EXPORT FXUserSession : public FXBaseObject {
    // clang-format off
    FX_RECORD(FXUserSession, FXBaseObject,
        (firstName, setFirstName, NSString, "first_name", Optional),
        (lastName,  setLastName,  NSString, "last_name",  Optional),
        (age,       setAge,       NSNumber, "age",        Optional),
        (sex,       setSex,       NSString, "sex",        Optional),
        (state,     setState,     NSString, "state",      Optional),
        (city,      setCity,      NSString, "city",       Optional),
        (country,   setCountry,   NSString, "country",    Optional),
        (ipAddr,    setIpAddr,    NSString, "ip_addr",    Optional),
        (deviceId,  setDeviceId,  NSString, "device_id",  Optional))
    // clang-format on
};

}  // namespace flarebox
