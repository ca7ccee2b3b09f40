// What the pages show of the kit's own file formats is what the kit reads.

#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Core/Theme.h>
#include <Foundation/LogSink.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSJSONSerialization.h>
#include <Foundation/NSPropertyListSerialization.h>
#include <Foundation/StringsTable.h>
#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>
#include <UIKit/UINib.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

namespace flarebox::testing {
namespace {

/// The class that the page on layout files lays out.
class PlayerCard : public UIView {
    FLAREBOX_CLASS(PlayerCard)
public:
    void pressOpenButton() {}
    Weak<UILabel> lbName;
    Weak<UIButton> btnOpen;
    Weak<NSLayoutConstraint> buttonPadding;
};

const ClassInfo& PlayerCard::staticClass() {
    static const Outlet outlets[] = {
        outlet<&PlayerCard::lbName>("lbName"),
        outlet<&PlayerCard::btnOpen>("btnOpen"),
        outlet<&PlayerCard::buttonPadding>("buttonPadding"),
    };
    static const Action actions[] = {action<&PlayerCard::pressOpenButton>("pressOpenButton")};
    static const ClassInfo info("PlayerCard", &UIView::staticClass(), createObject<PlayerCard>,
                                {.actions = actions, .outlets = outlets});
    return info;
}

std::string readLayout(const std::string& text) {
    PlayerCard::staticClass();
    Ref<NSError> error;
    const auto made = UINib::nibWithText(text, "page")->instantiateWithOwner(nullptr, &error);
    return made.empty() ? error->localizedDescription() : "";
}

/// What the log says meanwhile, a line a message.
std::string loggedBy(const std::function<void()>& action) {
    std::string said;
    LogSink::set([&](LogLevel, std::string_view message) { said += std::string(message) + "\n"; });
    action();
    LogSink::set(nullptr);
    return said;
}

std::string contentsOf(const std::filesystem::path& file) {
    std::stringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

std::string readTheme(const std::filesystem::path& file) {
    bool isTheme = false;
    const std::string said = loggedBy([&] { isTheme = Theme::themeWithFile(file.string()) != nullptr; });
    return isTheme ? said : said + "no theme";
}

std::string readJSON(const std::string& text) {
    Ref<NSError> error;
    NSJSONSerialization::JSONObjectWithText(text, NSJSONReadingAllowFragments, &error);
    return error ? error->localizedDescription() : "";
}

std::string readPropertyList(const std::string& text) {
    Ref<NSError> error;
    NSPropertyListSerialization::propertyListWithData(NSData::dataWithBytes(text), {}, &error);
    return error ? error->localizedDescription() : "";
}

/// Each key is a text of the kit.
std::string readStrings(const std::string& text) {
    constexpr std::string_view none = "?";
    std::string failure;
    for (const auto& [key, value] : detail::parseStringsTable(text, failure)) {
        if (flareboxBundle().localizedStringForKey(key, none, "Flarebox") == none)
            failure = "the kit has no text \"" + key + "\"";
    }
    return failure;
}

TEST(ReaderTest, ReadsWhatThePagesShow) {
    const std::map<std::string, std::string (*)(const std::string&)> readers = {
        {".xml", readLayout}, {".json", readJSON}, {".plist", readPropertyList}, {".strings", readStrings}};
    int count = 0;
    for (const auto& file : std::filesystem::directory_iterator(PAGES "/data")) {
        const auto reader = readers.find(file.path().extension().string());
        if (reader == readers.end()) continue;
        const std::string text = contentsOf(file);
        const bool isTheme = text.find("<theme>") != std::string::npos;
        EXPECT_EQ(isTheme ? readTheme(file) : reader->second(text), "") << file.path();
        ++count;
    }
    EXPECT_GE(count, 2);
}

TEST(ReaderTest, SaysOfWrongFilesWhatThePagesShow) {
    int count = 0;
    for (const auto& said : std::filesystem::directory_iterator(PAGES "/says")) {
        const std::filesystem::path name = said.path().filename(), file = WRONG_FILES / name;
        const std::string log = loggedBy([&] {
            if (name == "theme.xml")
                Theme::themeWithFile(file.string());
            else
                UINib::nibWithText(contentsOf(file), name.string())->instantiateWithOwner(nullptr);
        });
        EXPECT_EQ(log, contentsOf(said));
        ++count;
    }
    EXPECT_GE(count, 2);
}

}  // namespace
}  // namespace flarebox::testing
