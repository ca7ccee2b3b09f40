#include <Benchmarks/Mapping/AssetGenerator.h>
#include <Benchmarks/Mapping/Peers.h>
#include <Flarebox/Mapping/MotisDeclaration.h>
#include <Foundation/NSJSONSerialization.h>

#include <benchmark/benchmark.h>

namespace flarebox::benchmarks {

namespace {

class OrderLine : public MotisObject {
    FLAREBOX_MODEL(OrderLine, MotisObject, (sku, setSku, NSString, "sku"), (title, setTitle, NSString, "title"),
                   (quantity, setQuantity, NSNumber, "quantity"), (cents, setCents, NSNumber, "cents"))
};

class Order : public MotisObject {
    FLAREBOX_MODEL(Order, MotisObject, (number, setNumber, NSNumber, "number"), (state, setState, NSNumber, "state"),
                   (name, setName, NSString, "customer.name"), (city, setCity, NSString, "customer.address.city"),
                   (firstTag, setFirstTag, NSString, "tags.0"), (lines, setLines, NSArray, "lines"))
    static NSDictionary mts_valueMappingForKey(std::string_view property) {
        if (property != "state") return nullptr;
        return {{"open", 1}, {"paid", 2}, {"sent", 3}, {Value::null(), 0}};
    }
    static ArrayClassMapping mts_arrayClassMapping() { return {{"lines", &OrderLine::staticClass()}}; }
};

constexpr std::size_t count = 1000;

std::vector<Ref<Order>> decodedOrders(const NSData& data) {
    const auto list = NSJSONSerialization::JSONObjectWithData(data, nullptr).as<NSArray>();
    std::vector<Ref<Order>> orders;
    orders.reserve(list.count());
    for (const Value& element : list) {
        orders.push_back(make<Order>());
        orders.back()->mts_setValuesForKeysWithDictionary(element.as<NSDictionary>());
    }
    return orders;
}

std::string document() {
    std::string text = ordersJSON(count);
    text.reserve(text.size() + 64);
    return text;
}

bool areSame(const std::vector<Ref<Order>>& own, const std::vector<PlainOrder>& peers) {
    for (std::size_t i = 0; i < peers.size(); ++i) {
        const auto* line = own[i]->lines().objectAtIndex(4).object<OrderLine>();
        if (!(own[i]->city() == std::string_view(*peers[i].city)) ||
            !(own[i]->name() == std::string_view(*peers[i].name)) ||
            !(own[i]->firstTag() == std::string_view(*peers[i].firstTag)) ||
            own[i]->state().doubleValue() != peers[i].state || !line ||
            line->cents().doubleValue() != peers[i].lines[4].cents ||
            !(line->sku() == std::string_view(*peers[i].lines[4].sku)))
            return false;
    }
    return own.size() == peers.size();
}

void nesting(benchmark::State& state) {
    const NSData data = NSData::dataWithString(document());
    if (!areSame(decodedOrders(data), decodeOrdersWithSimdjsonDOM(document())))
        return state.SkipWithError("not the same fields");
    for (auto _ : state) {
        const auto orders = decodedOrders(data);
        benchmark::DoNotOptimize(orders.data());
    }
    state.counters["items"] = count;
}

void nestingByHand(benchmark::State& state) {
    const std::string text = document();
    for (auto _ : state) {
        const auto orders = decodeOrdersWithSimdjsonDOM(text);
        benchmark::DoNotOptimize(orders.data());
    }
    state.counters["items"] = count;
}

BENCHMARK(nesting)->Name("Nesting/Flarebox");
BENCHMARK(nestingByHand)->Name("Nesting/simdjson DOM");

}  // namespace

}  // namespace flarebox::benchmarks
