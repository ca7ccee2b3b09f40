#include "MappingTesting.h"

namespace flarebox {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Events = std::vector<std::string>;

class Unmapped : public RecordingModel {
    FLAREBOX_MODEL(Unmapped, RecordingModel, (name, setName, NSString), (count, setCount, int))
};

class MappedBelowUnmapped : public Unmapped {
    FLAREBOX_MODEL(MappedBelowUnmapped, Unmapped, (city, setCity, NSString, "town"))
};

class OpenMapped : public Unmapped {
    FLAREBOX_MODEL(OpenMapped, Unmapped, (city, setCity, NSString, "town"))
    static bool mts_shouldSetUndefinedKeys() { return true; }
};

TEST(Filling, WithoutAMappingEveryKeyIsThePropertyOfItsName) {
    const auto model = make<Unmapped>();
    EXPECT_THAT(model->eventsOf({{"name", "Cup"}, {"count", 3}, {"stranger", 1}}),
                ElementsAre("set name=Cup", "set count=3", "set stranger=1"));
    EXPECT_EQ(model->name(), "Cup");
    EXPECT_EQ(model->count(), 3);
}

TEST(Filling, AnyMappingSendsUnmappedKeysToTheHook) {
    const auto model = make<MappedBelowUnmapped>();
    EXPECT_THAT(model->eventsOf({{"name", "Cup"}, {"town", "Bern"}, {"city", Value::null()}}),
                ElementsAre("undefined name=Cup", "set city=Bern", "undefined city=<null>"));
    EXPECT_FALSE(model->name());

    const auto open = make<OpenMapped>();
    EXPECT_THAT(open->eventsOf({{"name", "Cup"}, {"town", "Bern"}}), ElementsAre("set name=Cup", "set city=Bern"));
}

class Paths : public RecordingModel {
    FLAREBOX_MODEL(Paths, RecordingModel, (a, setA, Value), (b, setB, Value), (c, setC, Value), (d, setD, Value),
                   (e, setE, Value))
    static NSDictionary mts_mapping() {
        return {{"items.1.id", "a"},  {"items.5.id", "b"}, {"items.name", "c"},   {"items.-1", "d"},
                {"user", "a"},        {"user.name", "b"},  {"user..deep", "c"},   {"plain.x", "e"},
                {"user.tags.0", "d"}, {"plain. 1", "c"},   {"nested.-2.id", "a"}, {"key.with.dots", "e"}};
    }
};

TEST(Filling, KeyPaths) {
    const NSDictionary first{{"id", 10}, {"name", "one"}, {"-1", "minus"}};
    const NSDictionary second{{"id", 20}};
    const auto model = make<Paths>();

    struct Case {
        const char* about;
        NSDictionary dictionary;
        Events expected;
    };
    const Case cases[] = {
        {"indexes, an index past the end, a name on an array, a negative index; then the key itself",
         {{"items", NSArray{first, second}}},
         {"set a=20", "set c=" + first.description(), "set d=" + NSArray{"minus", Value::null()}.description(),
          "undefined items=" + NSArray{first, second}.description()}},
        {"a plain mapping is assigned once, besides the paths that lead somewhere",
         {{"user", NSDictionary{{"name", "Ada"}, {"", NSDictionary{{"deep", 1}}}}}},
         {"set a=" + NSDictionary{{"name", "Ada"}, {"", NSDictionary{{"deep", 1}}}}.description(), "set b=Ada",
          "set c=1"}},
        {"a null at the end is a value, a missing entry is none, a text is no container",
         {{"user", NSDictionary{{"name", Value::null()}, {"tags", "text"}}}},
         {"set a=" + NSDictionary{{"name", Value::null()}, {"tags", "text"}}.description(), "set b=(null)"}},
        {"only dotted mappings: the key is offered whole too", {{"plain", 7}}, {"undefined plain=7"}},
        {"blanks before an index",
         {{"plain", NSArray{1, 2}}},
         {"set e=1", "set c=2", "undefined plain=" + NSArray{1, 2}.description()}},
        {"arrays of arrays under a negative index",
         {{"nested", NSArray{NSArray{first}, "text"}}},
         {"set a=" + NSArray{Value::null()}.description(),
          "undefined nested=" + NSArray{NSArray{first}, "text"}.description()}},
        {"a top-level key that looks like a path", {{"key.with.dots", "whole"}}, {"set e=whole"}},
        {"nothing", {}, {}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.about);
        Events events = model->eventsOf(test.dictionary);
        EXPECT_EQ(events, test.expected);
    }
}

TEST(Filling, AnEndlessIndexIsPastTheEnd) {
    EXPECT_EQ(MTSKeyPath::initWithKeyPath("a.99999999999999999999.b").furtherComponents()[0].index, INT64_MAX);
}

TEST(KeyPath, SplitsAtEveryDot) {
    struct Case {
        const char* key;
        Events components;
    };
    for (const Case& test :
         {Case{"a", {"a"}}, {"a.b", {"a", "b"}}, {"a..b", {"a", "", "b"}}, {".", {"", ""}}, {"", {""}}}) {
        const MTSKeyPath path = MTSKeyPath::initWithKeyPath(test.key);
        Events names{std::string(path.firstComponent())};
        for (const auto& component : path.furtherComponents()) names.emplace_back(component.name);
        EXPECT_EQ(names, test.components);
        EXPECT_EQ(path.key(), test.key);
    }
}

class Base : public RecordingModel {
    FLAREBOX_MODEL(Base, RecordingModel, (first, setFirst, Value, "key"), (second, setSecond, Value))
};

class Overriding : public Base {
    FLAREBOX_MODEL(Overriding, Base)
    static NSDictionary mts_mapping() { return {{"key", "second"}, {"more", "first"}}; }
};

class SilentBase : public RecordingModel {
    FLAREBOX_MODEL(SilentBase, RecordingModel, (first, setFirst, Value, "key"))
};
class SilentHeir : public SilentBase {
    FLAREBOX_MODEL(SilentHeir, SilentBase, (third, setThird, Value))
};

TEST(Filling, ASubclassOverridesAndInherits) {
    const auto model = make<Overriding>();
    model->mts_setValuesForKeysWithDictionary({{"key", 1}});
    EXPECT_FALSE(model->first());
    EXPECT_EQ(model->second(), Value(1));
    EXPECT_EQ(Overriding::staticClass().mts_cachedMapping(), (NSDictionary{{"key", "second"}, {"more", "first"}}));
    EXPECT_EQ(model->mts_mapKey("key"), "second");
    EXPECT_FALSE(model->mts_mapKey("second"));

    EXPECT_THAT(make<SilentHeir>()->eventsOf({{"key", 1}, {"third", 2}}),
                ElementsAre("set first=1", "undefined third=2"));
}

TEST(Filling, OneValueByKeyOrPath) {
    const auto model = make<Paths>();
    model->mts_setValue("direct", "user.name");
    EXPECT_EQ(model->b(), Value("direct"));
    model->mts_setValue(Value::null(), "user.name");
    EXPECT_TRUE(model->b().isAbsent());
    EXPECT_EQ(model->mts_mapKey("user.name"), "b");
}

TEST(Filling, ADictionaryMayChangeWhileItIsRead) {
    static NSMutableDictionary shared = NSMutableDictionary::dictionary();
    class Emptying : public RecordingModel {
    public:
        void mts_ignoredSetValueForUndefinedMappingKey(const Value& value, std::string_view key) override {
            RecordingModel::mts_ignoredSetValueForUndefinedMappingKey(value, key);
        }
        void setValue(const Value& value, std::string_view key) override {
            shared.removeObjectForKey("b");
            RecordingModel::setValue(value, key);
        }
    };
    shared.setObject(1, "a");
    shared.setObject(2, "b");
    shared.setObject(3, 4);
    const auto model = make<Emptying>();
    EXPECT_THAT(model->eventsOf(shared), ElementsAre("set a=1", "set b=2", "undefined 4=3"));
}

// --- Hooks ---

class Hooked : public RecordingModel {
    FLAREBOX_MODEL(Hooked, RecordingModel, (text, setText, NSString, "text"), (number, setNumber, NSNumber, "number"),
                   (flag, setFlag, bool, "flag"), (list, setList, NSArray, "list"),
                   (other, setOther, NSString, "path.to.other"))

