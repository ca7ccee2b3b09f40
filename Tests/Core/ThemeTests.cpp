// A theme file, its mistakes, and the pages and examples that show one.

#include <Flarebox/Core/FlareboxConfig.h>
#include <Foundation/LogSink.h>
#include <Tests/Support/TemporaryDirectory.h>
#include <UIKit/UIImage.h>
#include <UIKit/VectorIcon.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>

namespace flarebox::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Shade = UIPalette::Shade;
using Corner = UIPalette::Corner;

/// One red pixel.
constexpr unsigned char redPNG[] = {0x89, 'P',  'N',  'G',  13,   10,  26,  10,  0,   0,    0,    13,   'I',  'H',
                                    'D',  'R',  0,    0,    0,    1,   0,   0,   0,   1,    8,    2,    0,    0,
                                    0,    0x90, 0x77, 0x53, 0xDE, 0,   0,   0,   12,  'I',  'D',  'A',  'T',  8,
                                    0xD7, 0x63, 0xF8, 0xCF, 0xC0, 0,   0,   3,   1,   1,    0,    0x18, 0xDD, 0x8D,
                                    0xB0, 0,    0,    0,    0,    'I', 'E', 'N', 'D', 0xAE, 0x42, 0x60, 0x82};

std::string contentsOf(const std::string& path) {
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

class ThemeTest : public ::testing::Test {
protected:
    ThemeTest() {
        LogSink::set([this](LogLevel, std::string_view message) { log_.emplace_back(message); });
        folder_.write("mark.png", std::string_view(reinterpret_cast<const char*>(redPNG), sizeof redPNG));
    }
    ~ThemeTest() override { LogSink::set(nullptr); }

    Ref<Theme> read(const std::string& text, Ref<NSError>* error = nullptr) {
        return Theme::themeWithFile(folder_.write("theme.xml", text), error);
    }
    Ref<Theme> readEntries(const std::string& entries) { return read("<theme>\n" + entries + "\n</theme>"); }

    TemporaryDirectory folder_;
    std::vector<std::string> log_;
};

TEST_F(ThemeTest, EveryEntryCounts) {
    const Ref<Theme> theme = readEntries(R"(
        <color name="panel" value="#102030"/>
        <color name="ring" value="#FFEEDDCC"/>
        <radius name="picture" value="0"/>
        <picture name="logo" file="mark.png"/>
        <picture name="openButton" icon="cart"/>
        <text name="title" value="Loot"/>
        <text name="openButton" value="Rewards"/>)");
    ASSERT_TRUE(theme);
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_EQ(theme->palette().color(Shade::Panel), UIColor::rgb(0x102030));
    EXPECT_EQ(theme->palette().color(Shade::Ring), UIColor::rgb(0xFFEEDD, 0xCC / 255.0F));
    EXPECT_EQ(theme->palette().color(Shade::Text), UIPalette().color(Shade::Text)) << "the rest is the kit's";
    EXPECT_EQ(theme->palette().radius(Corner::Picture), 0);
    EXPECT_EQ(theme->palette().radius(Corner::Panel), UIPalette().radius(Corner::Panel));
    ASSERT_TRUE(theme->logo().picture);
    EXPECT_EQ(theme->logo().picture->pixels()[0], 0xFFFF0000);
    EXPECT_EQ(theme->openButtonMark().icon->name(), "cart");
    EXPECT_EQ(theme->titleText(), NSString("Loot"));
    EXPECT_EQ(theme->openButtonText(), NSString("Rewards"));
    EXPECT_NE(theme->palette(), UIPalette());
    EXPECT_EQ(Theme().palette(), UIPalette());
}

TEST_F(ThemeTest, TakesWhatAGameFillsInWithoutAFault) {
    UIPalette palette;
    const std::pair<CGFloat, CGFloat> radii[] = {{-1, 0}, {7, 7}, {1e9, 1000}, {NAN, 0}};
    for (const auto& [given, taken] : radii) {
        palette.setRadius(Corner::Panel, given);
        EXPECT_EQ(palette.radius(Corner::Panel), taken);
    }
    Theme theme;
    const Theme::Mark own = theme.logo(), picture{nullptr, UIImage::imageWithPixels(1, 1, {1})};
    theme.setLogo(picture);
    theme.setOpenButtonMark(picture);
    EXPECT_EQ(theme.logo().icon, own.icon);
    EXPECT_EQ(theme.openButtonMark().icon, own.icon);
    EXPECT_EQ(theme.openButtonMark().picture, picture.picture);
    EXPECT_EQ(Theme::addFontFile(folder_.path("mark.png")), "");
}

TEST_F(ThemeTest, WhatIsWrongIsToldWithTheFixAndTheRestApplies) {
    const std::pair<const char*, const char*> cases[] = {
        {R"(<colour name="panel" value="white"/>)", R"(there is no <colour> in a theme; did you mean "color"?)"},
        {R"(<shadow/>)", R"(no <shadow> in a theme; known are "color", "radius", "font", "picture", "text")"},
        {R"(<color name="acent" value="white"/>)", R"(there is no color "acent"; did you mean "accent"?)"},
        {R"(<color name="panel" value="#12345"/>)", R"("#12345" is no colour; write "#RRGGBB")"},
        {R"(<color name="ring" value="white"/><color name="ring" value="#FFFF00"/>)",
         R"(the color "ring" is in line 2 already; leave one out, for the last one counts)"},
        {R"(<color name="panel" value="panel"/>)", R"("panel" is no colour)"},
        {R"(<color name="panel"/>)", R"(<color> needs value="#13151A" or the like)"},
        {R"(<color value="white"/>)", R"(<color> needs name="panel" or the like)"},
        {R"(<color name="ring" value="white" alpha="1"/>)", R"(<color> has no attribute "alpha"; known are)"},
        {R"(<color name="ring" value="white">red</color>)", R"(<color> holds nothing)"},
        {R"(<radius name="panel" value="-1"/>)", R"("-1" is no radius; write points from 0 to 1000)"},
        {R"(<radius name="panel" value="nan"/>)", R"("nan" is no radius)"},
        {R"(<radius name="corner" value="1"/>)", R"(there is no radius "corner"; known are "panel", "button",)"},
        {R"(<font name="title" family="No Such Family"/>)", R"("No Such Family" is not installed; give its file)"},
        {R"(<font name="title" file="mark.png"/>)", R"("mark.png" is no font file; put a TrueType or OpenType)"},
        {R"(<font name="title"/>)", R"(the font is missing; give file=)"},
        {R"(<picture name="logo" file="nothing.png"/>)", R"("nothing.png" is no picture; put a PNG,)"},
        {R"(<picture name="logo" file="theme.xml"/>)", R"("theme.xml" is no picture)"},
        {R"(<picture name="logo" icon="cupon"/>)", R"(there is no sign "cupon"; did you mean "coupon"?)"},
        {R"(<picture name="logo"/>)", R"(<picture> needs file="mark.png" or the like)"},
        {R"(<text name="openbutton" value="x"/>)", R"(there is no text "openbutton"; did you mean "openButton"?)"},
        {R"(<text name="title" value="0123456789012345678901234567890123456789012345678901234567890123456789"/>)",
         R"(the text is too long; 64 bytes are the most)"},
    };
    for (const auto& [entry, problem] : cases) {
        SCOPED_TRACE(entry);
        log_.clear();
        const Ref<Theme> theme = readEntries(entry + std::string("\n<radius name=\"message\" value=\"3\"/>"));
        EXPECT_THAT(log_, ElementsAre(HasSubstr(problem)));
        for (const std::string& line : log_) EXPECT_TRUE(line.starts_with("Flarebox: theme.xml:2: ")) << line;
        ASSERT_TRUE(theme);
        EXPECT_EQ(theme->palette().radius(Corner::Message), 3);
        EXPECT_EQ(theme->palette().color(Shade::Panel), UIPalette().color(Shade::Panel));
    }
}

TEST_F(ThemeTest, WhatIsNoThemeChangesNothing) {
    const std::pair<std::string, const char*> cases[] = {
        {"", "theme.xml:1: "},
        {"<theme>\n<color\n</theme>", "theme.xml:"},
        {"<theme>\n<color/>", "theme.xml:"},
        {"\n<layout/>", "theme.xml:2: the outermost element is <layout>; it has to be <theme>"},
        {"<theme>" + std::string(70'000, ' ') + "</theme>", ""},
    };
    for (const auto& [text, problem] : cases) {
        Ref<NSError> error;
        EXPECT_FALSE(read(text, &error));
        ASSERT_TRUE(error);
        EXPECT_THAT(error->localizedDescription(), HasSubstr(problem));
    }
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_FALSE(Theme::themeWithFile(folder_.path("missing.xml")));
    EXPECT_THAT(log_, ElementsAre(HasSubstr("missing.xml")));
}

TEST_F(ThemeTest, WhatCannotBeSeenWellIsToldOf) {
    const std::pair<UIColor, double> onWhite[] = {
        {UIColor::blackColor(), 21}, {UIColor::rgb(0x767676), 4.54}, {UIColor::whiteColor(), 1}};
    for (const auto& [color, contrast] : onWhite) {
        EXPECT_NEAR(contrastRatio(color, UIColor::whiteColor()), contrast, 0.01);
        EXPECT_NEAR(contrastRatio(UIColor::whiteColor(), color), contrast, 0.01);
    }
    EXPECT_NEAR(contrastRatio(UIColor::whiteColor(), UIColor::whiteColor().withAlpha(0.5F)),
                contrastRatio(UIColor::whiteColor(), UIColor::rgb(0x808080)), 0.05);

    readEntries(R"(<color name="actionText" value="#767676"/>
        <color name="action" value="white"/>)");
    EXPECT_THAT(log_, IsEmpty());
    readEntries(R"(<color name="action" value="#FFD0D0"/>)");
    EXPECT_THAT(log_,
                ElementsAre("Flarebox: theme.xml:2: \"actionText\" on \"action\" has a contrast of 1.4 to 1, less "
                            "than 4.5; move the two further apart"));
    log_.clear();
    const Ref<Theme> light = readEntries(R"(<color name="panel" value="white"/>)");
    EXPECT_THAT(log_, Contains(HasSubstr(R"("ring" on "panel" has a contrast of 1.0 to 1, less than 3.0)")));
    EXPECT_THAT(log_, Contains(HasSubstr(R"("success" on "panel")")));
    EXPECT_EQ(light->contrastProblems().size(), log_.size());
    EXPECT_THAT(Theme().contrastProblems(), IsEmpty());
}

TEST_F(ThemeTest, BringsItsOwnFonts) {
    const std::string file = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
    std::error_code missing;
    if (!std::filesystem::exists(file, missing)) GTEST_SKIP() << "that font is not installed";
    folder_.write("fonts/Brand.ttf", contentsOf(file));
    const UIFont inFile = readEntries(R"(<font name="title" file="fonts/Brand.ttf"/>)")
                              ->palette()
                              .font(UIPalette::Typeface::Title, 20, UIFontWeight::Bold);
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_EQ(inFile, UIFont::fontWithFamily("DejaVu Sans", 20, UIFontWeight::Bold));
    const auto widthIn = [](const UIFont& font) { return measureText("Rewards", {.font = font}, 1000).width; };
    EXPECT_NE(widthIn(inFile), widthIn(UIFont::systemFontOfSize(20, UIFontWeight::Bold)));
    EXPECT_TRUE(readEntries(R"(<font name="text" family="DejaVu Sans"/> <font file="fonts/Brand.ttf"/>)"));
    EXPECT_THAT(log_, IsEmpty());
}

/// The blocks of code in that language of a page.
std::vector<std::string> codeIn(const std::string& page, const std::string& language) {
    std::vector<std::string> blocks;
    const std::string opening = "```" + language + "\n";
    for (auto at = page.find(opening); at != page.npos; at = page.find(opening, at + 1)) {
        const auto from = at + opening.size();
        blocks.push_back(page.substr(from, page.find("```", from) - from));
    }
    return blocks;
}

TEST_F(ThemeTest, ThePageAndTheExamplesAreThemesWithoutAFault) {
    const std::string page = contentsOf(REPOSITORY "/Docs/theming.md");
    const auto examples = codeIn(page, "xml");
    ASSERT_FALSE(examples.empty());
    for (const std::string& example : examples) EXPECT_TRUE(read(example));
    for (const char* name : {"daylight.xml", "arcade.xml"}) {
        const Ref<Theme> theme = Theme::themeWithFile(std::string(REPOSITORY "/Examples/Themes/") + name);
        ASSERT_TRUE(theme) << name;
        EXPECT_NE(theme->palette(), UIPalette()) << name;
        EXPECT_THAT(theme->contrastProblems(), IsEmpty()) << name;
        EXPECT_THAT(page, HasSubstr(name));
    }
    std::erase_if(log_, [](const std::string& line) { return line.find("is not installed") != line.npos; });
    EXPECT_THAT(log_, IsEmpty());
    for (const auto names : {UIPalette::shadeNames(), UIPalette::cornerNames(), UIPalette::typefaceNames()}) {
        for (const std::string_view name : names) EXPECT_THAT(page, HasSubstr("`" + std::string(name) + "`"));
    }
}

}  // namespace
}  // namespace flarebox::testing
