#pragma once

#include <Foundation/Export.h>
#include <Foundation/Values.h>

namespace flarebox {

// The companion application, which lists the player's coupons. A host may change the three texts before the tab uses
// them; main thread.
/// Links that open the application, as released and as built for development.
FLAREBOX_EXPORT extern NSString appSchemaDeeplinkProd;
FLAREBOX_EXPORT extern NSString appSchemaDeeplinkDev;
/// The application's number in the store.
FLAREBOX_EXPORT extern NSString appStoreID;

}  // namespace flarebox
