#include <Foundation/NSKeyedArchiver.h>
#include <Foundation/NSPropertyListSerialization.h>

#include <charconv>
#include <string>
#include <utility>
#include <vector>

namespace flarebox {

namespace {

class Unarchiver : public NSCoder {
public:
    void encodeObject(const Value&, std::string_view) override {}
    Value decodeObjectForKey(std::string_view key) override {
        Value node = current_.objectForKey(key);
        return node ? decode(node) : Value();
    }

    Value decodeArchive(const NSDictionary& archive) {
        bool isOurs = archive.objectForKey("$archiver").as<NSString>() == "NSKeyedArchiver" &&
                      archive.objectForKey("$version").as<NSNumber>().integerValue() == 1;
        objects_ = archive.objectForKey("$objects").as<NSArray>();
        if (!isOurs || !objects_) return fail("no keyed archive");
        decoded_.resize(objects_.count());
        Value root = decode(archive.objectForKey("$top"));
        return failed() ? Value() : root;
    }

    bool failed() const { return !failure_.empty(); }
    const std::string& failure() const { return failure_; }

private:
    Value fail(std::string_view what) {
        if (!failed()) failure_ = what;
        return {};
    }

    Value decode(const Value& node) {
        if (failed()) return {};
        if (depth_ >= detail::maximumArchiveDepth) return fail("nested too deep");
        ++depth_;
        Value result = decodeKind(node);
        --depth_;
        if (!result) fail("a value is missing");
        return result;
    }

    Value decodeKind(const Value& node) {
        switch (node.kind()) {
            case Value::Kind::Number:
            case Value::Kind::String:
            case Value::Kind::Data:
                return node;
            case Value::Kind::Array:
                return NSArray::arrayWithValues(decodeAll(node.as<NSArray>()));
            case Value::Kind::Dictionary:
                return decodeTagged(node.as<NSDictionary>());
            default:
                return fail("a value of an unexpected kind");
        }
    }

    std::vector<Value> decodeAll(const NSArray& nodes) {
        std::vector<Value> values;
        values.reserve(nodes.count());
        for (const Value& node : nodes) {
            values.push_back(decode(node));
            if (failed()) return {};
        }
        return values;
    }

    Value decodeTagged(const NSDictionary& node) {
        std::string kind = node.objectForKey("$kind").as<NSString>().string();
        if (kind == "null") return Value::null();
        if (kind == "object") return decodeReference(node.objectForKey("index").as<NSNumber>());
        Value content = node.objectForKey("value");
        if (kind == "unsigned") return decodeUnsigned(content.as<NSString>());
        if (kind == "date") return decodeDate(content.as<NSNumber>());
        if (kind == "url") return decodeURL(content.as<NSString>());
        if (kind == "text") return decodeText(content.as<NSData>());
        auto nodes = node.objectForKey("values").as<NSArray>();
        if (!nodes) return fail("unknown kind \"" + kind + "\"");
        return decodeCollection(kind, decodeAll(nodes));
    }

    Value decodeUnsigned(const NSString& text) {
        std::uint64_t number = 0;
        const char* last = text.text().data() + text.length();
        auto [end, failure] = std::from_chars(text.text().data(), last, number);
        if (!text || failure != std::errc() || end != last) return fail("no unsigned number");
        return Value(number);
    }

    Value decodeDate(const NSNumber& seconds) {
        return seconds ? NSDate::dateWithTimeIntervalSince1970(seconds.doubleValue()) : fail("a date without seconds");
    }

    Value decodeURL(const NSString& text) {
        Value url = NSURL::URLWithString(text);
        return url ? url : fail("no link");
    }

    Value decodeText(const NSData& bytes) {
        return bytes ? Value(NSString(bytes.text())) : fail("a text without bytes");
    }

    Value decodeCollection(std::string_view kind, std::vector<Value> values) {
        if (failed()) return {};
        if (kind == "mutableArray") return NSArray::arrayWithValues(std::move(values)).mutableCopy();
        if (kind == "set") return NSSet::setWithValues(values);
        if (kind == "mutableSet") return NSMutableSet::setWithValues(values);
        if (kind == "orderedSet") return NSOrderedSet::orderedSetWithValues(values);
        if (kind == "mutableOrderedSet") return NSMutableOrderedSet::orderedSetWithValues(values);
        if (kind == "dictionary") return decodeDictionary(values);
        if (kind == "mutableDictionary") return decodeDictionary(values).mutableCopy();
        return fail("unknown kind \"" + std::string(kind) + "\"");
    }

    NSDictionary decodeDictionary(std::vector<Value>& keysAndValues) {
        std::vector<NSDictionary::Entry> entries;
        if (keysAndValues.size() % 2 != 0) fail("a key without a value");
        for (std::size_t index = 0; index + 1 < keysAndValues.size(); index += 2) {
            entries.emplace_back(std::move(keysAndValues[index]), std::move(keysAndValues[index + 1]));
        }
        return NSDictionary::dictionaryWithEntries(std::move(entries));
    }

    Value decodeReference(const NSNumber& number) {
        if (!number || number.isFloating() || number.integerValue() < 0) return fail("no such object");
        if (number.unsignedIntegerValue() >= decoded_.size()) return fail("no such object");
        const auto index = static_cast<std::size_t>(number.unsignedIntegerValue());
        Ref<NSObject>& object = decoded_[index];
        // Kept before it is filled, since its values may lead back to it.
        if (!object) object = decodeContents(objects_.objectAtIndex(index).as<NSDictionary>(), object);
        return object ? Value(object) : Value();
    }

    Ref<NSObject> decodeContents(const NSDictionary& contents, Ref<NSObject>& place) {
        std::string name = contents.objectForKey("class").as<NSString>().string();
        auto values = contents.objectForKey("values").as<NSDictionary>();
        Class objectClass = classFromName(name);
        Ref<NSObject> object = objectClass ? objectClass->create() : nullptr;
        auto* coding = dynamic_cast<NSCoding*>(object.get());
        if (!coding || !values) {
            fail("no object of a class that can be archived: \"" + name + "\"");
            return nullptr;
        }
        place = object;
        NSDictionary outer = std::exchange(current_, values);
        coding->initWithCoder(*this);
        current_ = outer;
        return object;
    }

    NSArray objects_;
    std::vector<Ref<NSObject>> decoded_;
    NSDictionary current_;
    int depth_ = 0;
    std::string failure_;
};

}  // namespace

Value NSKeyedUnarchiver::unarchiveObjectWithData(const NSData& data, Ref<NSError>* error) {
    Ref<NSError> damaged;
    auto archive = NSPropertyListSerialization::propertyListWithData(data, "archive", &damaged).as<NSDictionary>();
    Unarchiver unarchiver;
    Value root = unarchiver.decodeArchive(archive);
    if (!unarchiver.failed()) return root;
    std::string failure = damaged ? damaged->localizedDescription() : "archive: " + unarchiver.failure();
    if (error) *error = NSError::errorWithDomain(NSCocoaErrorDomain, NSCoderReadCorruptError, failure);
    return {};
}

}  // namespace flarebox
