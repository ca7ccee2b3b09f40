#include <Benchmarks/Mapping/Peers.h>

#include <boost/json.hpp>

namespace flarebox::benchmarks {

std::vector<PlainAsset> decodeWithBoost(const std::string& document) {
    boost::json::monotonic_resource memory;
    const boost::json::value parsed = boost::json::parse(document, &memory);
    const boost::json::array& list = parsed.as_array();
    std::vector<PlainAsset> assets;
    assets.reserve(list.size());
    for (const boost::json::value& element : list) {
        PlainAsset& asset = assets.emplace_back();
        for (const auto& [name, value] : element.as_object()) {
            const AssetField target = assetField({name.data(), name.size()});
            if (target.text && value.is_string())
                asset.*target.text = std::string(value.get_string().data(), value.get_string().size());
            else if (target.number && value.is_number())
                asset.*target.number = value.to_number<double>();
        }
    }
    return assets;
}

}  // namespace flarebox::benchmarks
