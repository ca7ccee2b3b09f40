#include <Fuzz/Mapping/Observed.h>

#include <algorithm>

namespace flarebox::fuzz {

void Journal::note(const Declaration& cls, std::string_view what, std::string_view key, const Value& value,
                   const Ref<NSError>& error) {
    std::string event = cls.name + " " + std::string(what) + " " + std::string(key) + "=" + written(value);
    if (error) event += " (" + error->localizedDescription() + ")";
    events_.push_back(std::move(event));
}

bool Journal::decide(const Declaration& cls, Verdict verdict, std::string_view property, Value& value,
                     Ref<NSError>& error, std::string_view what) {
    note(cls, what, property, value);
    if (verdict == Verdict::AcceptWithError || verdict == Verdict::RejectWithError)
        error = NSError::errorWithDomain("fuzz", 1, property);
    if (verdict == Verdict::Replace) value = NSArray{"replaced", NSArray::array()};
    if (verdict == Verdict::ReplaceByNothing) value = nullptr;
    return verdict != Verdict::Reject && verdict != Verdict::RejectWithError;
}

std::string written(const Value& value) {
    if (value.isAbsent()) return "absent";
    std::vector<std::string> parts;
    switch (value.kind()) {
        case Value::Kind::Array:
            for (const Value& element : value.as<NSArray>()) parts.push_back(written(element));
            break;
        case Value::Kind::Set:
            for (const Value& element : value.as<NSSet>().elements()) parts.push_back(written(element));
            std::ranges::sort(parts);
            break;
        case Value::Kind::OrderedSet:
            for (const Value& element : value.as<NSOrderedSet>().elements()) parts.push_back(written(element));
            break;
        case Value::Kind::Dictionary:
            for (const auto& [key, entry] : value.as<NSDictionary>().entries())
                parts.push_back(written(key) + ":" + written(entry));
            break;
        case Value::Kind::Object: {
            const auto* observed = dynamic_cast<const Observed*>(value.object());
            parts.push_back(observed ? observed->contents() : "MotisObject");
            break;
        }
        case Value::Kind::Date:
            parts.push_back(std::to_string(value.as<NSDate>().timeIntervalSince1970()));
            break;
        case Value::Kind::Data:
            parts.push_back(value.as<NSData>().base64EncodedString());
            break;
        case Value::Kind::Number: {
            const auto number = value.as<NSNumber>();
            parts.push_back(number.isBoolean() ? "boolean" : number.isFloating() ? "floating" : "whole");
            parts.push_back(number.stringValue());
            break;
        }
        default:
            parts.push_back(value.description());
    }
    // Objects have classes of their own on either side.
    std::string text(value.kind() == Value::Kind::Object ? "object" : value.classOf()->name());
    for (const std::string& part : parts) text += "[" + part + "]";
    return text;
}

}  // namespace flarebox::fuzz
