#pragma once

#include <Flarebox/Models/FXBaseObject.h>
#include <Foundation/Export.h>

namespace flarebox {

/// A coupon saved for the player: the uid of the game session and the id of the asset.
class FLAREBOX_EXPORT FXCoupon : public FXBaseObject {
    // clang-format off
    FX_RECORD(FXCoupon, FXBaseObject,
        (session, setSession, NSString, "session", Optional),
        (asset,   setAsset,   NSNumber, "asset"))
    // clang-format on
};

}  // namespace flarebox
