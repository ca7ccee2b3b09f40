#pragma once

#include <Foundation/NSError.h>
#include <Foundation/Values.h>

#include <string_view>

namespace flarebox {

inline constexpr int NSPropertyListWriteInvalidError = 3852;

/// Property lists in their XML form: dictionaries with text keys, arrays, texts, numbers, dates (whole seconds) and
/// data. UTF-8, at most 16 MiB, nested at most 512 deep; nothing outside the text is ever read. Any thread.
class NSPropertyListSerialization {
public:
    /// Absent when a value has no place in a property list (NSPropertyListWriteInvalidError).
    static NSData dataWithPropertyList(const Value& propertyList, Ref<NSError>* error = nullptr);
    /// Absent, with NSPropertyListReadCorruptError naming file and line, for anything but a property list.
    static Value propertyListWithData(const NSData& data, std::string_view fileName = {},
                                      Ref<NSError>* error = nullptr);
    /// Also fails with the errors of `NSFileManager::contentsAtPath`.
    static Value propertyListWithContentsOfFile(std::string_view path, Ref<NSError>* error = nullptr);
};

}  // namespace flarebox