    static NSDictionary mts_valueMappingForKey(std::string_view property) {
        if (property == "text") return {{"swap", 99}, {Value::null(), "fallback"}};
        return nullptr;
    }
    bool mts_validateValue(Value& value, std::string_view property, Ref<NSError>& error) override {
        note("validate", property, value);
        if (value == Value("copy")) value = Value(std::string("copy"));
        if (value == Value("replace")) value = 5;
        if (value == Value("refuse")) error = NSError::errorWithDomain("test", 1, "refused");
        if (value == Value("worry")) error = NSError::errorWithDomain("test", 1, "not told");
        return value != Value("refuse");
    }
    bool mts_checkValueEqualityBeforeAssignmentForKey(std::string_view property) override {
        return property != "number";
    }
};

TEST(Hooks, DecideAboutEachValue) {
    const auto model = make<Hooked>();
    struct Case {
        const char* about;
        const char* key;
        Value value;
        Events expected;
    };
    const Case cases[] = {
        {"replaced: neither translated nor converted",
         "number",
         "replace",
         {"validate number=replace", "set number=5"}},
        {"replaced by an equal text", "number", "copy", {"validate number=copy", "set number=copy"}},
        {"translated: not converted", "text", "swap", {"validate text=swap", "set text=99"}},
        {"fallback for what matches nothing", "text", "other", {"validate text=other", "set text=fallback"}},
        {"an equal value is not assigned again", "text", "other", {"validate text=other"}},
        {"the fallback stands for a null too; still equal", "text", Value::null(), {"validate text=(null)"}},
        {"without the equality check it is", "number", "copy", {"validate number=copy", "set number=copy"}},
        {"refused with an error", "number", "refuse", {"validate number=refuse", "invalid number=refuse (refused)"}},
        {"refused by the conversion, which has no error",
         "flag",
         emptyArray(),
         {"validate flag=" + emptyArray().description(), "invalid flag=" + emptyArray().description()}},
        {"converted", "number", "12", {"validate number=12", "set number=12"}},
        {"a null clears", "number", Value::null(), {"validate number=(null)", "set number=(null)"}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.about);
        EXPECT_EQ(model->eventsOf({{test.key, test.value}}), test.expected);
    }
    EXPECT_THAT(model->eventsOf({{"path", NSDictionary{{"to", NSDictionary{{"other", 1.5}}}}}}),
                ElementsAre("validate other=1.5", "set other=1.5", testing::StartsWith("undefined path=")));
    // The current value is read through the mapping of the key that came in.
    EXPECT_THAT(model->eventsOf({{"path", NSDictionary{{"to", NSDictionary{{"other", 1.5}}}}}}),
                ElementsAre("validate other=1.5", testing::StartsWith("undefined path=")));
}

TEST(Hooks, AnErrorOfAnAcceptingHookIsNotThatOfTheConversion) {
    EXPECT_THAT(make<Hooked>()->eventsOf({{"list", "worry"}}),
                ElementsAre("validate list=worry", "invalid list=worry"));
}

class SelfChecking : public RecordingModel {
    FLAREBOX_MODEL(SelfChecking, RecordingModel, (age, setAge, int, "age"), (name, setName, NSString, "name"))
    static std::vector<PropertyValidator> validators() { return {validator<&SelfChecking::checkAge>("age")}; }
    bool checkAge(Value& value, Ref<NSError>& error) {
        const int age = value.as<NSNumber>().intValue();
        if (age > 150) value = 150;
        if (age < 0) error = NSError::errorWithDomain("test", 2, "unborn");
        return age >= 0;
    }
};

class SelfCheckingHeir : public SelfChecking {
    FLAREBOX_MODEL(SelfCheckingHeir, SelfChecking)
    bool checkName(Value&, Ref<NSError>&) { return false; }
    static std::vector<PropertyValidator> validators() { return {validator<&SelfCheckingHeir::checkName>("name")}; }
};

TEST(Hooks, ValidatorsOfSingleProperties) {
    EXPECT_THAT(make<SelfChecking>()->eventsOf({{"age", 200}, {"age", 200}, {"name", "x"}}),
                ElementsAre("set age=150", "set name=x"));
    EXPECT_THAT(make<SelfChecking>()->eventsOf({{"age", -1}}), ElementsAre("invalid age=-1 (unborn)"));
    EXPECT_THAT(make<SelfCheckingHeir>()->eventsOf({{"age", -1}, {"name", "x"}}),
                ElementsAre("invalid age=-1 (unborn)", "invalid name=x"));
}

/// Overrides hooks without recording assignments, so that the shortest way through the engine is not taken by accident.
class Equal : public MotisObject {
    FLAREBOX_MODEL(Equal, MotisObject, (text, setText, NSString, "text"))
    bool mts_checkValueEqualityBeforeAssignmentForKey(std::string_view) override { return true; }
};

TEST(Hooks, EqualityKeepsTheVeryObject) {
    const auto model = make<Equal>();
    const NSString first(std::string("a text long enough to live in memory of its own"));
    model->setText(first);
    model->mts_setValuesForKeysWithDictionary({{"text", Value(first.string())}});
    EXPECT_TRUE(model->text().isSameAs(first));
    model->mts_setValuesForKeysWithDictionary({{"text", Value::null()}});
    EXPECT_FALSE(model->text());
    model->mts_setValuesForKeysWithDictionary({{"text", "new"}});
    EXPECT_EQ(model->text(), "new");
}

// --- Value mappings ---

class Translated : public MotisObject {
    FLAREBOX_MODEL(Translated, MotisObject, (p, setP, Value, "p"), (q, setQ, Value, "q"), (r, setR, Value, "r"))
    static NSDictionary mts_valueMappingForKey(std::string_view property) {
        if (property == "p")
            return {{2, "two"}, {"3", "three"}, {0.5, "half"}, {0.1, "tenth"}, {0, "zero"}, {"on", true}};
        if (property == "q") return {{"x", "base"}, {"y", "base"}};
        return nullptr;
    }
};

class TranslatedHeir : public Translated {
    FLAREBOX_MODEL(TranslatedHeir, Translated)
    static NSDictionary mts_valueMappingForKey(std::string_view property) {
        if (property == "q") return {{"x", "heir"}, {Value::null(), Value::null()}};
        return nullptr;
    }
};

TEST(ValueMapping, ReadsNumbersAndTextsAsEachOther) {
    const auto model = make<Translated>();
    struct Case {
        Value value;
        Value expected;
    };
    const Case cases[] = {
        {2, "two"},
        {2.0, "two"},
        {"2", "two"},
        {"2.0", "two"},
        {3, "three"},
        {"3", "three"},
        {0.5, "half"},
        {"0.5", "half"},
        {0.1, "tenth"},
        {"0.1", "zero"},
        {"2.9", "two"},
        {"abc", "zero"},
        {"on", true},
        {4, 4},
        {"4", "4"},
        {true, true},
        {false, "zero"},
        {nullptr, nullptr},
        {NSArray{1}, NSArray{1}},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(model->mts_mapValue(test.value, "p"), test.expected) << test.value.description();
    }
    const Value untouched(std::string("a text that no table knows, and that is its own object"));
    EXPECT_TRUE(model->mts_mapValue(untouched, "r").isSameAs(untouched));
    EXPECT_TRUE(model->mts_mapValue(untouched, "no property").isSameAs(untouched));
}

TEST(ValueMapping, MergesAlongTheHierarchy) {
    const auto model = make<TranslatedHeir>();
    model->mts_setValuesForKeysWithDictionary({{"p", "2"}, {"q", "x"}});
    EXPECT_EQ(model->p(), Value("two"));
    EXPECT_EQ(model->q(), Value("heir"));
    EXPECT_EQ(model->mts_mapValue("y", "q"), Value("base"));
    // A null that comes out of a table is a value like any other.
    model->mts_setValuesForKeysWithDictionary({{"q", "unknown"}});
    EXPECT_TRUE(model->q().isNull());
    EXPECT_EQ(make<Translated>()->mts_mapValue("x", "q"), Value("base"));

    const MotisClass& cls = TranslatedHeir::staticClass();
    EXPECT_TRUE(cls.mts_cachedValueMappingForKey("q").isSameAs(cls.mts_cachedValueMappingForKey("q")));
    EXPECT_TRUE(cls.mts_cachedValueMappingForKey("r"));
    EXPECT_EQ(cls.mts_cachedValueMappingForKey("r").count(), 0U);
}

}  // namespace
}  // namespace flarebox
