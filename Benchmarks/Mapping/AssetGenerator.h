#pragma once

#include <cstddef>
#include <string>

namespace flarebox::benchmarks {

enum class Dates { AsSeconds, Absent };

/// A JSON array of assets as a service sends them, the same for the same arguments on every machine: all fields, a
/// tenth of the optional ones null, and three keys that nobody knows.
std::string assetsJSON(std::size_t count, Dates dates = Dates::AsSeconds);

/// A JSON array of orders: nested objects, a state to translate, and an array of lines.
std::string ordersJSON(std::size_t count);

}  // namespace flarebox::benchmarks
