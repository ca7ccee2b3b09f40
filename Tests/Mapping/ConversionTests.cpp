#include "MappingTesting.h"

#include <Flarebox/Mapping/TypeAttribute.h>
#include <Foundation/NSDateFormatter.h>

#include <cmath>
#include <limits>

namespace flarebox {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr double infinity = std::numeric_limits<double>::infinity();

class Child : public MotisObject {
    FLAREBOX_MODEL(Child, MotisObject, (id, setId, NSNumber, "id"), (child, setChild, Ref<Child>, "child"))
};

class AllTypes : public RecordingModel {
    FLAREBOX_MODEL(AllTypes, RecordingModel, (flag, setFlag, bool), (int8, setInt8, std::int8_t),
                   (int32, setInt32, std::int32_t), (int64, setInt64, std::int64_t), (uint8, setUint8, std::uint8_t),
                   (uint64, setUint64, std::uint64_t), (single, setSingle, float), (real, setReal, double),
                   (text, setText, NSString), (number, setNumber, NSNumber), (date, setDate, NSDate),
                   (url, setUrl, NSURL), (data, setData, NSData), (array, setArray, NSArray),
                   (marray, setMarray, NSMutableArray), (set, setSet, NSSet), (mset, setMset, NSMutableSet),
                   (oset, setOset, NSOrderedSet), (moset, setMoset, NSMutableOrderedSet), (dict, setDict, NSDictionary),
                   (mdict, setMdict, NSMutableDictionary), (any, setAny, Value), (child, setChild, Ref<Child>),
                   (unknown, setUnknown, Declared<"NobodyRegisteredThis">), (object, setObject, Declared<"NSObject">),
                   (listed, setListed, Declared<"NSArray<One><Two>">))
};

/// The value of the property before, and what stays there when a value is refused.
Value initialValueOf(const Property& property) {
    if (mts_isClassTypeTypeAttribute(property.typeAttribute)) return "initial";
    return property.typeAttribute == "TB" ? Value(true) : Value(42);
}

TEST(Conversion, ByDeclaredType) {
    struct Case {
        const char* property;
        Value value;
        Value expected;  // absent: refused
    };
    const NSDictionary entries{{"id", 7}};
    const NSArray list{1, "two", Value::null(), 1};
    const NSArray checkedList{1, "two", 1};
    const Case cases[] = {
        {"flag", "TRUE", true},
        {"flag", "False", false},
        {"flag", "0.0", false},
        {"flag", "2", true},
        {"flag", "abc", false},
        {"flag", "", false},
        {"flag", 5, true},
        {"flag", 0.0, false},
        {"flag", "-0.5x", true},
        {"flag", list, nullptr},
        {"flag", entries, nullptr},
        {"flag", NSDate::dateWithTimeIntervalSince1970(1), nullptr},

        {"uint64", "12", 12},
        {"uint64", "12.5", nullptr},
        {"uint64", "12a", nullptr},
        {"uint64", "1E5", nullptr},
        {"uint64", "1e300", nullptr},
        {"uint64", "", nullptr},
        {"uint64", "18446744073709551615", UINT64_MAX},
        {"uint64", UINT64_MAX, UINT64_MAX},
        {"uint64", -1, 0},
        {"uint64", 12.9, 12},
        {"uint64", list, nullptr},

        {"int32", "12", 12},
        {"int32", "12abc", 12},
        {"int32", "abc", 0},
        {"int32", "  -7", -7},
        {"int32", "", 0},
        {"int32", 4294967296, INT32_MAX},
        {"int32", "99999999999", INT32_MAX},
        {"int32", -1e300, INT32_MIN},
        {"int32", std::nan(""), 0},
        {"int32", true, 1},
        {"int32", entries, nullptr},
        {"int8", 300, 127},
        {"int8", "-300", -128},
        {"uint8", "300", 255},
        {"uint8", "-3", 0},
        {"uint8", -3, 0},
        {"int64", "9223372036854775807", INT64_MAX},
        {"int64", "9007199254740993", 9007199254740993},
        {"int64", UINT64_MAX, INT64_MAX},
        {"real", "1.5e3 m", 1500},
        {"real", 0.1, 0.1},
        {"real", "x", 0},
        {"single", 1e300, infinity},
        {"single", "-1e300", -infinity},
        {"single", "0.5", 0.5},

        {"text", 12, "12"},
        {"text", 1.5, "1.5"},
        {"text", "as is", "as is"},
        {"text", list, nullptr},
        {"text", entries, nullptr},
        {"text", UINT64_MAX, "18446744073709551615"},
        {"text", NSDate::dateWithTimeIntervalSince1970(1), nullptr},

        {"number", "true", true},
        {"number", "FALSE", false},
        {"number", " 2.5 kg", 2.5},
        {"number", "many", 0},
        {"number", "", 0},
        {"number", true, true},
        {"number", list, nullptr},
        {"number", entries, nullptr},

        {"date", 86400, NSDate::dateWithTimeIntervalSince1970(86400)},
        {"date", 0.25, NSDate::dateWithTimeIntervalSince1970(0.25)},
        {"date", "86400", NSDate::dateWithTimeIntervalSince1970(86400)},
        {"date", "", NSDate::dateWithTimeIntervalSince1970(0)},
        {"date", "1,5", NSDate::dateWithTimeIntervalSince1970(1)},
        {"date", ".5.5", NSDate::dateWithTimeIntervalSince1970(0.5)},
        {"date", "2026-01-01", nullptr},
        {"date", "2026-01-01T00:00:00Z", nullptr},
        {"date", "1e3", nullptr},
        {"date", "-1", nullptr},
        {"date", " 1", nullptr},
        {"date", entries, nullptr},

        {"url", "https://example.test/a?b=c", NSURL::URLWithString("https://example.test/a?b=c")},
        {"url", 3, nullptr},
        {"data", "aGVsbG8=", NSData::dataWithBytes("hello")},
        {"data", "aG Vs\nbG8=", NSData::dataWithBytes("hello")},
        {"data", 3, nullptr},

        {"array", list, checkedList},
        {"array", emptyArray(), emptyArray()},
        {"array", entries, nullptr},
        {"array", "a", nullptr},
        {"marray", list, checkedList},
        {"marray", emptyDictionary(), nullptr},
        {"set", list, NSSet::setWithValues(NSArray{1, "two"}.elements())},
        {"mset", list, NSMutableSet::setWithValues(NSArray{1, "two"}.elements())},
        {"oset", list, NSOrderedSet::orderedSetWithValues(NSArray{1, "two"}.elements())},
        {"moset", list, NSMutableOrderedSet::orderedSetWithValues(NSArray{1, "two"}.elements())},
        {"set", entries, nullptr},
        {"dict", entries, entries},
        {"dict", list, nullptr},
        {"mdict", entries, entries},
        {"listed", list, checkedList},
        {"listed", 1, nullptr},

        {"any", "text", "text"},
        {"any", list, list},
        {"any", entries, entries},
        {"unknown", "text", nullptr},
        {"unknown", 1, nullptr},
        {"unknown", entries, nullptr},
        {"unknown", list, nullptr},
        {"object", "text", "text"},
        {"object", entries, entries},
        {"object", list, nullptr},
        {"child", "text", nullptr},
        {"child", 1, nullptr},
        {"child", list, nullptr},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(std::string(test.property) + " <- " + test.value.description());
        const auto model = make<AllTypes>();
        const Property* property = AllTypes::staticClass().property(test.property);
        ASSERT_TRUE(property);
        const Value initial = initialValueOf(*property);
        property->set(*model, initial);
        const auto events = model->eventsOf({{test.property, test.value}});
        EXPECT_EQ(model->valueForKey(test.property), test.expected ? test.expected : initial);
        ASSERT_EQ(events.size(), 1U);
        EXPECT_THAT(events[0], testing::StartsWith(test.expected ? "set " : "invalid "));
    }
}

TEST(Conversion, EveryPropertyTakesAnAbsentValue) {
    const auto model = make<AllTypes>();
    for (const MotisProperty& line : AllTypes::staticClass().lines()) {
        const std::string name(line.property.name);
        line.property.set(*model, initialValueOf(line.property));
        EXPECT_THAT(model->eventsOf({{NSString(name), Value::null()}}), ElementsAre("set " + name + "=(null)"));
        EXPECT_EQ(model->valueForKey(name), line.field ? Value() : Value(0)) << name;
    }
}

TEST(Conversion, RefusalsTellWhatBecameOfTheValue) {
    const auto model = make<AllTypes>();
    struct Case {
        const char* property;
        Value value;
        Value told;
    };
    const Case cases[] = {
        {"uint64", "12a", nullptr},
        {"url", "not a link at all", nullptr},
        {"data", "====A", nullptr},
        {"date", "tomorrow", "tomorrow"},
        {"text", NSArray{1, Value::null()}, NSArray{1, Value::null()}},
        {"unknown", 1, 1},
        {"child", emptyArray(), emptyArray()},
    };
    for (const Case& test : cases) {
        EXPECT_THAT(model->eventsOf({{test.property, test.value}}),
                    ElementsAre(std::string("invalid ") + test.property + "=" + test.told.description()));
    }
}

TEST(Conversion, MutableCollectionsAreCopies) {
    const auto model = make<AllTypes>();
    const NSArray list{1, 2};
    const NSDictionary entries{{"id", 7}};
    model->mts_setValuesForKeysWithDictionary({{"marray", list}, {"mdict", entries}});
    model->marray().addObject(3);
    model->mdict().setObject(8, "id");
    EXPECT_EQ(list.count(), 2U);
    EXPECT_EQ(entries.objectForKey("id"), Value(7));
    EXPECT_EQ(model->marray().count(), 3U);

    // What is handed in stays changeable by whoever made it, so an immutable property gets a copy.
    NSMutableArray growing = NSMutableArray::array();
    growing.addObject(1);
    model->mts_setValue(growing, "array");
    growing.addObject(2);
    EXPECT_EQ(model->array().count(), 1U);
}

class Dated : public RecordingModel {
    FLAREBOX_MODEL(Dated, RecordingModel, (day, setDay, NSDate, "day"))
    static Ref<NSDateFormatter> mts_validationDateFormatter() {
        auto formatter = make<NSDateFormatter>();
        formatter->setLocale("en_US_POSIX");
        formatter->setTimeZone("UTC");
        formatter->setDateFormat("yyyy-MM-dd");
        return formatter;
    }
};
class DatedHeir : public Dated {
    FLAREBOX_MODEL(DatedHeir, Dated, (night, setNight, NSDate, "night"))
};

TEST(Conversion, WithADateFormatterOnlyItsReadingCounts) {
    const auto model = make<DatedHeir>();
    EXPECT_THAT(model->eventsOf({{"day", "86400"}, {"night", "tonight"}}),
                ElementsAre("invalid day=(null)", "invalid night=(null)"));
    model->mts_setValuesForKeysWithDictionary({{"day", "1970-01-02"}, {"night", 5}});
    EXPECT_EQ(model->day().timeIntervalSince1970(), 86400);
    EXPECT_EQ(model->night().timeIntervalSince1970(), 5);
}

// --- Nested objects ---

class Parent : public RecordingModel {
    FLAREBOX_MODEL(Parent, RecordingModel, (child, setChild, Ref<Child>, "child"),
                   (children, setChildren, NSArray, "children"), (family, setFamily, NSSet, "family"),
                   (dates, setDates, NSArray, "dates"))
    static ArrayClassMapping mts_arrayClassMapping() {
        return {
            {"children", &Child::staticClass()}, {"family", &Child::staticClass()}, {"dates", &NSDate::staticClass()}};
    }
    Ref<NSObject> mts_willCreateObjectOfClass(const ClassInfo& cls, const NSDictionary& dictionary,
                                              std::string_view property, bool& abort) override {
        note("will create " + std::string(cls.name()), property, dictionary);
        abort = dictionary.objectForKey("abort").as<NSNumber>().boolValue();
        return dictionary.objectForKey("given") ? given : nullptr;
    }
    void mts_didCreateObject(NSObject& object, std::string_view property) override {
        auto* child = objectCast<Child>(&object);
        note("did create", property, child ? Value(child->id()) : Value("stranger"));
    }
    bool mts_validateArrayObjectForArrayKey(Value& element, std::string_view property, Ref<NSError>& error) override {
        note("element", property, element);
        if (element == Value("bad")) error = NSError::errorWithDomain("test", 3, "bad element");
        if (element == Value("self")) element = Value(make<Child>());
        if (element == Value("gone")) element = nullptr;
        return element != Value("bad");
    }
    Ref<NSObject> given = make<NSObject>();
};

TEST(Nested, ObjectsAreMadeFilledAndAnnounced) {
    const auto parent = make<Parent>();
    const NSDictionary deep{{"id", 1}, {"child", NSDictionary{{"id", 2}, {"child", emptyDictionary()}}}};
    EXPECT_THAT(parent->eventsOf({{"child", deep}}),
                ElementsAre("will create Child child=" + deep.description(), "did create child=1",
                            testing::StartsWith("set child=")));
    ASSERT_TRUE(parent->child() && parent->child()->child());
    EXPECT_EQ(parent->child()->child()->id(), Value(2));
    EXPECT_FALSE(parent->child()->child()->child()->id());

    const Ref<Child> before = parent->child();
    const NSDictionary aborted{{"abort", true}};
    EXPECT_THAT(parent->eventsOf({{"child", aborted}}), ElementsAre("will create Child child=" + aborted.description(),
                                                                    "invalid child=" + aborted.description()));
    EXPECT_EQ(parent->child(), before);

    // An object of the hook's own making is taken as it is, whatever its class.
    const NSDictionary given{{"given", 1}, {"id", 5}};
    EXPECT_THAT(parent->eventsOf({{"child", given}}),
                ElementsAre(testing::_, "did create child=stranger", testing::StartsWith("set child=")));
    EXPECT_EQ(parent->valueForKey("child").object(), parent->given.get());
    EXPECT_FALSE(parent->child());

    parent->mts_setValue(Value(before), "child");
    EXPECT_EQ(parent->child(), before) << "an object of the class is no JSON object to be made into one";
}

TEST(Nested, ElementsAreVisitedFromTheEnd) {
    const auto parent = make<Parent>();
    const NSDictionary one{{"id", 1}}, two{{"id", 2}}, aborted{{"abort", true}};
    const auto events =
        parent->eventsOf({{"children", NSArray{one, "x", Value::null(), aborted, "bad", two, "self", "gone"}}});
    EXPECT_THAT(
        events,
        ElementsAre("element children=gone", "element children=self", "element children=" + two.description(),
                    "will create Child children=" + two.description(), "did create children=2", "element children=bad",
                    "invalid element children=bad (bad element)", "element children=" + aborted.description(),
                    "will create Child children=" + aborted.description(),
                    "invalid element children=" + aborted.description(), "element children=(null)",
                    "element children=x", "invalid element children=x", "element children=" + one.description(),
                    "will create Child children=" + one.description(), "did create children=1",
                    testing::StartsWith("set children=")));
    ASSERT_EQ(parent->children().count(), 3U);
    EXPECT_EQ(parent->children().objectAtIndex(0).object<Child>()->id(), Value(1));
    EXPECT_EQ(parent->children().objectAtIndex(1).object<Child>()->id(), Value(2));
    EXPECT_FALSE(parent->children().objectAtIndex(2).object<Child>()->id());

    parent->mts_setValuesForKeysWithDictionary({{"family", NSArray{one, one}}, {"dates", NSArray{1, "2", "never"}}});
    EXPECT_EQ(parent->family().count(), 2U) << "two objects of their own";
    EXPECT_EQ(parent->dates(),
              (NSArray{NSDate::dateWithTimeIntervalSince1970(1), NSDate::dateWithTimeIntervalSince1970(2)}));
}

TEST(Nested, AnArrayThatNeedsNoChangeStaysTheSame) {
    const auto parent = make<Parent>();
    const NSArray original{Value(make<Child>())};
    NSArray array = original;
    parent->mts_validateArrayContent(array, "children");
    EXPECT_TRUE(array.isSameAs(original));
    NSArray loose{1, emptyArray()};
    const NSArray before = loose;
    parent->mts_validateArrayContent(loose, "no such property");
    EXPECT_TRUE(loose.isSameAs(before));
}

TEST(Nested, ElementClassAgainstItself) {
    const auto parent = make<Parent>();
    // The property's element class serves arrays within arrays too, since it goes by the property's name.
    Value value = NSDictionary{{"id", 3}};
    EXPECT_TRUE(parent->mts_validateAutomaticallyValue(value, Child::staticClass(), "anything"));
    ASSERT_TRUE(value.object<Child>());
    EXPECT_EQ(value.object<Child>()->id(), Value(3));
    value = Value::null();
    EXPECT_FALSE(parent->mts_validateAutomaticallyValue(value, Child::staticClass(), "anything"));
    value = nullptr;
    EXPECT_TRUE(parent->mts_validateAutomaticallyValue(value, "child"));
    value = "anything";
    EXPECT_TRUE(parent->mts_validateAutomaticallyValue(value, "no such property"));
}

// --- Type attributes ---

TEST(TypeAttribute, NamesOfClassAndProtocols) {
    using Names = std::vector<std::string>;
    struct Case {
        const char* attribute;
        std::optional<std::string> className;
        std::optional<Names> protocols;
    };
    const Case cases[] = {
        {"T@\"NSString\"", "NSString", Names{}},
        {"T@\"NSArray<A><B>\"", "NSArray", Names{"A"}},
        {"T@\"NSArray< A, B >\"", "NSArray", Names{"A", "B"}},
        {"T@\"<A>\"", "", Names{"A"}},
        {"T@\"NSArray<>\"", "NSArray", Names{""}},
        {"T@\"NSArray<A\"", "NSArray", Names{"A"}},
        {"T@", "", std::nullopt},
        {"T@\"", "", std::nullopt},
        {"TB", std::nullopt, std::nullopt},
        {"Tq", std::nullopt, std::nullopt},
        {"T", std::nullopt, std::nullopt},
        {"", std::nullopt, std::nullopt},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.attribute);
        const MTSClassType type = mts_getClassName(test.attribute);
        EXPECT_EQ(type.className, test.className);
        EXPECT_EQ(type.protocols, test.protocols);
        EXPECT_EQ(mts_isClassTypeTypeAttribute(test.attribute), test.className.has_value());
    }
}

TEST(TypeAttribute, OfProperties) {
    const MotisClass& cls = DatedHeir::staticClass();
    EXPECT_EQ(cls.mts_typeAttributeForKey("day"), "T@\"NSDate\"");
    EXPECT_EQ(cls.mts_typeAttributeForKey("nothing"), "");
    const std::pair<const char*, const char*> attributes[] = {{"flag", "TB"},
                                                              {"int8", "Tc"},
                                                              {"int32", "Ti"},
                                                              {"int64", "Tq"},
                                                              {"uint8", "TC"},
                                                              {"uint64", "TQ"},
                                                              {"single", "Tf"},
                                                              {"real", "Td"},
                                                              {"any", "T@"},
                                                              {"child", "T@\"Child\""},
                                                              {"listed", "T@\"NSArray<One><Two>\""}};
    for (const auto& [name, attribute] : attributes)
        EXPECT_EQ(AllTypes::staticClass().mts_typeAttributeForKey(name), attribute);
}

}  // namespace
}  // namespace flarebox
