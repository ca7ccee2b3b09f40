#pragma once

#include <Foundation/NSObject.h>
#include <Foundation/Value.h>

namespace flarebox {

/// The change handed to an observer. Each value is absent unless its option was asked for.
struct NSKeyValueChange {
    Value newValue;
    Value oldValue;
};

namespace detail {

/// Ends all registrations of a dying object, as the observed and as the observer. Any thread.
void forgetObservers(NSObject* object);

}  // namespace detail

}  // namespace flarebox
