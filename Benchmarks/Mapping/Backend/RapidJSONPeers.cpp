#include <Benchmarks/Mapping/Peers.h>

#include <cstdlib>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#pragma GCC diagnostic pop

namespace flarebox::benchmarks {

namespace {

std::vector<PlainAsset> assetsOf(const rapidjson::Document& document) {
    if (document.HasParseError() || !document.IsArray()) std::abort();
    std::vector<PlainAsset> assets;
    assets.reserve(document.Size());
    for (const auto& object : document.GetArray()) {
        PlainAsset& asset = assets.emplace_back();
        for (const auto& member : object.GetObject()) {
            const AssetField target = assetField({member.name.GetString(), member.name.GetStringLength()});
            if (target.text && member.value.IsString())
                (asset.*target.text).emplace(member.value.GetString(), member.value.GetStringLength());
            else if (target.number && member.value.IsNumber())
                asset.*target.number = member.value.GetDouble();
        }
    }
    return assets;
}

}  // namespace

std::vector<PlainAsset> decodeWithRapidJSONDOM(const std::string& document) {
    rapidjson::Document parsed;
    parsed.Parse(document.data(), document.size());
    return assetsOf(parsed);
}

std::vector<PlainAsset> decodeWithRapidJSONInSitu(const std::string& document) {
    std::string copy = document;
    rapidjson::Document parsed;
    parsed.ParseInsitu(copy.data());
    return assetsOf(parsed);
}

std::string_view writeWithRapidJSON(const PlainAsset& asset) {
    static rapidjson::StringBuffer buffer;
    buffer.Clear();
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    const auto write = [&]<class Field>(std::string_view key, const Field& field) {
        writer.Key(key.data(), static_cast<rapidjson::SizeType>(key.size()));
        if (!field)
            writer.Null();
        else if constexpr (std::is_same_v<Field, std::optional<double>>)
            writer.Int64(static_cast<std::int64_t>(*field));
        else
            writer.String(field->data(), static_cast<rapidjson::SizeType>(field->size()));
    };
    writer.StartObject();
    forEachAssetField(asset, write);
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace flarebox::benchmarks
