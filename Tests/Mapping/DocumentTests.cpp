#include "MappingTesting.h"

#include <Foundation/NSJSONSerialization.h>

#include <random>
#include <thread>

namespace flarebox {
namespace {

class Leaf : public RecordingModel {
    FLAREBOX_MODEL(Leaf, RecordingModel, (a, setA, NSString, "a"), (b, setB, NSNumber, "b"))
    std::string description() const override { return "leaf " + a().description() + "/" + b().description(); }
};

#define FIELDS                                                                                                   \
    (text, setText, NSString, "text"), (number, setNumber, NSNumber, "number"), (date, setDate, NSDate, "date"), \
        (flag, setFlag, bool, "flag"), (count, setCount, std::int64_t, "count"), (any, setAny, Value, "any"),    \
        (table, setTable, NSDictionary, "table"), (list, setList, NSArray, "list"),                              \
        (leaf, setLeaf, Ref<Leaf>, "leaf"), (deep, setDeep, NSString, "table.inner.a"),                          \
        (second, setSecond, Value, "list.1"), (every, setEvery, NSArray, "list.-1"),                             \
        (long_, setLong, NSString, "a_key_of_more_than_twenty_characters")

/// Overrides nothing, so that it takes every short way there is.
class Quiet : public MotisObject {
    FLAREBOX_MODEL(Quiet, MotisObject, FIELDS)
};
/// Hears of unknown keys and refused values, but lets fields be written directly.
class Listening : public MotisObject {
    FLAREBOX_MODEL(Listening, MotisObject, FIELDS)
    std::vector<std::string> heard;
    void mts_ignoredSetValueForUndefinedMappingKey(const Value& value, std::string_view key) override {
        heard.push_back("undefined " + std::string(key) + "=" + value.description());
    }
    void mts_invalidValueForKey(const Value& value, std::string_view property, const Ref<NSError>&) override {
        heard.push_back("invalid " + std::string(property) + "=" + value.description());
    }
};
class Noting : public RecordingModel {
    FLAREBOX_MODEL(Noting, RecordingModel, FIELDS)
};
#undef FIELDS

/// The same entries in a dictionary that is of no document.
NSDictionary rebuilt(const NSDictionary& dictionary) {
    return dictionary.mutableCopy().copy();
}

std::string content(const MotisObject& object) {
    std::string text;
    for (const MotisProperty& line : object.classInfo().lines()) {
        text.append(line.property.name).append("=");
        text += object.valueForKey(line.property.name).description() + "\n";
    }
    return text;
}

/// An object with a random choice and order of keys, some of them twice or unknown.
std::string randomObject(std::mt19937& random, bool isShuffled) {
    static const char* const keys[] = {"text",
                                       "number",
                                       "stranger",
                                       "date",
                                       "flag",
                                       "count",
                                       "any",
                                       "table",
                                       "list",
                                       "leaf",
                                       "tex",
                                       "texts",
                                       "a_key_of_more_than_twenty_characters",
                                       "a_key_of_more_than_twenty_charactors",
                                       "table.inner.a"};
    static const char* const values[] = {R"("word")",
                                         "1",
                                         "-7",
                                         "2.5",
                                         "18446744073709551615",
                                         "true",
                                         "null",
                                         "[]",
                                         R"([1,{"-1":"x"},null])",
                                         R"({"inner":{"a":"deep","a":"deeper"}})",
                                         R"({"a":"leaf","b":3})",
                                         R"("é\n\"😀")",
                                         R"("12.5")",
                                         "{}"};
    std::vector<std::string> chosen;
    for (const char* key : keys) {
        if (random() % 8 != 0) chosen.emplace_back(key);
        if (random() % 40 == 0) chosen.emplace_back(key);
    }
    if (isShuffled) std::shuffle(chosen.begin(), chosen.end(), random);
    std::string text = "{";
    for (const std::string& key : chosen)
        text += (text.size() > 1 ? ",\"" : "\"") + key + "\":" + values[random() % std::size(values)];
    return text + "}";
}

template <class Model>
void expectSame(const Value& decoded) {
    const auto dictionary = decoded.as<NSDictionary>();
    const auto fromDocument = make<Model>();
    fromDocument->mts_setValuesForKeysWithDictionary(dictionary);
    const auto fromValues = make<Model>();
    fromValues->mts_setValuesForKeysWithDictionary(rebuilt(dictionary));
    ASSERT_EQ(content(*fromDocument), content(*fromValues)) << decoded.description();
    if constexpr (requires { fromValues->heard; }) {
        ASSERT_EQ(fromDocument->heard, fromValues->heard);
    }
    if constexpr (requires { fromValues->events; }) {
        ASSERT_EQ(fromDocument->events, fromValues->events);
    }
}

TEST(Document, FillsLikeAnyOtherDictionary) {
    std::mt19937 random(11);
    for (int round = 0; round < 150; ++round) {
        std::string text = "[";
        for (int i = 0; i < 5; ++i) text += (i > 0 ? "," : "") + randomObject(random, round % 3 == 0);
        const auto list =
            NSJSONSerialization::JSONObjectWithText(text + "]", NSJSONReadingStrict, nullptr).as<NSArray>();
        ASSERT_EQ(list.count(), 5U) << text;
        for (const Value& element : list) {
            // Before anything has looked into the dictionaries, and after.
            ASSERT_NO_FATAL_FAILURE(expectSame<Quiet>(element));
            ASSERT_NO_FATAL_FAILURE(expectSame<Listening>(element));
            ASSERT_NO_FATAL_FAILURE(expectSame<Noting>(element));
        }
    }
}

TEST(Document, AnObjectMayBeFilledFromSeveral) {
    const auto decoded = [](const char* text) {
        return NSJSONSerialization::JSONObjectWithText(text, NSJSONReadingStrict, nullptr).as<NSDictionary>();
    };
    Ref<Quiet> object = make<Quiet>();
    object->mts_setValuesForKeysWithDictionary(decoded(R"({"text":"first","any":["kept"],"number":1})"));
    object->mts_setValuesForKeysWithDictionary(decoded(R"({"text":"second","number":null})"));
    object->setDeep("own");
    object->mts_setValuesForKeysWithDictionary(decoded(R"({"table":{"inner":{"a":"third"}}})"));
    EXPECT_EQ(object->text(), "second");
    EXPECT_EQ(object->any(), Value(NSArray{"kept"}));
    EXPECT_FALSE(object->number());
    EXPECT_EQ(object->deep(), "third");
    const Value text = object->valueForKey("text");
    const NSDictionary table = object->table();
    object = nullptr;
    EXPECT_EQ(text, Value("second"));
    EXPECT_EQ(table, (NSDictionary{{"inner", NSDictionary{{"a", "third"}}}}));
}

TEST(Document, ManyThreadsTeachAClassTheOrdersOfItsKeys) {
    std::vector<std::jthread> threads;
    for (unsigned seed = 0; seed < 6; ++seed) {
        threads.emplace_back([seed] {
            std::mt19937 random(seed);
            for (int round = 0; round < 100; ++round) {
                const Value decoded = NSJSONSerialization::JSONObjectWithText(randomObject(random, round % 2 == 0),
                                                                              NSJSONReadingStrict, nullptr);
                expectSame<Quiet>(decoded);
            }
        });
    }
}

}  // namespace
}  // namespace flarebox
