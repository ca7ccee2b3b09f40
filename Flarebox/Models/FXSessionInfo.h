#pragma once

#include <Flarebox/Models/FXBaseObject.h>
#include <Foundation/Export.h>

namespace flarebox {

/// The game session that the service creates.
class FLAREBOX_EXPORT FXSessionInfo : public FXBaseObject {
    // clang-format off
    FX_RECORD(FXSessionInfo, FXBaseObject,
        (_id,          set_id,          NSNumber, "id"),
        (uid,          setUid,          NSString, "uid"),
        (developerUid, setDeveloperUid, NSString, "developer_uid"),
        (gameUid,      setGameUid,      NSString, "game_uid"),
        (game,         setGame,         NSNumber, "game"),
        (version,      setVersion,      NSNumber, "version"),
        (start,        setStart,        NSDate,   "start",         Optional),
        (end,          setEnd,          NSDate,   "end",           Optional),
        (firstName,    setFirstName,    NSString, "first_name"),
        (lastName,     setLastName,     NSString, "last_name"),
        (age,          setAge,          NSNumber, "age",           Optional),
        (sex,          setSex,          NSString, "sex"),
        (state,        setState,        NSString, "state"),
        (city,         setCity,         NSString, "city"),
        (country,      setCountry,      NSString, "country"),
        (ipAddr,       setIpAddr,       NSString, "ip_addr",       Optional),
        (deviceId,     setDeviceId,     NSString, "device_id"))
    // clang-format on
};

}  // namespace flarebox
