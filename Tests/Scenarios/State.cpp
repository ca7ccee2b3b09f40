#include "State.h"

#include <Foundation/NSJSONSerialization.h>

#include <algorithm>

namespace flarebox::testing {

State::State(const TemporaryDirectory& folder, const std::string& file) {
    root_ = NSJSONSerialization::JSONObjectWithText(folder.read(file), NSJSONReadingStrict, nullptr).as<NSDictionary>();
}

Value State::at(std::string_view path) const {
    Value value = root_;
    while (!path.empty() && value) {
        const std::size_t dot = std::min(path.find('.'), path.size());
        const std::string_view key = path.substr(0, dot);
        if (const auto array = value.as<NSArray>())
            value = array.objectAtIndex(static_cast<std::size_t>(NSString(key).integerValue()));
        else
            value = value.as<NSDictionary>().objectForKey(key);
        path.remove_prefix(std::min(dot + 1, path.size()));
    }
    return value;
}

std::string State::json(std::string_view path) const {
    if (path.ends_with(".#")) return std::to_string(at(path.substr(0, path.size() - 2)).as<NSArray>().count());
    const Value value = at(path);
    if (!value) return "nothing";
    std::string text;
    NSJSONSerialization::writeJSONObject(value, text, NSJSONWritingFragmentsAllowed, nullptr);
    return text;
}

double State::number(std::string_view path) const {
    return at(path).as<NSNumber>().doubleValue();
}

double State::frame(const std::string& field, std::size_t index) const {
    return number("views." + field + ".frame." + std::to_string(index));
}

}  // namespace flarebox::testing
