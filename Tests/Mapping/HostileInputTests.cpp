#include <Tests/Mapping/MappingTesting.h>

#include <Foundation/NSJSONSerialization.h>

namespace flarebox {
namespace {

using ::testing::ElementsAre;

class Node : public RecordingModel {
    FLAREBOX_MODEL(Node, RecordingModel, (child, setChild, Ref<Node>, "child"), (one, setOne, Value, "one"),
                   (two, setTwo, Value, "two"), (lists, setLists, NSArray, "lists"),
                   (last, setLast, Value, "nested.-2"), (title, setTitle, NSString, "title"))
    static ArrayClassMapping mts_arrayClassMapping() { return {{"lists", &NSArray::staticClass()}}; }
    std::string description() const override { return "N"; }
};

constexpr int farTooDeep = 200'000;

Value nestedArrays() {
    Value value = NSArray{1};
    for (int i = 0; i < farTooDeep; ++i) value = NSArray{value};
    return value;
}

TEST(Hostile, RemovingManyElementsTakesNoLongerThanReadingThem) {
    // Moving the rest for each removal would take hours.
    std::string json = R"({"title":[1)";
    for (int i = 0; i < 500'000; ++i) json += ",null,1";
    json += "]}";
    const auto node = make<Node>();
    node->mts_setValuesForKeysWithDictionary(
        NSJSONSerialization::JSONObjectWithText(json, NSJSONReadingStrict, nullptr).as<NSDictionary>());
    EXPECT_EQ(node->events.size(), 1U);
    EXPECT_FALSE(node->title());
}

TEST(Hostile, SetsOfCollectionsAreMadeInReasonableTime) {
    std::vector<Value> lists;
    for (int i = 0; i < 50'000; ++i) lists.push_back(NSArray{i, NSArray{}, i});
    EXPECT_EQ(NSSet::setWithValues(lists).count(), 50'000U);
}

TEST(Hostile, ValuesNestedBeyondMeasureAreRefused) {
    const auto node = make<Node>();
    const Value deep = nestedArrays();
    node->mts_setValuesForKeysWithDictionary({{"nested", deep}, {"lists", NSArray{deep}}});
    auto itself = NSMutableArray::array();
    itself.addObject(itself);
    node->mts_setValuesForKeysWithDictionary({{"lists", itself}});
    itself.removeObjectAtIndex(0);

    Value chain = NSDictionary{{"title", "end"}};
    for (int i = 0; i < farTooDeep; ++i) chain = NSDictionary{{"child", chain}};
    node->mts_setValuesForKeysWithDictionary(chain.as<NSDictionary>());
    int length = 0;
    for (const Node* each = node.get(); each; each = each->child().get()) ++length;
    EXPECT_GT(length, 500) << "more than any answer nests";
    EXPECT_LT(length, 2000);
    EXPECT_FALSE(node->mts_description().empty());
}

TEST(Hostile, ObjectsThatShareOthersAreDescribedWithinBounds) {
    Ref<Node> top;
    for (int i = 0; i < 60; ++i) {
        const auto node = make<Node>();
        if (top) {
            node->setOne(Value(top));
            node->setTwo(Value(top));
        }
        top = node;
    }
    EXPECT_LT(top->mts_description().size(), 64U << 20);
    const std::string deep = make<Node>()->mts_descriptionWithIndentation(300);
    EXPECT_TRUE(deep.starts_with("N:{\n")) << "a level asked for is not a depth reached";
}

class Forgetful : public MotisObject {
    FLAREBOX_MODEL(Forgetful, MotisObject, (a, setA, Value, "a"), (b, setB, Value, "b"))
    static inline Ref<Forgetful> only;
    static inline int ended = 0;
    ~Forgetful() override { ++ended; }
    void mts_ignoredSetValueForUndefinedMappingKey(const Value&, std::string_view) override {
        only = nullptr;
        EXPECT_EQ(ended, 0) << "gone in the middle of being filled";
    }
};

TEST(Hostile, AHookMayLetGoOfTheObject) {
    Forgetful::only = make<Forgetful>();
    Forgetful::only->mts_setValuesForKeysWithDictionary({{"a", 1}, {"unknown", 2}, {"b", 3}});
    EXPECT_EQ(Forgetful::ended, 1);
}

class Shifting : public MotisObject {
    FLAREBOX_MODEL(Shifting, MotisObject, (a, setA, NSString), (b, setB, NSString))
    static NSMutableDictionary& table() {
        static NSMutableDictionary table = NSMutableDictionary::dictionary();
        return table;
    }
    static NSDictionary mts_mapping() { return table(); }
};

TEST(Hostile, ADeclaredTableThatChangesLaterHasNoEffect) {
    Shifting::table().setObject("a", "a");
    Shifting::staticClass().mts_cachedMapping();
    Shifting::table().setObject("b", "b.c");
    EXPECT_EQ(Shifting::staticClass().mts_keyPaths().lists().size(), 1U);
    EXPECT_EQ(Shifting::staticClass().mts_cachedMapping().count(), 1U);
}

}  // namespace
}  // namespace flarebox
