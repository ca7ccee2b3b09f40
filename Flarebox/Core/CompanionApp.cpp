#include <Flarebox/Core/CompanionApp.h>

namespace flarebox {

NSString appSchemaDeeplinkProd = NSString::stringWithConstant("kestrin://");
NSString appSchemaDeeplinkDev = NSString::stringWithConstant("kestrindev://");
NSString appStoreID = NSString::stringWithConstant("1482650937");

}  // namespace flarebox
