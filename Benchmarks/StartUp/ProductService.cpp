#include <Benchmarks/StartUp/ProductService.h>
#include <Benchmarks/Support/ThisProgram.h>
#include <Host/Headless/Backend/PNGFile.h>

#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <vector>

namespace flarebox::benchmarks {

namespace {

constexpr int iconSide = 512, pictureSide = 1024;
constexpr std::size_t modelLength = std::size_t{1} << 20;

std::string contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    require(file && !text.view().empty(), "a file of the benchmark cannot be read");
    return text.str();
}

/// A disc in soft colours on a clear ground, with the grain of a photograph.
std::string picture(int side, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<std::uint32_t> pixels;
    pixels.reserve(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    const auto tint = static_cast<std::uint32_t>(random());
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int dx = 2 * x - side, dy = 2 * y - side;
            const auto level = [&](std::uint32_t most) {
                return (most & 127) + static_cast<std::uint32_t>((x + y) * 120 / (2 * side)) + (random() & 7);
            };
            const std::uint32_t color = level(tint) << 16 | level(tint >> 8) << 8 | level(tint >> 16);
            pixels.push_back(dx * dx + dy * dy < side * side ? 0xFF000000 | color : 0);
        }
    }
    const std::string path = "/dev/shm/flarebox-picture-" + std::to_string(getpid()) + ".png";
    require(writePNG(path, pixels, side, side), "a picture cannot be written");
    const std::string bytes = contents(path);
    std::filesystem::remove(path);
    return bytes;
}

/// A model of the sample products, made 1 MB long by a chunk that readers pass over.
std::string paddedModel(const std::filesystem::path& path) {
    std::string bytes = contents(path);
    const std::uint32_t chunk[2] = {static_cast<std::uint32_t>(modelLength - bytes.size() - sizeof chunk), 0x20444150};
    bytes.append(reinterpret_cast<const char*>(chunk), sizeof chunk);
    bytes.resize(modelLength);
    const auto length = static_cast<std::uint32_t>(modelLength);
    std::memcpy(bytes.data() + 8, &length, sizeof length);
    return bytes;
}

std::vector<std::string> sampleModels() {
    std::vector<std::string> models;
    for (const auto& entry : std::filesystem::directory_iterator(SAMPLE_MODELS)) {
        if (entry.path().extension() == ".glb") models.push_back(paddedModel(entry.path()));
    }
    require(!models.empty(), "there are no sample models");
    return models;
}

std::string assetJSON(int number, const std::string& baseURL) {
    const std::string n = std::to_string(number),
                      uid = "5f0c1e7a-0000-4000-8000-0000000000" + std::to_string(10 + number);
    return R"({"id":)" + n + R"(,"uid":")" + uid + R"(","title":"Product number )" + n +
           R"(","subtitle":null,"description":"Made for long afternoons by people who like them: the )" + n +
           R"(th of its kind, and still the best of them all.","is_active":1,"is_generic":0,"tags":"sample",)" +
           R"("created":"2024-03-01T10:00:00Z","modified":"2024-03-02T10:00:00Z","campaign_id":7,"campaign_uid":null,)" +
           R"("advertiser_id":3,"advertiser_uid":"adv-3","file_zorb":null,"file_standalone":null,"file_ios":")" +
           baseURL + "/models/" + n + R"(","file_android":null,"file_preview":null,"file_icon":")" + baseURL +
           "/icons/" + n + R"(","file_image":")" + baseURL + "/picture" + R"(","file_coupon":null,"video_mobile":")" +
           baseURL + "/videos/" + n + R"(","video_standalone":null,"where_to_buy":"https://shop.example.com/)" + n +
           R"(","category":1,"category_title":"Sample"})";
}

}  // namespace

ProductService::ProductService()
    : service_([this](std::string_view, std::string_view target) { return answer(target); }) {
    const std::vector<std::string> models = sampleModels();
    answers_["/picture"] = httpAnswer("image/png", picture(pictureSide, products));
    std::string list;
    for (int number = 0; number < products; ++number) {
        const std::string n = std::to_string(number);
        const auto seed = static_cast<std::uint32_t>(number);
        answers_["/icons/" + n] = httpAnswer("image/png", picture(iconSide, seed));
        answers_["/models/" + n] =
            httpAnswer("model/gltf-binary", models[static_cast<std::size_t>(number) % models.size()]);
        list += (list.empty() ? "[" : ",") + assetJSON(number, baseURL());
    }
    answers_["/game/common-assets/"] = httpAnswer("application/json", list + "]");
    answers_["/sessions/"] =
        httpAnswer("application/json",
                   R"({"id":1,"uid":"b52f6a0c-6c59-4f5d-a1a5-7f0f3f1f9e10","created":"2024-03-01T10:00:00Z"})");
    answers_[""] = httpAnswer("application/json", R"({"status":"ok"})");
}

std::string_view ProductService::answer(std::string_view target) const {
    const auto found = answers_.find(target.substr(0, target.find('?')));
    return found == answers_.end() ? answers_.find("")->second : found->second;
}

}  // namespace flarebox::benchmarks
