#pragma once

#include <Foundation/Export.h>
#include <Foundation/Value.h>

#include <string_view>

namespace flarebox {

/// Takes an object's values into an archive, or hands them out again, under the names the object chooses.
class FLAREBOX_EXPORT NSCoder {
public:
    virtual ~NSCoder() = default;
    /// When archiving: an absent value is not written. Otherwise does nothing.
    virtual void encodeObject(const Value& value, std::string_view key) = 0;
    /// When unarchiving: the value, absent when nothing was archived under that name. Otherwise absent.
    virtual Value decodeObjectForKey(std::string_view key) = 0;
};

/// What a class inherits besides NSObject so that its objects can be archived. Its ClassInfo needs a factory, and has
/// to exist (`staticClass()` has been called) before an archive that names the class is read.
class FLAREBOX_EXPORT NSCoding {
public:
    virtual ~NSCoding() = default;
    virtual void encodeWithCoder(NSCoder& coder) const = 0;
    /// Called on a fresh instance from the class's factory. In an archive with cycles, objects handed out here may not
    /// have been filled yet themselves. The archive may come from anybody: check what kind each value is.
    virtual void initWithCoder(NSCoder& coder) = 0;
};

}  // namespace flarebox
