#include <Benchmarks/Mapping/Peers.h>

#include <nlohmann/json.hpp>

namespace flarebox::benchmarks {

std::vector<PlainAsset> decodeWithNlohmann(const std::string& document) {
    const auto parsed = nlohmann::json::parse(document);
    std::vector<PlainAsset> assets;
    assets.reserve(parsed.size());
    for (const auto& object : parsed) {
        PlainAsset& asset = assets.emplace_back();
        for (const auto& [key, value] : object.items()) {
            const AssetField target = assetField(key);
            if (target.text && value.is_string())
                asset.*target.text = value.get_ref<const std::string&>();
            else if (target.number && value.is_number())
                asset.*target.number = value.get<double>();
        }
    }
    return assets;
}

}  // namespace flarebox::benchmarks
