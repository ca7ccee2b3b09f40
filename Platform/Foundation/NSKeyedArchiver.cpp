#include <Foundation/Backend/Icu/Unicode.h>
#include <Foundation/NSKeyedArchiver.h>
#include <Foundation/NSPropertyListSerialization.h>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace flarebox {

namespace {

using Entries = std::vector<NSDictionary::Entry>;

NSDictionary node(const char* kind, const char* key, Value content) {
    return NSDictionary({{"$kind", kind}, {key, std::move(content)}});
}

bool isXMLText(std::string_view text) {
    auto isPlain = [](unsigned char character) { return character >= 0x20 || character == '\n' || character == '\t'; };
    return std::ranges::all_of(text, isPlain) && detail::isValidUTF8(text);
}

class Archiver : public NSCoder {
public:
    void encodeObject(const Value& value, std::string_view key) override {
        if (!value || failed() || !current_) return;
        current_->emplace_back(NSString(key), encode(value));
    }
    Value decodeObjectForKey(std::string_view) override { return {}; }

    Value encode(const Value& value) {
        if (failed()) return {};
        if (depth_ >= detail::maximumArchiveDepth) return fail("nested too deep to be archived");
        if (++count_ > detail::maximumArchivedValues) return fail("too many values to be archived");
        ++depth_;
        Value result = encodeKind(value);
        --depth_;
        return result;
    }

    NSDictionary archive(Value top) {
        return NSDictionary({{"$archiver", "NSKeyedArchiver"},
                             {"$version", 1},
                             {"$top", std::move(top)},
                             {"$objects", NSArray::arrayWithValues(std::move(objects_))}});
    }

    bool failed() const { return !failure_.empty(); }
    const std::string& failure() const { return failure_; }

private:
    Value fail(std::string_view what) {
        if (!failed()) failure_ = what;
        return {};
    }

    Value encodeKind(const Value& value) {
        switch (value.kind()) {
            case Value::Kind::Absent:
                return fail("an absent value cannot be archived");
            case Value::Kind::Null:
                return NSDictionary({{"$kind", "null"}});
            case Value::Kind::Number:
                return encodeNumber(value.as<NSNumber>());
            case Value::Kind::String:
                return encodeText(value.as<NSString>());
            case Value::Kind::Date:
                return node("date", "value", value.as<NSDate>().timeIntervalSince1970());
            case Value::Kind::URL:
                return node("url", "value", NSString(value.as<NSURL>().absoluteString()));
            case Value::Kind::Data:
                return value;
            case Value::Kind::Array:
                return encodeArray(value.as<NSArray>());
            case Value::Kind::Set:
                return encodeValues(value.as<NSMutableSet>() ? "mutableSet" : "set", value.as<NSSet>().elements());
            case Value::Kind::OrderedSet:
                return encodeValues(value.as<NSMutableOrderedSet>() ? "mutableOrderedSet" : "orderedSet",
                                    value.as<NSOrderedSet>().elements());
            case Value::Kind::Dictionary:
                return encodeDictionary(value.as<NSDictionary>());
            case Value::Kind::Object:
                return encodeReference(*value.object());
        }
        return fail("an unknown kind of value cannot be archived");
    }

    static Value encodeNumber(const NSNumber& number) {
        return number.isUnsigned() ? node("unsigned", "value", NSString(number.stringValue())) : Value(number);
    }

    static Value encodeText(const NSString& text) {
        return isXMLText(text.text()) ? Value(text) : node("text", "value", NSData::dataWithBytes(text.text()));
    }

    NSArray encodeAll(std::span<const Value> values) {
        std::vector<Value> nodes;
        nodes.reserve(values.size());
        for (const Value& value : values) {
            nodes.push_back(encode(value));
            if (failed()) return {};
        }
        return NSArray::arrayWithValues(std::move(nodes));
    }

    Value encodeValues(const char* kind, std::span<const Value> values) {
        return node(kind, "values", encodeAll(values));
    }

    Value encodeArray(const NSArray& array) {
        if (array.as<NSMutableArray>()) return encodeValues("mutableArray", array.elements());
        return encodeAll(array.elements());
    }

    Value encodeDictionary(const NSDictionary& dictionary) {
        std::vector<Value> keysAndValues;
        for (const auto& [key, value] : dictionary.entries()) {
            keysAndValues.push_back(key);
            keysAndValues.push_back(value);
        }
        return encodeValues(dictionary.as<NSMutableDictionary>() ? "mutableDictionary" : "dictionary", keysAndValues);
    }

    Value encodeReference(NSObject& object) {
        auto [known, isNew] = indexes_.try_emplace(Ref<NSObject>(&object), objects_.size());
        std::size_t index = known->second;
        if (isNew) {
            objects_.emplace_back();  // the place is taken before the object's own values are, which may lead back here
            objects_[index] = encodeContents(object);
        }
        return node("object", "index", index);
    }

    Value encodeContents(const NSObject& object) {
        auto* coding = dynamic_cast<const NSCoding*>(&object);
        std::string name(object.classInfo().name());
        if (!coding || classFromName(name) != &object.classInfo())
            return fail("objects of " + name + " cannot be archived");
        Entries values;
        Entries* outer = std::exchange(current_, &values);
        coding->encodeWithCoder(*this);
        current_ = outer;
        return NSDictionary(
            {{"class", NSString(name)}, {"values", NSDictionary::dictionaryWithEntries(std::move(values))}});
    }

    std::unordered_map<Ref<NSObject>, std::size_t> indexes_;
    std::vector<Value> objects_;
    Entries* current_ = nullptr;
    int depth_ = 0;
    int count_ = 0;
    std::string failure_;
};

}  // namespace

NSData NSKeyedArchiver::archivedDataWithRootObject(const Value& root, Ref<NSError>* error) {
    Archiver archiver;
    Value top = archiver.encode(root);
    if (!archiver.failed()) {
        return NSPropertyListSerialization::dataWithPropertyList(archiver.archive(std::move(top)), error);
    }
    if (error) *error = NSError::errorWithDomain(NSCocoaErrorDomain, NSCoderInvalidValueError, archiver.failure());
    return {};
}

}  // namespace flarebox
