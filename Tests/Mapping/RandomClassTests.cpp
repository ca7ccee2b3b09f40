// Fills objects of random classes from random documents, and again from values that are in no document: the two have to
// be told from each other by nothing that happens or is left.

#include "MappingTesting.h"

#include <Foundation/NSJSONSerialization.h>

#include <array>
#include <deque>
#include <map>
#include <random>
#include <utility>

namespace flarebox {
namespace {

constexpr std::size_t classCount = 5;
constexpr std::size_t fieldCount = 9;

/// What one random class declares besides its lines. The declarations of a class are read when its plan is made.
struct Declarations {
    ArrayClassMapping elementClasses;
    std::map<std::string, NSDictionary, std::less<>> valueMappings;
    bool setsUndefinedKeys = false;
};

std::array<const MotisClass*, classCount> classes;
std::map<const ClassInfo*, Declarations> declared;
const Declarations* beingRead = nullptr;
std::vector<std::string> events;

/// One of so many choices that depends on nothing but the text.
std::size_t choice(std::string_view text, std::size_t count) {
    std::uint32_t hash = 2166136261;
    for (const char character : text) hash = (hash ^ static_cast<unsigned char>(character)) * 16777619;
    return (hash >> 8) % count;
}

/// An object of any of the random classes. A hook that its class does not declare to override does what the root's
/// does.
class RandomObject : public MotisObject {
public:
    explicit RandomObject(std::size_t slot) : slot_(slot) {}
    const MotisClass& classInfo() const override { return *classes[slot_]; }
    const OverriddenHooks& hooks() const { return classInfo().hooks(); }

    Value a, b, c, d, e, f;
    bool flag = false;
    std::int64_t count = 0;
    double ratio = 0;

    std::string description() const override {
        std::string text(classInfo().name());
        for (const MotisClass* cls = &classInfo(); cls; cls = cls->modelSuperclass()) {
            for (const MotisProperty& line : cls->lines())
                text.append(" ").append(line.property.name).append("=") += line.property.get(*this).description();
        }
        return "<" + text + ">";
    }

    bool mts_validateValue(Value& value, std::string_view property, Ref<NSError>& error) override {
        if (!hooks().validatesValues) return MotisObject::mts_validateValue(value, property, error);
        note("validate", property, value);
        const std::size_t what = choice(value.description(), 8);
        if (what == 0) value = "replaced";
        if (what == 1) error = NSError::errorWithDomain("refused", 1, "refused");
        return what > 1 || what == 0;
    }
    bool mts_checkValueEqualityBeforeAssignmentForKey(std::string_view property) override {
        return hooks().checksEquality && choice(property, 2) == 0;
    }
    void mts_ignoredSetValueForUndefinedMappingKey(const Value& value, std::string_view key) override {
        if (hooks().hearsUndefinedKeys) note("undefined", key, value);
    }
    void mts_invalidValueForKey(const Value& value, std::string_view property, const Ref<NSError>& error) override {
        note(error ? "refused" : "invalid", property, value);
    }
    Ref<NSObject> mts_willCreateObjectOfClass(const ClassInfo& cls, const NSDictionary& dictionary,
                                              std::string_view property, bool& abort) override {
        if (!hooks().tendsNestedObjects) return nullptr;
        note("will create", property, dictionary);
        const std::size_t what = choice(dictionary.description(), 6);
        abort = what == 0;
        return what == 1 ? cls.create() : nullptr;
    }
    void mts_didCreateObject(NSObject& object, std::string_view property) override {
        if (hooks().tendsNestedObjects) note("did create", property, object.description().c_str());
    }
    bool mts_validateArrayObjectForArrayKey(Value& element, std::string_view property, Ref<NSError>&) override {
        if (!hooks().checksElements) return true;
        note("element", property, element);
        const std::size_t what = choice(element.description(), 8);
        if (what == 0) element = 7;
        if (what == 1) element = nullptr;
        return what != 2;
    }
    void mts_invalidValueForArrayKey(const Value& element, std::string_view property, const Ref<NSError>&) override {
        note("invalid element", property, element);
    }
    Value valueForKey(std::string_view key) const override {
        if (hooks().readsByName) events.push_back("read " + std::string(key));
        return MotisObject::valueForKey(key);
    }
    void setValue(const Value& value, std::string_view key) override {
        if (hooks().writesByName) note("write", key, value);
        MotisObject::setValue(value, key);
    }

private:
    void note(std::string_view what, std::string_view key, const Value& value) {
        events.push_back(std::string(classInfo().name()).append(": ").append(what).append(" ").append(key) + "=" +
                         value.description());
    }
    std::size_t slot_;
};

template <std::size_t Slot>
Ref<NSObject> create() {
    return make<RandomObject>(Slot);
}
template <std::size_t... Slots>
constexpr std::array<ClassInfo::Factory, classCount> factoriesOf(std::index_sequence<Slots...>) {
    return {&create<Slots>...};
}
constexpr auto factories = factoriesOf(std::make_index_sequence<classCount>());

std::array<MotisProperty, fieldCount> allLines() {
    using R = RandomObject;
    using detail::declareProperty;
    return {declareProperty<Value, &R::a>("a"),         declareProperty<Value, &R::b>("b"),
            declareProperty<Value, &R::c>("c"),         declareProperty<Value, &R::d>("d"),
            declareProperty<Value, &R::e>("e"),         declareProperty<Value, &R::f>("f"),
            declareProperty<bool, &R::flag>("flag"),    declareProperty<std::int64_t, &R::count>("count"),
            declareProperty<double, &R::ratio>("ratio")};
}

class Generator {
public:
    explicit Generator(unsigned seed) : random_(seed) {}

