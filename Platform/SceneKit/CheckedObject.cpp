#include <SceneKit/CheckedObject.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace flarebox::detail {
namespace {

std::optional<std::size_t> wholeNumber(const Value& value) {
    const auto number = value.as<NSNumber>();
    if (!number || number.isBoolean() || number.isFloating()) return std::nullopt;
    if (!number.isUnsigned() && number.integerValue() < 0) return std::nullopt;
    const std::uint64_t result = number.unsignedIntegerValue();
    return std::in_range<std::size_t>(result) ? std::optional(static_cast<std::size_t>(result)) : std::nullopt;
}

std::optional<float> finiteNumber(const Value& value) {
    const auto number = value.as<NSNumber>();
    if (!number || number.isBoolean()) return std::nullopt;
    const float result = number.floatValue();
    return std::isfinite(result) ? std::optional(result) : std::nullopt;
}

}  // namespace

CheckedObject::CheckedObject(const Value& value, Refusal& refusal, const CheckedObject* parent, std::string_view name,
                             std::optional<std::size_t> index)
    : object_(value.as<NSDictionary>()), refusal_(refusal), parent_(parent), name_(name), index_(index) {
    if (!object_) refuse({}, "is not an object");
}

std::string CheckedObject::place() const {
    std::string result = parent_ ? parent_->place() : std::string();
    if (!result.empty()) result += '.';
    result += name_;
    if (index_) result += '[' + std::to_string(*index_) + ']';
    return result;
}

void CheckedObject::refuse(std::string_view key, std::string_view what) const {
    if (refusal_.isRefused()) return;
    std::string where = place();
    if (!where.empty() && !key.empty()) where += '.';
    where += key;
    refusal_.refuse((where.empty() ? std::string("its description") : where) + " " + std::string(what));
}

void CheckedObject::put(std::string_view key, Value value) {
    clean_.emplace_back(NSString(key), std::move(value));
}

void CheckedObject::drop(std::string_view key) {
    std::erase_if(clean_, [key](const NSDictionary::Entry& entry) { return entry.first.as<NSString>() == key; });
}

Value CheckedObject::valueOf(std::string_view key) const {
    return object_ ? object_.objectForKey(key) : Value();
}

bool CheckedObject::has(std::string_view key) const {
    return bool(valueOf(key));
}

std::size_t CheckedObject::integer(std::string_view key, std::size_t least, std::size_t most, std::size_t otherwise) {
    const Value value = valueOf(key);
    if (!value) return otherwise;
    const auto number = wholeNumber(value);
    if (!number || *number < least || *number > most) {
        refuse(key, "is no whole number from " + std::to_string(least) + " to " + std::to_string(most));
        return otherwise;
    }
    put(key, value);
    return *number;
}

std::optional<std::size_t> CheckedObject::checkedIndex(std::string_view key, const Value& value,
                                                       std::size_t count) const {
    const auto number = wholeNumber(value);
    if (number && *number < count) return number;
    refuse(key, "names something that is not there");
    return std::nullopt;
}

std::optional<std::size_t> CheckedObject::index(std::string_view key, std::size_t count) {
    const Value value = valueOf(key);
    if (!value) return std::nullopt;
    const auto number = checkedIndex(key, value, count);
    if (number) put(key, value);
    return number;
}

std::size_t CheckedObject::requiredIndex(std::string_view key, std::size_t count) {
    const auto number = index(key, count);
    if (!number) refuse(key, "is missing");
    return number.value_or(0);
}

std::vector<std::size_t> CheckedObject::indices(std::string_view key, std::size_t count, std::size_t most) {
    const Value value = valueOf(key);
    if (!value) return {};
    const auto array = value.as<NSArray>();
    if (!array || array.count() == 0 || array.count() > most) {
        refuse(key, "is no list of 1 to " + std::to_string(most) + " numbers");
        return {};
    }
    std::vector<std::size_t> result;
    for (const Value& element : array) {
        const auto number = checkedIndex(key, element, count);
        if (!number) return {};
        result.push_back(*number);
    }
    put(key, value);
    return result;
}

