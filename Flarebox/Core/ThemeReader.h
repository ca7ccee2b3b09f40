#pragma once

#include <Flarebox/Core/Theme.h>
#include <UIKit/Backend/Pugixml/LayoutFileReader.h>

#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace flarebox {

/// Makes a theme of the entries of its file, and tells the log what is wrong with them.
class ThemeReader {
public:
    explicit ThemeReader(const std::filesystem::path& file);

    Ref<Theme> read(const LayoutElement& content);

private:
    void readEntry(const LayoutElement& entry);
    void checkRepetition(const LayoutElement& entry);
    void readColor(const LayoutElement& entry);
    void readRadius(const LayoutElement& entry);
    void readFont(const LayoutElement& entry);
    void readPicture(const LayoutElement& entry);
    void readText(const LayoutElement& entry);

    using Words = std::span<const std::string_view>;
    /// Tells of attributes other than these, and of content. The entry counts nevertheless.
    void checkAttributes(const LayoutElement& entry, Words known);
    /// The entry's name as a place in that list, told where it is none of it.
    template <class Kind>
    std::optional<Kind> kindOf(const LayoutElement& entry, Words names);
    /// Null, told, where the attribute is missing or empty.
    const std::string* required(const LayoutElement& entry, std::string_view attribute, std::string_view example);
    Ref<UIImage> pictureAt(const LayoutElement& entry, const std::string& name);
    void checkContrast();
    void warn(int line, const std::string& text) const;

    const std::filesystem::path file_;
    Ref<Theme> theme_ = make<Theme>();
    UIPalette palette_;
    /// The last line of each kind and name.
    std::map<std::pair<std::string, std::string>, int> entryLines_;
    /// Of each colour that the file gives; 0 for the others.
    std::array<int, UIPalette::shadeCount> colorLines_{};
};

}  // namespace flarebox