    /// New classes in all the slots, some below others of them. What a class is made of has to live on.
    void declareClasses() {
        static std::deque<std::string> names;
        static std::deque<MotisClass> all;
        declared.clear();
        const std::size_t firstName = names.size();
        for (std::size_t slot = 0; slot < classCount; ++slot) names.push_back("Random" + std::to_string(names.size()));
        for (std::size_t slot = 0; slot < classCount; ++slot) {
            const bool isBelowAnother = slot > 0 && one(3);
            const MotisClass& superclass = isBelowAnother ? *classes[below(slot)] : MotisObject::staticClass();
            MotisDeclarations declarations;
            declarations.arrayClassMapping = [] { return beingRead->elementClasses; };
            if (one(3))
                declarations.valueMappingForKey = [](std::string_view property) {
                    const auto found = beingRead->valueMappings.find(property);
                    return found == beingRead->valueMappings.end() ? NSDictionary() : found->second;
                };
            if (one(2)) declarations.shouldSetUndefinedKeys = [] { return beingRead->setsUndefinedKeys; };
            bool* const hooks[] = {&declarations.hooks.validatesValues,    &declarations.hooks.checksEquality,
                                   &declarations.hooks.readsByName,        &declarations.hooks.writesByName,
                                   &declarations.hooks.hearsUndefinedKeys, &declarations.hooks.checksElements,
                                   &declarations.hooks.tendsNestedObjects};
            for (bool* const hook : hooks) *hook = one(10);
            classes[slot] =
                &all.emplace_back(names[firstName + slot], superclass, factories[slot], lines(firstName), declarations);
        }
        for (const MotisClass* cls : classes) {
            Declarations& own = declared[cls];
            for (const char* property : {"a", "b", "c", "d", "e"}) {
                if (!one(4)) own.elementClasses[property] = elementClass();
                if (one(4)) own.valueMappings[property] = {{"word", 1}, {1, "one"}, {Value::null(), "other"}};
            }
            own.setsUndefinedKeys = one(2);
        }
        for (const MotisClass* cls : classes) {
            beingRead = &declared[cls];
            cls->plan();
        }
    }

    /// A JSON object with keys of the classes and others, some of them twice.
    std::string object(int depth) {
        std::string text = "{";
        for (std::size_t left = below(9); left > 0; --left) {
            text += text.size() > 1 ? "," : "";
            text += "\"" + std::string(keys[below(std::size(keys))]) + "\":" + value(depth - 1);
        }
        return text + "}";
    }

private:
    bool one(std::size_t in) { return below(in) == 0; }
    std::size_t below(std::size_t limit) { return random_() % limit; }
    template <class List>
    auto any(const List& list) {
        return list[below(std::size(list))];
    }

    Class elementClass() {
        const ClassInfo* const values[] = {&NSString::staticClass(), &NSNumber::staticClass(), &NSArray::staticClass()};
        return one(4) ? any(values) : any(classes);
    }

    std::vector<MotisProperty> lines(std::size_t firstName) {
        static std::deque<std::string> attributes;
        static const char* const valueClasses[] = {"NSString", "NSNumber",       "NSDate",       "NSURL",
                                                   "NSData",   "NSArray",        "NSSet",        "NSDictionary",
                                                   "NSArray",  "NSObject",       "NSOrderedSet", "NSMutableDictionary",
                                                   "NSArray",  "NSMutableArray", "NSArray",      "NSArray"};
        std::vector<MotisProperty> chosen;
        for (MotisProperty line : allLines()) {
            if (one(8)) continue;
            if (!one(5)) line.jsonKey = any(paths);
            if (line.field && !one(5)) {
                const std::string model = "Random" + std::to_string(firstName + below(classCount));
                attributes.push_back(detail::objectTypeAttribute(one(3) ? model : any(valueClasses)));
                line.property.typeAttribute = attributes.back();
            }
            chosen.push_back(line);
        }
        return chosen;
    }

