#pragma once

#include <Foundation/Values.h>

namespace flarebox {

// The companion application, which lists the player's coupons. A host may change the three texts before the tab uses
// them; main thread.
/// Links that open the application, as released and as built for development.
extern NSString appSchemaDeeplinkProd;
extern NSString appSchemaDeeplinkDev;
/// The application's number in the store.
extern NSString appStoreID;

}  // namespace flarebox
