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
        std::size_t length = std::min(path.find('.'), path.size());
        if (const auto array = value.as<NSArray>()) {
            value = array.objectAtIndex(static_cast<std::size_t>(NSString(path.substr(0, length)).integerValue()));
        } else {
            // Fields of content views have names with dots of their own: the longest name counts.
            const auto dictionary = value.as<NSDictionary>();
            for (length = path.size(); length != path.npos;
                 length = length == 0 ? path.npos : path.rfind('.', length - 1)) {
                value = dictionary.objectForKey(path.substr(0, length));
                if (value) break;
            }
            if (!value) return {};
        }
        path.remove_prefix(std::min(length + 1, path.size()));
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
