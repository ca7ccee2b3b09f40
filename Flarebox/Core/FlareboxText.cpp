#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Core/FlareboxText.h>

namespace flarebox {
namespace {

constexpr std::string_view table = "Flarebox";
/// Stands for no text: nobody shows it.
constexpr std::string_view missing = "\x01";

}  // namespace

NSString flareboxText(std::string_view english) {
    if (english.empty()) return NSString(english);
    NSString hosts = NSBundle::mainBundle()->localizedStringForKey(english, missing, table);
    if (!(hosts == missing)) return hosts;
    return flareboxBundle().localizedStringForKey(english, english, table);
}

}  // namespace flarebox
