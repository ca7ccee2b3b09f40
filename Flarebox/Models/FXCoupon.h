#pragma once

#include <Flarebox/Models/FXBaseObject.h>

namespace flarebox {

/// A coupon saved for the player.
class FXCoupon : public FXBaseObject {
    FX_RECORD(FXCoupon, FXBaseObject,                                // the wire's key, and whether it may be left out
              (session, setSession, NSString, "session", Optional),  // uid of the game session
              (asset, setAsset, NSNumber, "asset"))                  // id of the asset
};

}  // namespace flarebox
