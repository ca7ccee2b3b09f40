#include <Benchmarks/Mapping/AssetGenerator.h>
#include <Benchmarks/Mapping/Peers.h>
#include <Benchmarks/Support/Allocations.h>
#include <Flarebox/Models/FXAssetInfo.h>
#include <Foundation/NSJSONSerialization.h>

#include <benchmark/benchmark.h>

#include <map>

namespace flarebox::benchmarks {

namespace {

/// The document of that many assets, with room behind it for the parsers that read in blocks.
const std::string& document(std::int64_t count) {
    static std::map<std::int64_t, std::string> documents;
    std::string& text = documents[count];
    if (text.empty()) {
        text = assetsJSON(static_cast<std::size_t>(count));
        text.reserve(text.size() + 64);
    }
    return text;
}

/// The bytes as they come out of a request.
NSData body(std::int64_t count) {
    static std::map<std::int64_t, NSData> bodies;
    NSData& data = bodies[count];
    if (!data) {
        std::string text = document(count);
        text.reserve(text.size() + 64);
        data = NSData::dataWithString(std::move(text));
    }
    return data;
}

/// What the sample client does with an answer.
std::vector<Ref<FXAssetInfo>> decodeWithFlarebox(const NSData& data) {
    const auto list = NSJSONSerialization::JSONObjectWithData(data, nullptr).as<NSArray>();
    std::vector<Ref<FXAssetInfo>> assets;
    assets.reserve(list.count());
    for (const Value& element : list) assets.push_back(FXAssetInfo::initWithDictionary(element));
    return assets;
}

bool areSame(const NSString& own, const std::optional<std::string>& peer) {
    return peer ? own == std::string_view(*peer) : !own;
}
bool areSame(const NSNumber& own, const std::optional<double>& peer) {
    return peer ? own && own.doubleValue() == *peer : !own;
}

/// A sample of each sort of field; whoever leaves work out fails here.
bool areSame(const std::vector<PlainAsset>& peers) {
    const auto own = decodeWithFlarebox(body(static_cast<std::int64_t>(peers.size())));
    for (std::size_t i = 0; i < peers.size(); ++i) {
        const FXAssetInfo& asset = *own[i];
        const PlainAsset& peer = peers[i];
        if (!areSame(asset.title(), peer.title) || !areSame(asset._description(), peer.description) ||
            !areSame(asset.fileCoupon(), peer.fileCoupon) || !areSame(asset.categoryTitle(), peer.categoryTitle) ||
            !areSame(asset.campaignId(), peer.campaignId) || !areSame(asset.category(), peer.category) ||
            asset.created().timeIntervalSince1970() != peer.created)
            return false;
    }
    return true;
}

void filling(benchmark::State& state) {
    const NSData data = body(state.range(0));
    benchmark::DoNotOptimize(decodeWithFlarebox(body(20)));
    std::uint64_t allocations = 0;
    for (auto _ : state) {
        const std::uint64_t before = allocationCount();
        const auto assets = decodeWithFlarebox(data);
        allocations = allocationCount() - before;
        benchmark::DoNotOptimize(assets.data());
    }
    state.counters["items"] = static_cast<double>(state.range(0));
    state.counters["allocations"] = static_cast<double>(allocations) / static_cast<double>(state.range(0));
}

template <AssetDecoder decode>
void fillingByHand(benchmark::State& state) {
    const std::string& text = document(state.range(0));
    if (!areSame(decode(document(20)))) return state.SkipWithError("not the same fields");
    for (auto _ : state) {
        const auto assets = decode(text);
        benchmark::DoNotOptimize(assets.data());
    }
    state.counters["items"] = static_cast<double>(state.range(0));
}

void parsing(benchmark::State& state) {
    for (auto _ : state) parseWithSimdjson(document(state.range(0)));
    state.counters["items"] = static_cast<double>(state.range(0));
}

void counts(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(20)->Arg(1000)->Arg(100'000);
}

BENCHMARK(filling)->Name("Filling/Flarebox")->Apply(counts);
BENCHMARK(fillingByHand<decodeWithSimdjsonDOM>)->Name("Filling/simdjson DOM")->Apply(counts);
BENCHMARK(fillingByHand<decodeWithSimdjsonOnDemand>)->Name("Filling/simdjson On-Demand")->Apply(counts);
BENCHMARK(fillingByHand<decodeWithRapidJSONDOM>)->Name("Filling/RapidJSON DOM")->Apply(counts);
BENCHMARK(fillingByHand<decodeWithRapidJSONInSitu>)->Name("Filling/RapidJSON in-situ")->Apply(counts);
BENCHMARK(fillingByHand<decodeWithNlohmann>)->Name("Filling/nlohmann::json")->Apply(counts);
BENCHMARK(fillingByHand<decodeWithBoost>)->Name("Filling/Boost.JSON")->Apply(counts);
BENCHMARK(parsing)->Name("Filling/simdjson parse alone")->Apply(counts);

}  // namespace

}  // namespace flarebox::benchmarks
