// The classes of values under the platform's names. None can be made by name: an instance is a value, not an object.

#include <Foundation/NSObject.h>
#include <Foundation/Storage.h>
#include <Foundation/Values.h>

namespace flarebox {

using detail::ValueAccess;

#define FLAREBOX_VALUE_CLASS(Name, Superclass)                                   \
    const ClassInfo& Name::staticClass() {                                       \
        static const ClassInfo info(#Name, &Superclass::staticClass(), nullptr); \
        return info;                                                             \
    }
#define FLAREBOX_VALUE_KIND(Name, KindName)           \
    bool Name::accepts(const Value& value) noexcept { \
        return value.kind() == Kind::KindName;        \
    }                                                 \
    FLAREBOX_VALUE_CLASS(Name, NSObject)
#define FLAREBOX_MUTABLE_KIND(Name, Superclass)                             \
    bool Name::accepts(const Value& value) noexcept {                       \
        return Superclass::accepts(value) && ValueAccess::isMutable(value); \
    }                                                                       \
    FLAREBOX_VALUE_CLASS(Name, Superclass)

FLAREBOX_VALUE_KIND(NSNull, Null)
FLAREBOX_VALUE_KIND(NSString, String)
FLAREBOX_MUTABLE_KIND(NSMutableString, NSString)
FLAREBOX_VALUE_KIND(NSNumber, Number)
FLAREBOX_VALUE_KIND(NSDate, Date)
FLAREBOX_VALUE_KIND(NSURL, URL)
FLAREBOX_VALUE_KIND(NSData, Data)
FLAREBOX_MUTABLE_KIND(NSMutableData, NSData)
FLAREBOX_VALUE_KIND(NSArray, Array)
FLAREBOX_MUTABLE_KIND(NSMutableArray, NSArray)
FLAREBOX_VALUE_KIND(NSSet, Set)
FLAREBOX_MUTABLE_KIND(NSMutableSet, NSSet)
FLAREBOX_VALUE_KIND(NSOrderedSet, OrderedSet)
FLAREBOX_MUTABLE_KIND(NSMutableOrderedSet, NSOrderedSet)
FLAREBOX_VALUE_KIND(NSDictionary, Dictionary)
FLAREBOX_MUTABLE_KIND(NSMutableDictionary, NSDictionary)

}  // namespace flarebox
