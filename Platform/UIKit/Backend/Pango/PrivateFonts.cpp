#include <Foundation/Immortal.h>
#include <Foundation/LogSink.h>
#include <UIKit/Backend/Pango/PrivateFonts.h>
#include <UIKit/FontOpening.h>

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace flarebox::text {
namespace {

struct ConfigRelease {
    void operator()(FcConfig* config) const { FcConfigDestroy(config); }
};
using ConfigReference = std::unique_ptr<FcConfig, ConfigRelease>;

// Fonts that users install for themselves are left out: they would make the same text look different. Emoji come as
// pictures of one size, which the last rule scales to the text's.
constexpr const char* rules = R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts</dir>
  <dir>/usr/local/share/fonts</dir>
  <cachedir>/var/cache/fontconfig</cachedir>
  <match target="pattern">
    <test name="family"><string>emoji</string></test>
    <edit name="family" mode="prepend" binding="strong"><string>Noto Color Emoji</string></edit>
  </match>
  <match target="pattern">
    <edit name="antialias" mode="assign"><bool>true</bool></edit>
    <edit name="hinting" mode="assign"><bool>false</bool></edit>
    <edit name="autohint" mode="assign"><bool>false</bool></edit>
    <edit name="hintstyle" mode="assign"><const>hintnone</const></edit>
    <edit name="rgba" mode="assign"><const>none</const></edit>
  </match>
  <match target="font">
    <test name="outline"><bool>false</bool></test>
    <edit name="pixelsizefixupfactor" mode="assign">
      <divide><name target="pattern">pixelsize</name><name target="font">pixelsize</name></divide>
    </edit>
    <edit name="matrix" mode="assign">
      <times>
        <name>matrix</name>
        <matrix><name>pixelsizefixupfactor</name><double>0</double><double>0</double><name>pixelsizefixupfactor</name></matrix>
      </times>
    </edit>
    <edit name="size" mode="assign"><divide><name>size</name><name>pixelsizefixupfactor</name></divide></edit>
  </match>
</fontconfig>
)";

constexpr const char* systemFamily = "Inter";
// In this order, so that the choice among several installed fonts that know a character is always the same.
constexpr const char* families =
    "Inter,Noto Sans,DejaVu Sans,Noto Sans CJK JP,Noto Sans CJK SC,Noto Sans Arabic,Noto Sans Hebrew,"
    "Noto Sans Devanagari,Noto Sans Thai,Noto Color Emoji";

int countFonts(FcConfig& config) {
    const FcFontSet* fonts = FcConfigGetFonts(&config, FcSetSystem);
    return fonts ? fonts->nfont : 0;
}

bool hasFamily(FcConfig& config, const char* family) {
    const FcFontSet* fonts = FcConfigGetFonts(&config, FcSetSystem);
    for (int i = 0; fonts && i < fonts->nfont; ++i) {
        FcChar8* name = nullptr;
        if (FcPatternGetString(fonts->fonts[i], FC_FAMILY, 0, &name) != FcResultMatch) continue;
        if (reinterpret_cast<const char*>(name) == std::string_view(family)) return true;
    }
    return false;
}

/// Font files of the host's own, and their families.
struct AddedFonts {
    struct File {
        std::string path, family;
    };
    std::mutex mutex;
    std::vector<File> files;
};
AddedFonts& addedFonts() {
    static detail::Immortal<AddedFonts> fonts;
    return *fonts;
}

/// Empty when the file holds no font.
std::string familyInFile(const std::string& path) {
    int count = 0;
    FcPattern* pattern = FcFreeTypeQuery(reinterpret_cast<const FcChar8*>(path.c_str()), 0, nullptr, &count);
    if (!pattern) return {};
    FcChar8* name = nullptr;
    std::string family;
    if (FcPatternGetString(pattern, FC_FAMILY, 0, &name) == FcResultMatch) family = reinterpret_cast<const char*>(name);
    FcPatternDestroy(pattern);
    return family;
}

/// Null when no font is installed where fonts usually are.
ConfigReference loadConfig() {
    ConfigReference config(FcConfigCreate());
    if (!config) return nullptr;
    FcConfigParseAndLoadFromMemory(config.get(), reinterpret_cast<const FcChar8*>(rules), FcFalse);
    FcConfigBuildFonts(config.get());
    if (countFonts(*config) == 0) return nullptr;
    if (!hasFamily(*config, systemFamily))
        LogSink::write(LogLevelWarning, std::string("Flarebox: the font ") + systemFamily +
                                            " is not installed; texts are shown in another one");
    return config;
}

}  // namespace

