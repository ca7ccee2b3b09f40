#pragma once

#include <Benchmarks/Mapping/PlainAsset.h>

#include <cstdint>
#include <string>
#include <vector>

// The same work written by hand for the one struct on other libraries. Each keeps what its library can reuse from one
// document to the next. All of them end the program when the document is not what it should be.

namespace flarebox::benchmarks {

/// Reads `document`, which is followed by 64 readable bytes; anything else a peer needs it copies itself.
using AssetDecoder = std::vector<PlainAsset> (*)(const std::string& document);

std::vector<PlainAsset> decodeWithSimdjsonDOM(const std::string& document);
std::vector<PlainAsset> decodeWithSimdjsonOnDemand(const std::string& document);
std::vector<PlainAsset> decodeWithRapidJSONDOM(const std::string& document);
std::vector<PlainAsset> decodeWithRapidJSONInSitu(const std::string& document);
std::vector<PlainAsset> decodeWithNlohmann(const std::string& document);
std::vector<PlainAsset> decodeWithBoost(const std::string& document);

/// simdjson's parse alone, the floor under everything that is built on it.
void parseWithSimdjson(const std::string& document);

/// Writes one asset with RapidJSON's Writer; the result is valid until the next call.
std::string_view writeWithRapidJSON(const PlainAsset& asset);

struct PlainLine {
    std::optional<std::string> sku, title;
    std::optional<double> quantity, cents;
};
struct PlainOrder {
    std::optional<double> number, state;
    std::optional<std::string> name, city, firstTag;
    std::vector<PlainLine> lines;
};
std::vector<PlainOrder> decodeOrdersWithSimdjsonDOM(const std::string& document);

}  // namespace flarebox::benchmarks