    std::string value(int depth) {
        static const char* const scalars[] = {"null",
                                              "null",
                                              "true",
                                              "false",
                                              "0",
                                              "1",
                                              "-7",
                                              "2.5",
                                              "1e300",
                                              "\"\"",
                                              "\"1\"",
                                              "\"x\"",
                                              "\"word\"",
                                              "\"12.5\"",
                                              "-0.0",
                                              "\"é\"",
                                              "1e-7",
                                              "\"true\"",
                                              "\"a\\nb\"",
                                              "18446744073709551615",
                                              "-9223372036854775809",
                                              "\"http://host/path\"",
                                              "\"a text of more than sixteen bytes\""};
        if (depth <= 0 || one(3)) return any(scalars);
        if (one(2)) return object(depth);
        std::string text = "[";
        const bool isOfObjects = one(2);
        for (std::size_t left = below(5); left > 0; --left) {
            text += text.size() > 1 ? "," : "";
            text += isOfObjects && !one(6) ? object(depth - 1) : value(depth - 1);
        }
        return text + "]";
    }

    static constexpr std::string_view keys[] = {"k", "l", "m", "n", "a.b", "0", "-1", "a", "b", "flag", "stranger", ""};
    static constexpr std::string_view paths[] = {"k",      "l",      "m",   "n",    "k",       "l",     "m",
                                                 "n",      "k.l",    "k.0", "l.-1", "m.k.l",   "k.1.k", "n..k",
                                                 "l.0.-1", "k.word", "a.b", "0",    "m.0.l.k", "n.l"};
    std::mt19937 random_;
};

/// The same value with nothing of it in a document.
Value rebuilt(const Value& value) {
    if (const auto text = value.as<NSString>()) return Value(text.string());
    if (const auto array = value.as<NSArray>()) {
        std::vector<Value> elements;
        for (const Value& element : array) elements.push_back(rebuilt(element));
        return NSArray::arrayWithValues(std::move(elements));
    }
    const auto dictionary = value.as<NSDictionary>();
    if (!dictionary) return value;
    std::vector<NSDictionary::Entry> entries;
    for (const auto& [key, held] : dictionary.entries()) entries.emplace_back(rebuilt(key), rebuilt(held));
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}

/// What happens while an object of that class is filled with one after the other, and how it looks after each.
std::vector<std::string> eventsOf(std::size_t slot, const std::vector<Value>& dictionaries) {
    const Ref<NSObject> object = classes[slot]->create();
    events.clear();
    for (const Value& dictionary : dictionaries) {
        static_cast<RandomObject&>(*object).mts_setValuesForKeysWithDictionary(dictionary.as<NSDictionary>());
        events.push_back(object->description());
    }
    return std::exchange(events, {});
}

TEST(RandomClasses, AreFilledFromDocumentsAsFromValues) {
    Generator generator(7);
    for (int round = 0; round < 20; ++round) {
        generator.declareClasses();
        for (int i = 0; i < 12; ++i) {
            // Some objects are filled twice, from two documents or from two places of one.
            std::string text = "[" + generator.object(4) + "," + generator.object(4) + "]";
            const auto list = NSJSONSerialization::JSONObjectWithText(text, NSJSONReadingStrict, nullptr).as<NSArray>();
            ASSERT_EQ(list.count(), 2U) << text;
            for (std::size_t slot = 0; slot < classCount; ++slot) {
                std::vector<Value> dictionaries{list.objectAtIndex(0), list.objectAtIndex(1)};
                if (i % 2 == 0)
                    dictionaries[1] =
                        NSJSONSerialization::JSONObjectWithText(generator.object(3), NSJSONReadingStrict, nullptr);
                const auto fromDocuments = eventsOf(slot, dictionaries);
                for (Value& dictionary : dictionaries) dictionary = rebuilt(dictionary);
                ASSERT_EQ(fromDocuments, eventsOf(slot, dictionaries))
                    << "round " << round << ": " << dictionaries[0].description() << " then "
                    << dictionaries[1].description();
            }
        }
    }
}

}  // namespace
}  // namespace flarebox
