#include <Benchmarks/Mapping/AssetGenerator.h>

#include <array>
#include <cstdint>
#include <random>
#include <string_view>

namespace flarebox::benchmarks {

namespace {

constexpr std::array<std::string_view, 24> words{"castle",  "dragon", "winter", "island",  "rocket", "summer",
                                                 "knight",  "pirate", "garden", "planet",  "forest", "racing",
                                                 "harbor",  "legend", "silver", "galaxy",  "temple", "voyage",
                                                 "crystal", "shadow", "meadow", "thunder", "canyon", "ember"};
// As they stand in the document: escapes and characters beyond ASCII.
constexpr std::array<std::string_view, 8> rareWords{
    "caf\xc3\xa9",  "\\\"new\\\"",      "na\xc3\xafve", "\\u00e9t\\u00e9", "\xe5\x86\xac\xe5\xad\xa3",
    "line\\nbreak", "\xf0\x9f\x8e\x81", "a\\/b"};

/// Writes the objects of a list, field by field.
class Composer {
public:
    std::string text = "[";

    void beginObject() {
        if (text.back() == '}') text += ',';
        text += '{';
    }
    void endObject() { text += '}'; }
    void key(std::string_view name) {
        if (text.back() != '{') text += ',';
        text.append("\"").append(name).append("\":");
    }
    void quoted(std::string_view content) { text.append("\"").append(content).append("\""); }

    /// Words up to about `length` characters, in a quarter of the cases with a rare one among them.
    void prose(std::size_t length) {
        std::string content;
        const bool isRare = below(4) == 0;
        while (content.size() + 7 < length || content.empty()) {
            if (!content.empty()) content += ' ';
            content += words[below(words.size())];
            if (isRare && content.size() > length / 2 && below(3) == 0)
                content.append(" ").append(rareWords[below(rareWords.size())]);
        }
        quoted(content);
    }
    void link(std::string_view extension) {
        std::string content = "https://cdn.example.com/content/";
        while (content.size() < 56) content += "0123456789abcdef"[below(16)];
        quoted(content.append(extension));
    }
    void uid() {
        std::string content;
        for (int i = 0; i < 24; ++i) content += "0123456789abcdef"[below(16)];
        quoted(content);
    }
    void number(std::uint64_t value) { text += std::to_string(value); }
    /// True in one of ten cases, for an optional field that the service leaves null.
    bool nulled() {
        if (below(10) != 0) return false;
        text += "null";
        return true;
    }
    std::uint64_t below(std::uint64_t bound) { return random_() % bound; }

private:
    std::mt19937_64 random_{20'240'601};
};

void asset(Composer& out, std::uint64_t id, Dates dates) {
    const auto date = [&](std::string_view key) {
        out.key(key);
        if (dates == Dates::AsSeconds)
            out.number(1'400'000'000 + out.below(300'000'000));
        else
            out.text += "null";
    };
    const auto optionalLink = [&](std::string_view key, std::string_view extension) {
        out.key(key);
        if (!out.nulled()) out.link(extension);
    };
    out.beginObject();
    out.key("title");
    out.prose(20);
    out.key("subtitle");
    if (!out.nulled()) out.prose(24);
    out.key("description");
    if (!out.nulled()) out.prose(120);
    out.key("is_active");
    out.number(out.below(2));
    out.key("is_generic");
    out.number(out.below(2));
    out.key("tags");
    out.prose(30);
    date("created");
    date("modified");
    out.key("id");
    out.number(id);
    out.key("uid");
    out.uid();
    out.key("campaign_id");
    if (!out.nulled()) out.number(out.below(100'000));
    out.key("campaign_uid");
    if (!out.nulled()) out.uid();
    out.key("advertiser_id");
    out.number(out.below(10'000));
    out.key("advertiser_uid");
    out.uid();
    optionalLink("file_zorb", ".zorb");
    optionalLink("file_standalone", ".zip");
    optionalLink("file_ios", ".ipa");
    optionalLink("file_android", ".apk");
    optionalLink("file_preview", ".png");
    optionalLink("file_icon", ".png");
    optionalLink("file_image", ".jpg");
    optionalLink("file_coupon", ".png");
    optionalLink("video_mobile", ".mp4");
    optionalLink("video_standalone", ".mp4");
    out.key("where_to_buy");
    out.link(".html");
    out.key("category");
    out.number(out.below(40));
    out.key("category_title");
    if (!out.nulled()) out.prose(14);
    out.key("sort_order");
    out.number(out.below(1000));
    out.key("locale");
    out.quoted("de_CH");
    out.key("placements");
    out.text += "[1,2]";
    out.endObject();
}

void order(Composer& out, std::uint64_t id) {
    constexpr std::array<std::string_view, 4> states{"open", "paid", "sent", "lost"};
    out.beginObject();
    out.key("number");
    out.number(id);
    out.key("state");
    out.quoted(states[out.below(states.size())]);
    out.key("customer");
    out.beginObject();
    out.key("name");
    out.prose(20);
    out.key("address");
    out.beginObject();
    out.key("street");
    out.prose(24);
    out.key("city");
    out.prose(14);
    out.endObject();
    out.endObject();
    out.key("tags");
    out.text += "[\"" + std::string(words[out.below(words.size())]) + "\",\"" +
                std::string(words[out.below(words.size())]) + "\"]";
    out.key("lines");
    out.text += '[';
    for (int i = 0; i < 5; ++i) {
        out.beginObject();
        out.key("sku");
        out.uid();
        out.key("title");
        out.prose(24);
        out.key("quantity");
        out.number(1 + out.below(9));
        out.key("cents");
        out.number(out.below(100'000));
        out.endObject();
    }
    out.text += ']';
    out.endObject();
}

}  // namespace

std::string assetsJSON(std::size_t count, Dates dates) {
    Composer out;
    for (std::size_t i = 0; i < count; ++i) asset(out, i + 1, dates);
    return std::move(out.text) + "]";
}

std::string ordersJSON(std::size_t count) {
    Composer out;
    for (std::size_t i = 0; i < count; ++i) order(out, i + 1);
    return std::move(out.text) + "]";
}

}  // namespace flarebox::benchmarks
