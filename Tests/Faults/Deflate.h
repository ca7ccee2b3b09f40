#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace flarebox::testing {

/// A gzip file that unpacks to `start` followed by `count` times the same byte: a thousandth of its contents.
std::string gzipOfRun(std::string_view start, char byte, std::size_t count);

/// A PNG picture of that size, transparent all over, as small as such a file can be.
std::string emptyPNG(std::uint32_t width, std::uint32_t height);

}  // namespace flarebox::testing
