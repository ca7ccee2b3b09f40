#include <Benchmarks/Mapping/Peers.h>

#include <simdjson.h>

#include <cstdlib>

namespace flarebox::benchmarks {

namespace {

namespace dom = simdjson::dom;
namespace ondemand = simdjson::ondemand;

dom::element parsed(const std::string& document) {
    static dom::parser parser;
    dom::element root;
    if (parser.parse(document.data(), document.size(), false).get(root)) std::abort();
    return root;
}

void read(std::optional<std::string>& field, dom::element value) {
    std::string_view found;
    if (!value.get_string().get(found)) field.emplace(found);
}

void read(std::optional<double>& field, dom::element value) {
    double found;
    if (!value.get_double().get(found)) field = found;
}

/// The characters of a key as they stand in the document.
std::string_view rawKey(ondemand::field& field) {
    const char* start = field.key().raw();
    const char* end = start;
    while (*end != '"') ++end;
    return {start, static_cast<std::size_t>(end - start)};
}

void fill(PlainAsset& asset, ondemand::object object) {
    for (auto result : object) {
        ondemand::field field;
        if (std::move(result).get(field)) std::abort();
        const AssetField target = assetField(rawKey(field));
        if (target.text) {
            std::string_view found;
            if (!field.value().get_string().get(found)) (asset.*target.text).emplace(found);
        } else if (target.number) {
            double found;
            if (!field.value().get_double().get(found)) asset.*target.number = found;
        }
    }
}

}  // namespace

void parseWithSimdjson(const std::string& document) {
    parsed(document);
}

std::vector<PlainAsset> decodeWithSimdjsonDOM(const std::string& document) {
    const dom::array list = parsed(document).get_array();
    std::vector<PlainAsset> assets;
    assets.reserve(list.size());
    for (const dom::object object : list) {
        PlainAsset& asset = assets.emplace_back();
        for (const auto [key, value] : object) {
            const AssetField target = assetField(key);
            if (target.text)
                read(asset.*target.text, value);
            else if (target.number)
                read(asset.*target.number, value);
        }
    }
    return assets;
}

std::vector<PlainAsset> decodeWithSimdjsonOnDemand(const std::string& document) {
    static ondemand::parser parser;
    ondemand::document parsed;
    ondemand::array list;
    const simdjson::padded_string_view view(document.data(), document.size(), document.capacity());
    if (parser.iterate(view).get(parsed) || parsed.get_array().get(list)) std::abort();
    std::vector<PlainAsset> assets;
    for (auto element : list) {
        ondemand::object object;
        if (element.get_object().get(object)) std::abort();
        fill(assets.emplace_back(), object);
    }
    return assets;
}

namespace {

std::optional<double> stateNumber(std::string_view state) {
    if (state == "open") return 1;
    if (state == "paid") return 2;
    if (state == "sent") return 3;
    return 0;
}

PlainLine line(dom::object object) {
    PlainLine line;
    for (const auto [key, value] : object) {
        if (key == "sku")
            read(line.sku, value);
        else if (key == "title")
            read(line.title, value);
        else if (key == "quantity")
            read(line.quantity, value);
        else if (key == "cents")
            read(line.cents, value);
    }
    return line;
}

void fillCustomer(PlainOrder& order, dom::object customer) {
    for (const auto [key, value] : customer) {
        if (key == "name") read(order.name, value);
        if (key != "address") continue;
        dom::element city;
        if (!value["city"].get(city)) read(order.city, city);
    }
}

PlainOrder order(dom::object object) {
    PlainOrder order;
    for (const auto [key, value] : object) {
        if (key == "number") {
            read(order.number, value);
        } else if (key == "state") {
            order.state = stateNumber(value.get_string());
        } else if (key == "customer") {
            fillCustomer(order, value.get_object());
        } else if (key == "tags") {
            dom::element first;
            if (!value.at(0).get(first)) read(order.firstTag, first);
        } else if (key == "lines") {
            const dom::array lines = value.get_array();
            order.lines.reserve(lines.size());
            for (const dom::object element : lines) order.lines.push_back(line(element));
        }
    }
    return order;
}

}  // namespace

std::vector<PlainOrder> decodeOrdersWithSimdjsonDOM(const std::string& document) {
    const dom::array list = parsed(document).get_array();
    std::vector<PlainOrder> orders;
    orders.reserve(list.size());
    for (const dom::object object : list) orders.push_back(order(object));
    return orders;
}

}  // namespace flarebox::benchmarks
