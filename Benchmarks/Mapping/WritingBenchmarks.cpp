#include <Benchmarks/Mapping/AssetGenerator.h>
#include <Benchmarks/Mapping/Peers.h>
#include <Flarebox/Models/FXAssetInfo.h>
#include <Foundation/NSJSONSerialization.h>

#include <benchmark/benchmark.h>

namespace flarebox::benchmarks {

namespace {

constexpr std::size_t count = 1000;

// Dates have no JSON form, so the assets that are written have none.
std::string document() {
    std::string text = assetsJSON(count, Dates::Absent);
    text.reserve(text.size() + 64);
    return text;
}

NSData written(const FXAssetInfo& asset) {
    return NSJSONSerialization::dataWithJSONObject(asset.toDictionary(), nullptr);
}

void writing(benchmark::State& state) {
    const std::string text = document();
    std::vector<Ref<FXAssetInfo>> assets;
    for (const Value& element :
         NSJSONSerialization::JSONObjectWithText(text, NSJSONReadingStrict, nullptr).as<NSArray>())
        assets.push_back(FXAssetInfo::initWithDictionary(element));
    const auto peers = decodeWithSimdjsonDOM(text);
    if (written(*assets[0]).text() != writeWithRapidJSON(peers[0])) return state.SkipWithError("not the same text");
    for (auto _ : state) {
        for (const auto& asset : assets) benchmark::DoNotOptimize(written(*asset).text().data());
    }
    state.counters["items"] = count;
}

void writingByHand(benchmark::State& state) {
    const auto assets = decodeWithSimdjsonDOM(document());
    for (auto _ : state) {
        for (const auto& asset : assets) benchmark::DoNotOptimize(writeWithRapidJSON(asset).data());
    }
    state.counters["items"] = count;
}

BENCHMARK(writing)->Name("Writing/Flarebox");
BENCHMARK(writingByHand)->Name("Writing/RapidJSON");

}  // namespace

}  // namespace flarebox::benchmarks
