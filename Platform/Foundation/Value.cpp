#include <Foundation/NSObject.h>
#include <Foundation/Storage.h>
#include <Foundation/Value.h>
#include <Foundation/Values.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>

namespace flarebox {
namespace {

using detail::ValueAccess;
using Kind = Value::Kind;

/// Far deeper than any document may be; what is nested deeper is compared by identity and described as "…".
constexpr int deepestComparison = 1000;
constexpr int deepestDescription = 100;

// How deep the comparison under way on this thread is. Equality of objects may come back to equality of values.
thread_local constinit int comparisonDepth = 0;

struct ComparisonLevel {
    ComparisonLevel() { ++comparisonDepth; }
    ~ComparisonLevel() { --comparisonDepth; }
    bool isTooDeep() const { return comparisonDepth > deepestComparison; }
};

/// 0 for what holds other values.
std::size_t hashOfScalar(const Value& value) {
    switch (value.kind()) {
        case Value::Kind::Number:
        case Value::Kind::String:
        case Value::Kind::Date:
            return value.hash();
        default:
            return 0;
    }
}

bool sameElements(std::span<const Value> a, std::span<const Value> b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

bool sameMembers(const NSSet& a, const NSSet& b) {
    return a.count() == b.count() &&
           std::ranges::all_of(a.elements(), [&](const Value& element) { return b.containsObject(element); });
}

bool sameEntries(const NSDictionary& a, const NSDictionary& b) {
    return a.count() == b.count() && std::ranges::all_of(a.entries(), [&](const NSDictionary::Entry& entry) {
               return b.objectForKey(entry.first) == entry.second;
           });
}

/// Whether the floating number is exactly this integer.
template <class Integer>
bool isExactly(double floating, Integer integer) noexcept {
    // The first double beyond the range is exact, unlike the last integer within it.
    constexpr double end = static_cast<double>(std::numeric_limits<Integer>::max() / 2 + 1) * 2;
    constexpr double begin = static_cast<double>(std::numeric_limits<Integer>::min());
    return floating >= begin && floating < end && std::trunc(floating) == floating &&
           static_cast<Integer>(floating) == integer;
}

class Describer {
public:
    std::string text;

    void describe(const Value& value) {
        switch (value.kind()) {
            case Kind::Absent:
                text += "(null)";
                break;
            case Kind::Null:
                text += "<null>";
                break;
            case Kind::Number:
                text += value.as<NSNumber>().stringValue();
                break;
            case Kind::String:
            case Kind::URL:
                text += ValueAccess::text(value);
                break;
            case Kind::Date:
                describeDate(ValueAccess::seconds(value));
                break;
            case Kind::Data:
                describeData(value.as<NSData>());
                break;
            case Kind::Array:
            case Kind::OrderedSet:
                list("[", ValueAccess::list(value), "]");
                break;
            case Kind::Set:
                list("{(", ValueAccess::list(value), ")}");
                break;
            case Kind::Dictionary:
                list("{", value.as<NSDictionary>().entries(), "}");
                break;
            case Kind::Object:
                text += value.object()->description();
                break;
        }
    }

private:
    void describe(const NSDictionary::Entry& entry) {
        describe(entry.first);
        text += ": ";
        describe(entry.second);
    }

    template <class Element>
    void list(const char* open, std::span<const Element> elements, const char* close) {
        text += open;
        if (++depth_ > deepestDescription) {
            text += "…";
        } else {
            for (std::size_t i = 0; i < elements.size(); ++i) {
                if (i > 0) text += ", ";
                describe(elements[i]);
            }
        }
        --depth_;
        text += close;
    }

    void describeDate(double seconds);
    void describeData(const NSData& data);

    int depth_ = 0;
};

void Describer::describeDate(double seconds) {
    // The calendar below reaches the year 32767.
    if (!(std::abs(seconds) < 9e11)) {
        text += NSNumber(seconds).stringValue() + " s since 1970";
        return;
    }
    const auto whole = static_cast<std::int64_t>(std::floor(seconds));
    const std::int64_t second = ((whole % 86400) + 86400) % 86400;
    const std::chrono::sys_days days{std::chrono::days((whole - second) / 86400)};
    const std::chrono::year_month_day day{days};
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%04d-%02u-%02u %02d:%02d:%02d +0000", int(day.year()), unsigned(day.month()),
                  unsigned(day.day()), int(second / 3600), int(second / 60 % 60), int(second % 60));
    text += buffer;
}

void Describer::describeData(const NSData& data) {
    constexpr std::size_t shown = 32;
    constexpr char digits[] = "0123456789abcdef";
    text += "<" + std::to_string(data.length()) + " bytes";
    if (data.length() > 0) text += ": ";
    for (std::byte byte : data.bytes().first(std::min(shown, data.length()))) {
        text += digits[std::to_integer<unsigned>(byte) >> 4];
        text += digits[std::to_integer<unsigned>(byte) & 15];
    }
    text += data.length() > shown ? "…>" : ">";
}

}  // namespace

Value Value::fromBoolean(bool number) noexcept {
    Value value;
    value.kind_ = Kind::Number;
    value.payload_.integer = number;
    return value;
}

Value::Value(double number) noexcept : kind_(Kind::Number), numberKind_(NumberKind::Floating) {
    payload_.floating = number;
}

Value::Value(const char* text) : Value(text ? Value(std::string_view(text)) : Value()) {}

Value::Value(std::string_view text) {
    if (text.empty()) {
        *this = ValueAccess::constant("");
    } else {
        *this = ValueAccess::adopt(Kind::String, detail::TextStorage::create(text));
    }
}

Value Value::fromSigned(std::int64_t number) noexcept {
    Value value;
    value.kind_ = Kind::Number;
    value.numberKind_ = NumberKind::Signed;
    value.payload_.integer = number;
    return value;
}

Value Value::fromUnsigned(std::uint64_t number) noexcept {
    Value value;
    value.kind_ = Kind::Number;
    value.numberKind_ = NumberKind::Unsigned;
    value.payload_.bits = number;
    return value;
}

Value Value::fromObject(Ref<NSObject> object) noexcept {
    Value value;
    if (!object) return value;
    value.kind_ = Kind::Object;
    value.holding_ = Holding::Object;
    value.payload_.object = object.leak();
    return value;
}

Value Value::null() noexcept {
    Value value;
    value.kind_ = Kind::Null;
    return value;
}

bool Value::isSameAs(const Value& other) const noexcept {
    if (kind_ != other.kind_) return false;
    if (kind_ == Kind::Absent || kind_ == Kind::Null) return true;
    return numberKind_ == other.numberKind_ && payload_.bits == other.payload_.bits && extra_ == other.extra_;
}

bool Value::isEqual(const Value& other) const noexcept {
    if (isSameAs(other)) return true;
    if (kind_ != other.kind_) return false;
    const ComparisonLevel level;
    if (level.isTooDeep()) return false;
    switch (kind_) {
        case Kind::Absent:
        case Kind::Null:
            return true;
        case Kind::Number:
            return as<NSNumber>().compares(other.as<NSNumber>());
        case Kind::String:
        case Kind::URL:
            return ValueAccess::text(*this) == ValueAccess::text(other);
        case Kind::Date:
            return payload_.floating == other.payload_.floating;
        case Kind::Data:
            return as<NSData>().text() == other.as<NSData>().text();
        case Kind::Array:
        case Kind::OrderedSet:
            return sameElements(ValueAccess::list(*this), ValueAccess::list(other));
        case Kind::Set:
            return sameMembers(as<NSSet>(), other.as<NSSet>());
        case Kind::Dictionary:
            return sameEntries(as<NSDictionary>(), other.as<NSDictionary>());
        case Kind::Object:
            return payload_.object->isEqual(*other.payload_.object);
    }
    return false;
}

bool NSNumber::compares(const NSNumber& other) const noexcept {
    if (isFloating() && other.isFloating()) {
        const double a = payload_.floating;
        const double b = other.payload_.floating;
        return a == b || (std::isnan(a) && std::isnan(b));
    }
    if (isFloating()) return other.compares(*this);
    if (other.isFloating()) {
        return isUnsigned() ? isExactly(other.payload_.floating, payload_.bits)
                            : isExactly(other.payload_.floating, payload_.integer);
    }
    // Equal bits mean equal numbers unless one of them is negative and the other beyond the signed range.
    return payload_.bits == other.payload_.bits && (isUnsigned() == other.isUnsigned() || payload_.integer >= 0);
}

std::size_t NSNumber::hashOfNumber() const noexcept {
    if (!isFloating()) return detail::hashInteger(payload_.bits);
    const double number = payload_.floating;
    // Whole numbers hash as the integers they equal.
    if (number >= -0x1p63 && number < 0x1p63 && std::trunc(number) == number) {
        return detail::hashInteger(static_cast<std::uint64_t>(static_cast<std::int64_t>(number)));
    }
    if (number >= 0x1p63 && number < 0x1p64) return detail::hashInteger(static_cast<std::uint64_t>(number));
    if (std::isnan(number)) return detail::hashInteger(0x7ff8000000000000);
    return detail::hashInteger(payload_.bits);
}

std::size_t Value::hash() const noexcept {
    const auto kindBits = static_cast<std::uint64_t>(kind_);
    switch (kind_) {
        case Kind::Absent:
        case Kind::Null:
            return kindBits;
        case Kind::Number:
            return as<NSNumber>().hashOfNumber();
        case Kind::String:
        case Kind::URL:
            return detail::hashText(ValueAccess::text(*this));
        case Kind::Date:
            return detail::hashInteger(payload_.floating == 0 ? 0 : payload_.bits);
        case Kind::Data:
            return detail::hashText(as<NSData>().text());
        // Collections hash by size, those in order by their ends too: cheap, and equal for equal collections whatever
        // their depth.
        case Kind::Array:
        case Kind::OrderedSet: {
            const auto list = ValueAccess::list(*this);
            const std::size_t ends = list.empty() ? 0 : hashOfScalar(list.front()) * 31 + hashOfScalar(list.back());
            return detail::hashInteger(list.size() << 4 | kindBits) ^ ends;
        }
        case Kind::Set:
            return detail::hashInteger(ValueAccess::list(*this).size() << 4 | kindBits);
        case Kind::Dictionary:
            return detail::hashInteger(as<NSDictionary>().count() << 4 | kindBits);
        case Kind::Object:
            return payload_.object->hash();
    }
    return 0;
}

Class Value::classOf() const noexcept {
    switch (kind_) {
        case Kind::Absent:
            return nullptr;
        case Kind::Null:
            return &NSNull::staticClass();
        case Kind::Number:
            return &NSNumber::staticClass();
        case Kind::String:
            return &NSString::staticClass();
        case Kind::Date:
            return &NSDate::staticClass();
        case Kind::URL:
            return &NSURL::staticClass();
        case Kind::Data:
            return &NSData::staticClass();
        case Kind::Array:
            return isMutable_ ? &NSMutableArray::staticClass() : &NSArray::staticClass();
        case Kind::Set:
            return isMutable_ ? &NSMutableSet::staticClass() : &NSSet::staticClass();
        case Kind::OrderedSet:
            return isMutable_ ? &NSMutableOrderedSet::staticClass() : &NSOrderedSet::staticClass();
        case Kind::Dictionary:
            return isMutable_ ? &NSMutableDictionary::staticClass() : &NSDictionary::staticClass();
        case Kind::Object:
            return &payload_.object->classInfo();
    }
    return nullptr;
}

bool Value::isKindOf(const ClassInfo& ancestor) const noexcept {
    Class own = classOf();
    return own && own->isSubclassOf(ancestor);
}

std::string Value::description() const {
    Describer describer;
    describer.describe(*this);
    return std::move(describer.text);
}

}  // namespace flarebox
