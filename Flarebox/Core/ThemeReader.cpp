#include <Flarebox/Core/ThemeContrast.h>
#include <Flarebox/Core/ThemeReader.h>
#include <Foundation/LogSink.h>
#include <Foundation/NSFileManager.h>
#include <UIKit/FontOpening.h>
#include <UIKit/LayoutFiles/LayoutValues.h>
#include <UIKit/LayoutFiles/Suggestion.h>
#include <UIKit/VectorIcon.h>

#include <algorithm>
#include <vector>

namespace flarebox {
namespace {

constexpr std::size_t longestText = 64;

enum class MarkPlace { OpenButton, Logo };
constexpr std::string_view pictureNames[] = {"openButton", "logo"};
enum class TextPlace { OpenButton, Title };
constexpr std::string_view textNames[] = {"openButton", "title"};
constexpr std::string_view entryNames[] = {"color", "radius", "font", "picture", "text"};

constexpr std::string_view valueAttributes[] = {"name", "value"}, fontAttributes[] = {"name", "family", "file"},
                           pictureAttributes[] = {"name", "file", "icon"};

std::vector<std::string_view> iconNames() {
    std::vector<std::string_view> names;
    for (const VectorIcon& icon : VectorIcon::all()) names.push_back(icon.name());
    return names;
}

}  // namespace

ThemeReader::ThemeReader(const std::filesystem::path& file) : file_(file) {}

Ref<Theme> ThemeReader::read(const LayoutElement& content) {
    for (const auto& attribute : content.attributes)
        warn(content.line, "<theme> has no attribute " + layout::inQuotes(attribute.name) + "; leave it out");
    for (const LayoutElement& entry : content.children) readEntry(entry);
    checkContrast();
    theme_->setPalette(palette_);
    return theme_;
}

void ThemeReader::checkRepetition(const LayoutElement& entry) {
    const std::string* name = entry.attribute("name");
    if (!name) return;
    const auto [earlier, isNew] = entryLines_.try_emplace({entry.name, *name}, entry.line);
    if (!isNew)
        warn(entry.line, "the " + entry.name + " " + layout::inQuotes(*name) + " is in line " +
                             std::to_string(earlier->second) + " already; leave one out, for the last one counts");
    earlier->second = entry.line;
}

void ThemeReader::readEntry(const LayoutElement& entry) {
    checkRepetition(entry);
    if (entry.name == "color") return readColor(entry);
    if (entry.name == "radius") return readRadius(entry);
    if (entry.name == "font") return readFont(entry);
    if (entry.name == "picture") return readPicture(entry);
    if (entry.name == "text") return readText(entry);
    warn(entry.line, "there is no <" + entry.name + "> in a theme" + layout::suggestionFor(entry.name, entryNames));
}

void ThemeReader::readColor(const LayoutElement& entry) {
    checkAttributes(entry, valueAttributes);
    const auto shade = kindOf<UIPalette::Shade>(entry, UIPalette::shadeNames());
    const std::string* value = required(entry, "value", "#13151A");
    if (!shade || !value) return;
    const auto color = layout::color(*value);
    if (!color)
        return warn(entry.line, layout::inQuotes(*value) +
                                    " is no colour; write \"#RRGGBB\", \"#RRGGBBAA\", \"white\", \"black\", "
                                    "\"lightGray\" or \"clear\"; an opacity may follow: \"white 80%\"");
    palette_.setColor(*shade, *color);
    colorLines_[static_cast<std::size_t>(*shade)] = entry.line;
}

void ThemeReader::readRadius(const LayoutElement& entry) {
    checkAttributes(entry, valueAttributes);
    const auto corner = kindOf<UIPalette::Corner>(entry, UIPalette::cornerNames());
    const std::string* value = required(entry, "value", "14");
    if (!corner || !value) return;
    const auto radius = layout::length(*value);
    if (!radius || *radius > UIPalette::largestRadius)
        return warn(entry.line, layout::inQuotes(*value) + " is no radius; write points from 0 to 1000");
    palette_.setRadius(*corner, *radius);
}

void ThemeReader::readFont(const LayoutElement& entry) {
    checkAttributes(entry, fontAttributes);
    const std::string* file = entry.attribute("file");
    std::string family = entry.attribute("family") ? *entry.attribute("family") : "";
    if (file) {
        const std::string inFile = addFontFile((file_.parent_path() / *file).string());
        if (inFile.empty())
            return warn(entry.line, layout::inQuotes(*file) +
                                        " is no font file; put a TrueType or OpenType file there, beside the theme");
        if (family.empty()) family = inFile;
    }
    // A further weight of a family that another entry names.
    if (file && !entry.attribute("name")) return;
    const auto typeface = kindOf<UIPalette::Typeface>(entry, UIPalette::typefaceNames());
    if (!typeface) return;
    if (family.empty())
        return warn(entry.line, "the font is missing; give file=\"fonts/Brand.ttf\" or family=\"Noto Sans\"");
    if (!isFontFamilyKnown(family))
        return warn(entry.line, "the font " + layout::inQuotes(family) +
                                    " is not installed; give its file as well: file=\"fonts/Brand.ttf\"");
    palette_.setFamily(*typeface, family);
}

void ThemeReader::readPicture(const LayoutElement& entry) {
    checkAttributes(entry, pictureAttributes);
    const auto place = kindOf<MarkPlace>(entry, pictureNames);
    if (!place) return;
    const bool isLogo = *place == MarkPlace::Logo;
    Theme::Mark mark = isLogo ? theme_->logo() : theme_->openButtonMark();
    if (const std::string* icon = entry.attribute("icon")) {
        const VectorIcon* found = VectorIcon::named(*icon);
        if (!found)
            return warn(entry.line,
                        "there is no sign " + layout::inQuotes(*icon) + layout::suggestionFor(*icon, iconNames()));
        mark = {found, nullptr};
    } else {
        const std::string* file = required(entry, "file", "mark.png");
        mark.picture = file ? pictureAt(entry, *file) : nullptr;
        if (!mark.picture) return;
    }
    isLogo ? theme_->setLogo(mark) : theme_->setOpenButtonMark(mark);
}

Ref<UIImage> ThemeReader::pictureAt(const LayoutElement& entry, const std::string& name) {
    Ref<NSError> error;
    const std::string path = (file_.parent_path() / name).string();
    const NSData data = NSFileManager::defaultManager().contentsAtPath(path, UIImage::maximumDataLength, &error);
    const Ref<UIImage> picture = data ? UIImage::imageWithData(data, &error) : nullptr;
    if (!picture)
        warn(entry.line, layout::inQuotes(name) +
                             " is no picture; put a PNG, JPEG or WebP file there, beside the theme (" +
                             error->localizedDescription() + ")");
    return picture;
}

void ThemeReader::readText(const LayoutElement& entry) {
    checkAttributes(entry, valueAttributes);
    const auto place = kindOf<TextPlace>(entry, textNames);
    const std::string* value = required(entry, "value", "Rewards");
    if (!place || !value) return;
    if (value->size() > longestText)
        return warn(entry.line, "the text is too long; " + std::to_string(longestText) + " bytes are the most");
    *place == TextPlace::Title ? theme_->setTitleText(*value) : theme_->setOpenButtonText(*value);
}

void ThemeReader::checkAttributes(const LayoutElement& entry, Words known) {
    for (const auto& attribute : entry.attributes) {
        if (std::ranges::find(known, attribute.name) != known.end()) continue;
        warn(entry.line, "<" + entry.name + "> has no attribute " + layout::inQuotes(attribute.name) +
                             layout::suggestionFor(attribute.name, known));
    }
    if (!entry.text.empty() || !entry.children.empty())
        warn(entry.line, "<" + entry.name + "> holds nothing; write its value as an attribute");
}

template <class Kind>
std::optional<Kind> ThemeReader::kindOf(const LayoutElement& entry, Words names) {
    const std::string* name = required(entry, "name", names.front());
    if (!name) return std::nullopt;
    const auto found = std::ranges::find(names, *name);
    if (found != names.end()) return static_cast<Kind>(found - names.begin());
    warn(entry.line, "there is no " + entry.name + " " + layout::inQuotes(*name) + layout::suggestionFor(*name, names));
    return std::nullopt;
}

const std::string* ThemeReader::required(const LayoutElement& entry, std::string_view attribute,
                                         std::string_view example) {
    const std::string* value = entry.attribute(attribute);
    if (value && !value->empty()) return value;
    warn(entry.line,
         "<" + entry.name + "> needs " + std::string(attribute) + "=" + layout::inQuotes(example) + " or the like");
    return nullptr;
}

void ThemeReader::checkContrast() {
    const auto lineOf = [this](UIPalette::Shade shade) { return colorLines_[static_cast<std::size_t>(shade)]; };
    for (const auto& [front, background, text] : poorContrasts(palette_)) {
        // What the file leaves as the kit has it is none of its faults.
        if (const int line = lineOf(front) ? lineOf(front) : lineOf(background)) warn(line, text);
    }
}

void ThemeReader::warn(int line, const std::string& text) const {
    LogSink::write(LogLevelWarning,
                   "Flarebox: " + file_.filename().string() + ":" + std::to_string(line) + ": " + text);
}

}  // namespace flarebox