std::vector<std::pair<std::string, std::size_t>> CheckedObject::namedIndices(std::span<const std::string_view> names,
                                                                             std::size_t count) {
    std::vector<std::pair<std::string, std::size_t>> result;
    for (const std::string_view name : names) {
        if (const auto number = index(name, count)) result.emplace_back(name, *number);
    }
    return result;
}

bool CheckedObject::flag(std::string_view key) {
    const Value value = valueOf(key);
    if (!value) return false;
    const auto number = value.as<NSNumber>();
    if (!number || !number.isBoolean()) {
        refuse(key, "is neither true nor false");
        return false;
    }
    put(key, value);
    return number.boolValue();
}

std::optional<float> CheckedObject::number(std::string_view key) {
    const Value value = valueOf(key);
    if (!value) return std::nullopt;
    const auto result = finiteNumber(value);
    if (!result) {
        refuse(key, "is no number");
        return std::nullopt;
    }
    put(key, value);
    return result;
}

std::vector<float> CheckedObject::numbers(std::string_view key, std::initializer_list<std::size_t> counts) {
    const auto array = valueOf(key).as<NSArray>();
    if (array && std::ranges::find(counts, array.count()) == counts.end()) {
        refuse(key, "has the wrong count of numbers");
        return {};
    }
    return numbers(key, 1, 16);
}

std::vector<float> CheckedObject::numbers(std::string_view key, std::size_t least, std::size_t most) {
    const Value value = valueOf(key);
    if (!value) return {};
    const auto array = value.as<NSArray>();
    if (!array || array.count() < least || array.count() > most) {
        refuse(key, "has the wrong count of numbers");
        return {};
    }
    std::vector<float> result;
    for (const Value& element : array) {
        const auto number = finiteNumber(element);
        if (!number) {
            refuse(key, "holds something that is no number");
            return {};
        }
        result.push_back(*number);
    }
    put(key, value);
    return result;
}

std::string_view CheckedObject::text(std::string_view key, std::initializer_list<std::string_view> allowed) {
    const Value value = valueOf(key);
    if (!value) return *allowed.begin();
    const auto string = value.as<NSString>();
    const auto* const found = std::ranges::find(allowed, string ? string.text() : std::string_view());
    if (!string || found == allowed.end()) {
        refuse(key, "is nothing known");
        return *allowed.begin();
    }
    put(key, value);
    return *found;
}

std::string_view CheckedObject::peekText(std::string_view key) const {
    const auto string = valueOf(key).as<NSString>();
    return string ? string.text() : std::string_view();
}

std::vector<std::string_view> CheckedObject::peekTexts(std::string_view key) {
    const Value value = valueOf(key);
    if (!value) return {};
    std::vector<std::string_view> result;
    for (const Value& element : value.as<NSArray>()) {
        const auto string = element.as<NSString>();
        if (!string) {
            refuse(key, "holds something that is no text");
            return {};
        }
        result.push_back(string.text());
    }
    return result;
}

bool CheckedObject::objects(std::string_view key, std::size_t most, const Visit& visit) {
    const Value value = valueOf(key);
    if (!value || refusal_.isRefused()) return false;
    const auto array = value.as<NSArray>();
    if (!array || array.count() > most) {
        refuse(key, array ? "are more than " + std::to_string(most) : "is no list");
        return false;
    }
    std::vector<Value> cleaned;
    cleaned.reserve(array.count());
    for (std::size_t i = 0; i < array.count(); ++i) {
        CheckedObject child(array.objectAtIndex(i), refusal_, this, key, i);
        if (!refusal_.isRefused()) visit(child, i);
        if (refusal_.isRefused()) return false;
        cleaned.emplace_back(child.clean());
    }
    // The format knows no empty lists.
    if (!cleaned.empty()) put(key, NSArray::arrayWithValues(std::move(cleaned)));
    return true;
}

bool CheckedObject::object(std::string_view key, const std::function<void(CheckedObject&)>& visit) {
    const Value value = valueOf(key);
    if (!value || refusal_.isRefused()) return false;
    CheckedObject child(value, refusal_, this, key);
    if (!refusal_.isRefused()) visit(child);
    if (refusal_.isRefused()) return false;
    put(key, child.clean());
    return true;
}

}  // namespace flarebox::detail
