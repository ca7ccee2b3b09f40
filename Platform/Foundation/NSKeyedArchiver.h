#pragma once

#include <Foundation/NSCoder.h>
#include <Foundation/NSError.h>
#include <Foundation/Values.h>

namespace flarebox {

/// Codes of NSCocoaErrorDomain for archives.
inline constexpr int NSCoderReadCorruptError = 4864;
inline constexpr int NSCoderInvalidValueError = 4866;

/// Archives are XML property lists:
///
///     { "$archiver": "NSKeyedArchiver", "$version": 1, "$top": NODE,
///       "$objects": [ { "class": NAME, "values": { KEY: NODE, … } }, … ] }
///
/// A node is the value itself for a text, a boolean, a signed or floating number, data, or an array of nodes.
/// Everything else is a dictionary with "$kind": "object" ("index" into "$objects", so that shared objects stay shared
/// and cycles close), "dictionary" ("values": key and value nodes in turn), "set", "orderedSet" and every collection
/// that can be changed
/// ("mutableArray", …; "values"), "unsigned" ("value": decimal text), "date" ("value": seconds since 1970), "url"
/// ("value"), "text" ("value": data; for texts that XML cannot carry) and "null". At most 100 values deep and 1,000,000
/// in number.
class NSKeyedArchiver {
public:
    /// Absent, with NSCoderInvalidValueError, when an object is of a class that cannot be archived or the limits are
    /// exceeded.
    static NSData archivedDataWithRootObject(const Value& root, Ref<NSError>* error = nullptr);
};

class NSKeyedUnarchiver {
public:
    /// Absent, with NSCoderReadCorruptError, for anything that is not a whole, sound archive of known classes.
    static Value unarchiveObjectWithData(const NSData& data, Ref<NSError>* error = nullptr);
};

namespace detail {

inline constexpr int maximumArchiveDepth = 100;
inline constexpr int maximumArchivedValues = 250000;

}  // namespace detail

}  // namespace flarebox