PrivateFonts::PrivateFonts() {
    const ConfigReference config = loadConfig();
    if (!config) {
        LogSink::write(LogLevelError, "Flarebox: no fonts are installed; no text can be shown");
        return;
    }
    map_.reset(pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT));
    pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(map_.get()), config.get());
    context_.reset(pango_font_map_create_context(map_.get()));

    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    pango_cairo_context_set_font_options(context_.get(), options);
    cairo_font_options_destroy(options);

    pango_context_set_round_glyph_positions(context_.get(), FALSE);
    // The language picks among fonts for the same character; that of the process would differ from machine to machine.
    pango_context_set_language(context_.get(), pango_language_from_string("en"));
    pango_context_set_base_dir(context_.get(), PANGO_DIRECTION_LTR);
    addNewFiles();
}

void PrivateFonts::addNewFiles() {
    if (!map_) return;
    AddedFonts& fonts = addedFonts();
    const std::lock_guard lock(fonts.mutex);
    FcConfig* config = pango_fc_font_map_get_config(PANGO_FC_FONT_MAP(map_.get()));
    for (; added_ < fonts.files.size(); ++added_)
        FcConfigAppFontAddFile(config, reinterpret_cast<const FcChar8*>(fonts.files[added_].path.c_str()));
    pango_fc_font_map_config_changed(PANGO_FC_FONT_MAP(map_.get()));
}

PangoFontDescription* PrivateFonts::newDescription(const UIFont& font) {
    PangoFontDescription* description = pango_font_description_new();
    const std::string list = font.family().empty() ? families : font.family() + "," + families;
    pango_font_description_set_family(description, list.c_str());
    pango_font_description_set_weight(description, static_cast<PangoWeight>(font.weight()));
    pango_font_description_set_absolute_size(description, font.pointSize() * PANGO_SCALE);
    return description;
}

LineMetrics PrivateFonts::lineMetrics(const UIFont& font) const {
    const LineMetrics usual = {font.pointSize() * 0.97, font.pointSize() * 1.21};
    if (!context_) return usual;
    PangoFontDescription* description = newDescription(font);
    const GReference<PangoFont> loaded(pango_context_load_font(context_.get(), description));
    pango_font_description_free(description);
    if (!loaded) return usual;
    PangoFontMetrics* metrics = pango_font_get_metrics(loaded.get(), pango_context_get_language(context_.get()));
    const CGFloat ascent = pango_units_to_double(pango_font_metrics_get_ascent(metrics));
    const CGFloat descent = pango_units_to_double(pango_font_metrics_get_descent(metrics));
    pango_font_metrics_unref(metrics);
    return ascent + descent > 0 ? LineMetrics{ascent, ascent + descent} : usual;
}

void PrivateFonts::closeUnused() {
    if (map_) pango_fc_font_map_cache_clear(PANGO_FC_FONT_MAP(map_.get()));
}

std::string addFontFile(const std::string& path) {
    AddedFonts& fonts = addedFonts();
    const std::lock_guard lock(fonts.mutex);
    const auto known = std::ranges::find(fonts.files, path, &AddedFonts::File::path);
    if (known != fonts.files.end()) return known->family;
    const std::string family = familyInFile(path);
    if (!family.empty()) fonts.files.push_back({path, family});
    return family;
}

}  // namespace flarebox::text

namespace flarebox {

bool isFontFamilyKnown(const std::string& family) {
    {
        text::AddedFonts& fonts = text::addedFonts();
        const std::lock_guard lock(fonts.mutex);
        if (std::ranges::find(fonts.files, family, &text::AddedFonts::File::family) != fonts.files.end()) return true;
    }
    const text::ConfigReference config = text::loadConfig();
    return config && text::hasFamily(*config, family.c_str());
}

}  // namespace flarebox
