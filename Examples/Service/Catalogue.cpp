#include "Catalogue.h"

#include "Json.h"
#include "Media.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace flarebox::examples {
namespace {

constexpr Brand ovalune{11, "Ovalune"};
constexpr Brand kestrova{12, "Kestrova"};
constexpr Brand zingfall{13, "Zingfall"};
constexpr Brand merrowick{14, "Merrowick"};
constexpr Brand plankeroo{15, "Plankeroo"};
constexpr Brand thistlepeak{16, "Thistlepeak"};
constexpr Brand emberglaze{17, "Emberglaze"};
constexpr Brand lumiquill{18, "Lumiquill"};
constexpr Brand gripthorne{19, "Gripthorne"};
constexpr Brand sundrella{20, "Sundrella"};

constexpr Product products[] = {
    {"halo-one", "Ovalune Halo One", "Over-ear headphones",
     "Forty hours of quiet. Halo One listens to the room, takes the room away and leaves you alone with the mix.",
     &ovalune, "audio, headphones, wireless", 3, "Sound", "https://ovalune.example/halo-one"},
    {"volt-runner", "Kestrova Volt Runner", "Road running shoe",
     "A rocker sole that gives back what you put in, under a knit that weighs less than an egg. 214 grams in size 42.",
     &kestrova, "sport, running, shoes", 1, "Sport", "https://kestrova.example/volt-runner"},
    {"nightberry", "Zingfall Nightberry", "Sparkling energy, no sugar",
     "Blackcurrant, a little lime and natural caffeine. Cold from the fridge it tastes like the last level at 2 a.m.",
     &zingfall, "drink, energy", 4, "Food and drink", "https://zingfall.example/nightberry"},
    {"meridian-40", "Merrowick Meridian 40", "Automatic watch, 40 mm",
     "Sapphire glass, a sunray dial and a movement that you can hear when the house is asleep.", &merrowick,
     "watch, steel, classic", 5, "Style", "https://merrowick.example/meridian-40"},
    {"driftline", "Plankeroo Driftline 8.25", "Complete skateboard",
     "Seven plies of maple, soft wheels and a deck graphic printed under the lacquer, where no ledge can reach it.",
     &plankeroo, "sport, skate, street", 1, "Sport", "https://plankeroo.example/driftline"},
    {"apex-wheel", "Gripthorne Apex R1", "Direct-drive racing wheel",
     "Eight newton metres at your fingertips, paddles that click like a gearbox, and a rim wrapped by hand.",
     &gripthorne, "gaming, racing, wheel", 6, "Gaming", "https://gripthorne.example/apex-r1"},
    {"fieldpack", "Thistlepeak Fieldpack 22", "Day pack, 22 litres",
     "Waxed canvas, a roll top and a back panel that breathes. Made for the train to the trail and the trail itself.",
     &thistlepeak, "outdoor, bag", 2, "Outdoor", "https://thistlepeak.example/fieldpack-22"},
    {"slow-morning", "Emberglaze Slow Morning", "Stoneware mug, 320 ml",
     "Thrown, glazed and fired twice. Keeps its warmth for exactly one chapter.", &emberglaze, "home, ceramic, coffee",
     7, "Home", ""},
    {"arc-lamp", "Lumiquill Arc", "Desk lamp with warm dimming",
     "Touch the base and evening begins: from daylight to candle, without a flicker.", &lumiquill, "home, light", 7,
     "Home", "https://lumiquill.example/arc"},
    {"solstice", "Sundrella Solstice", "Polarised sunglasses",
     "Round lenses in a frame of recycled nets. Tested on snow, sand and one very long ferry.", &sundrella,
     "style, summer", 5, "Style", "https://sundrella.example/solstice"},
    {"pebble", "Ovalune Pebble", "Pocket speaker",
     "Twelve hours, three metres under water, one big voice for something that fits in a hand.", &ovalune,
     "audio, speaker, outdoor", 3, "Sound", "https://ovalune.example/pebble", true, false},
    {"matchday", "Kestrova Matchday", "Match ball, size 5",
     "Twelve bonded panels and a surface that keeps its line in the rain.", &kestrova, "sport, football", 1, "Sport",
     "https://kestrova.example/matchday"},
    {"grandstand", "Gripthorne Grandstand", "Wireless controller",
     "Sticks that never drift, four buttons on the back, and a battery for a whole season.", &gripthorne,
     "gaming, controller", 6, "Gaming", "https://gripthorne.example/grandstand"},
    {"coldbrook", "Thistlepeak Coldbrook", "Insulated bottle, 750 ml",
     "Cold for a day, hot for a night, and it does not mind being dropped.", &thistlepeak, "outdoor, bottle", 2,
     "Outdoor", "", true, false},
    {"gift-card", "Zingfall Gift Card", "A crate for a friend",
     "Announced for autumn: send a crate of your favourite taste.", &zingfall, "drink, gift", 4, "Food and drink",
     "https://zingfall.example/gift-card", false, true},
};

constexpr std::int64_t firstCreated = 1735725600;  // 2025-01-01 10:00 UTC
constexpr std::int64_t day = 86400;
constexpr int firstAssetId = 4101;

// FNV-1a, to make stable numbers from names.
std::uint64_t hashOf(std::string_view name, std::uint64_t seed) {
    std::uint64_t hash = 0xcbf29ce484222325 ^ seed;
    for (char character : name) hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3;
    return hash;
}

std::string fileURL(std::string_view baseURL, const std::string& path) {
    return path.empty() ? std::string() : std::string(baseURL) + path;
}

std::string pictureURL(std::string_view baseURL, const char* folder, const Product& product, bool present) {
    return present ? fileURL(baseURL, folder + std::string(product.name) + ".png") : std::string();
}

std::string assetJson(const Product& product, int index, std::string_view baseURL, const Media& media) {
    const Brand& brand = *product.brand;
    std::int64_t created = firstCreated + 9 * day * index;
    std::string campaign = std::string(brand.name) + " in play";
    return JsonObject()
        .add("title", product.title)
        .add("subtitle", product.subtitle)
        .add("description", product.description)
        .add("is_active", true)
        .add("is_generic", false)
        .add("tags", product.tags)
        .add("created", created)
        .add("modified", created + 3 * day)
        .add("id", firstAssetId + index)
        .add("uid", uidOf(product.name))
        .add("campaign_id", 300 + brand.id)
        .add("campaign_uid", uidOf(campaign))
        .add("advertiser_id", brand.id)
        .add("advertiser_uid", uidOf(brand.name))
        .addNull("file_zorb")
        .addNull("file_standalone")
        .addOrNull("file_ios", fileURL(baseURL, media.modelOf(product.name)))
        .addNull("file_android")
        .addOrNull("file_preview", pictureURL(baseURL, "/media/icons/", product, product.hasIcon))
        .addOrNull("file_icon", pictureURL(baseURL, "/media/icons/", product, product.hasIcon))
        .addOrNull("file_image", pictureURL(baseURL, "/media/images/", product, product.hasImage))
        .addNull("file_coupon")
        .addOrNull("video_mobile", fileURL(baseURL, media.videoOf(product.name)))
        .addNull("video_standalone")
        .addOrNull("where_to_buy", product.whereToBuy)
        .add("category", product.category)
        .add("category_title", product.categoryTitle)
        .text();
}

}  // namespace

std::span<const Product> catalogue() {
    return products;
}

std::string assetsJson(int limit, std::string_view baseURL, const Media& media) {
    int count = std::min(limit, static_cast<int>(std::size(products)));
    std::string json = "[";
    for (int index = 0; index < count; ++index) {
        if (index > 0) json += ',';
        json += assetJson(products[index], index, baseURL, media);
    }
    return json + "]";
}

std::string uidOf(std::string_view name) {
    std::uint64_t high = hashOf(name, 1);
    std::uint64_t low = hashOf(name, 2);
    char text[40];
    std::snprintf(text, sizeof text, "%08x-%04x-4%03x-a%03x-%012llx", static_cast<unsigned>(high >> 32),
                  static_cast<unsigned>(high >> 16 & 0xffff), static_cast<unsigned>(high & 0xfff),
                  static_cast<unsigned>(low >> 48 & 0xfff), static_cast<unsigned long long>(low & 0xffffffffffff));
    return text;
}

int numberOf(std::string_view name) {
    return static_cast<int>(hashOf(name, 3) % 9999) + 1;
}

}  // namespace flarebox::examples
