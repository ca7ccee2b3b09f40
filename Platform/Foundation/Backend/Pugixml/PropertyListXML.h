#pragma once

#include <Foundation/Value.h>

#include <string>
#include <string_view>

namespace flarebox::detail {

/// The value of an XML property list; absent, with `failure` saying file and line, for anything else. Any thread.
Value readPropertyListXML(std::string_view text, std::string_view fileName, std::string& failure);

/// The value as an XML property list; empty, with `failure` saying why, when it cannot be written as one. Any thread.
std::string writePropertyListXML(const Value& value, std::string& failure);

/// Whether XML can hold the text: valid UTF-8 without control characters but tab, line feed and carriage return
/// (XML 1.0, 2.2). Any thread.
bool isXMLText(std::string_view text);

/// How deep values of a property list may be nested.
inline constexpr int maximumPropertyListDepth = 512;

}  // namespace flarebox::detail
