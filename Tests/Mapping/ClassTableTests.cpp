#include "MappingTesting.h"

#include <Flarebox/Mapping/MotisPlan.h>

#include <atomic>
#include <barrier>
#include <functional>
#include <stdexcept>
#include <thread>

namespace flarebox {
namespace {

using ::testing::ElementsAre;
using Events = std::vector<std::string>;

Events keysUnder(const MotisClass& cls, std::string_view component) {
    Events keys;
    const MTSKeyPathList* found = cls.mts_keyPaths().find(component);
    if (!found) return keys;
    for (const MTSKeyPath& path : *found) keys.emplace_back(path.key());
    return keys;
}

// Each test of the sharing has classes of its own: what is used first decides what is seen.
#define FAMILY(Prefix)                                                                                          \
    class Prefix##Top : public RecordingModel {                                                                 \
        FLAREBOX_MODEL(Prefix##Top, RecordingModel, (a, setA, Value, "user.a"), (k, setK, Value, "key"))        \
    };                                                                                                          \
    class Prefix##Left : public Prefix##Top {                                                                   \
        FLAREBOX_MODEL(Prefix##Left, Prefix##Top, (b, setB, Value, "user.b"), (only, setOnly, Value, "left.x")) \
    };                                                                                                          \
    class Prefix##Right : public Prefix##Top {                                                                  \
        FLAREBOX_MODEL(Prefix##Right, Prefix##Top, (c, setC, Value, "user.c"), (again, setAgain, Value, "key")) \
    };

FAMILY(Down)
FAMILY(Up)
FAMILY(Open)
#undef FAMILY

TEST(KeyPathSharing, ASuperclassWalksThePathsOfItsSubclasses) {
    const NSDictionary user{{"a", 1}, {"b", 2}, {"c", 3}};
    const auto top = make<DownTop>();
    EXPECT_THAT(top->eventsOf({{"user", user}, {"key", 0}}),
                ElementsAre("set a=1", "undefined user=" + user.description(), "set k=0"));

    const auto left = make<DownLeft>();
    EXPECT_THAT(left->eventsOf({{"user", user}}),
                ElementsAre("set a=1", "set b=2", "undefined user=" + user.description()));
    EXPECT_THAT(top->eventsOf({{"user", user}, {"left", NSDictionary{{"x", 1}}}}),
                ElementsAre("set a=1", "undefined user.b=2", "undefined user=" + user.description(),
                            "undefined left=" + NSDictionary{{"x", 1}}.description()));

    // The sibling inherits the other one's paths, and its second plain path of a key counts for all of them.
    const auto right = make<DownRight>();
    EXPECT_THAT(right->eventsOf({{"user", user}, {"key", 0}}),
                ElementsAre("set a=1", "undefined user.b=2", "set c=3", "undefined user=" + user.description(),
                            "set again=0", "set again=0"));
    EXPECT_THAT(top->eventsOf({{"key", 0}}), ElementsAre("set k=0", "set k=0"));
    EXPECT_THAT(keysUnder(DownLeft::staticClass(), "user"), ElementsAre("user.a", "user.b", "user.c"));
    EXPECT_THAT(keysUnder(DownLeft::staticClass(), "left"), ElementsAre("left.x"));
    EXPECT_THAT(keysUnder(DownTop::staticClass(), "left"), ElementsAre());
}

TEST(KeyPathSharing, FollowsTheOrderOfFirstUse) {
    UpRight::staticClass().mts_keyPaths();
    EXPECT_THAT(keysUnder(UpTop::staticClass(), "user"), ElementsAre("user.a", "user.c"));
    UpLeft::staticClass().mts_keyPaths();
    EXPECT_THAT(keysUnder(UpTop::staticClass(), "user"), ElementsAre("user.a", "user.c", "user.b"));
    EXPECT_EQ(UpTop::staticClass().mts_keyPaths().find("user"), UpLeft::staticClass().mts_keyPaths().find("user"));
}

class OpenTopSettingAll : public OpenTop {
    FLAREBOX_MODEL(OpenTopSettingAll, OpenTop)
    static bool mts_shouldSetUndefinedKeys() { return true; }
};
class BelowSettingAll : public OpenTopSettingAll {
    FLAREBOX_MODEL(BelowSettingAll, OpenTopSettingAll, (z, setZ, Value, "user.z"))
};

TEST(KeyPathSharing, WithUndefinedKeysSetTheDottedNameIsAssigned) {
    const auto model = make<OpenTopSettingAll>();
    make<BelowSettingAll>()->mts_setValuesForKeysWithDictionary({});
    const NSDictionary user{{"z", 9}};
    EXPECT_THAT(model->eventsOf({{"user", user}}), ElementsAre("set user.z=9", "set user=" + user.description()));
}

// --- Declarations ---

struct Counted {
    static inline std::atomic<int> mappings = 0, valueMappings = 0, arrayClasses = 0;
};
class CountedTop : public MotisObject {
    FLAREBOX_MODEL(CountedTop, MotisObject, (a, setA, NSString), (list, setList, NSArray))
    static NSDictionary mts_mapping() {
        const int call = ++Counted::mappings;
        return {{"a", call == 1 ? "a" : "list"}, {"list", "list"}};
    }
    static NSDictionary mts_valueMappingForKey(std::string_view property) {
        if (property == "a") ++Counted::valueMappings;
        return {{"one", "uno"}};
    }
    static ArrayClassMapping mts_arrayClassMapping() {
        ++Counted::arrayClasses;
        return {{"list", &NSString::staticClass()}};
    }
};
class CountedBottom : public CountedTop {
    FLAREBOX_MODEL(CountedBottom, CountedTop, (b, setB, Value, "a.b"))
};

/// Runs the work on several threads that start together.
void onThreads(int count, const std::function<void(int)>& work) {
    std::barrier start(count);
    std::vector<std::jthread> threads;
    for (int index = 0; index < count; ++index) {
        threads.emplace_back([&, index] {
            start.arrive_and_wait();
            work(index);
        });
    }
}

TEST(Declarations, AreReadOnceHoweverManyThreadsComeFirst) {
    std::atomic<int> good = 0;
    onThreads(8, [&](int index) {
        const NSDictionary json{{"a", "one"}, {"list", NSArray{1, "x", Value::null()}}};
        Ref<CountedTop> model = index % 2 ? make<CountedTop>() : Ref<CountedTop>(make<CountedBottom>());
        model->mts_setValuesForKeysWithDictionary(json);
        if (model->a() == "uno" && model->list() == NSArray{"1", "x"}) ++good;
    });
    EXPECT_EQ(good, 8);
    EXPECT_EQ(Counted::mappings, 1);
    EXPECT_EQ(Counted::valueMappings, 1);
    EXPECT_EQ(Counted::arrayClasses, 1);
    EXPECT_EQ(CountedTop::staticClass().mts_cachedMapping().objectForKey("a"), Value("a"));
    EXPECT_TRUE(
        CountedBottom::staticClass().mts_cachedMapping().isSameAs(CountedBottom::staticClass().mts_cachedMapping()));
}

#define CROWD(Index, Superclass)                                                                          \
    class Crowd##Index : public Superclass {                                                              \
        FLAREBOX_MODEL(Crowd##Index, Superclass, (value##Index, setValue##Index, int, "shared.v" #Index)) \
    };
class CrowdRoot : public MotisObject {
    FLAREBOX_MODEL(CrowdRoot, MotisObject, (root, setRoot, NSString, "shared.root"))
};
CROWD(0, CrowdRoot)
CROWD(1, Crowd0)
CROWD(2, CrowdRoot)
CROWD(3, Crowd2)
CROWD(4, Crowd3)
CROWD(5, CrowdRoot)
CROWD(6, Crowd5)
CROWD(7, Crowd0)
#undef CROWD

TEST(Concurrency, ClassesGrowTheListsThatOthersAreWalking) {
    const NSDictionary shared{{"root", "r"}, {"v0", 0}, {"v1", 1}, {"v2", 2}, {"v3", 3},
                              {"v4", 4},     {"v5", 5}, {"v6", 6}, {"v7", 7}};
    const NSDictionary json{{"shared", shared}};
    const std::function<Ref<CrowdRoot>()> makers[] = {[] { return make<CrowdRoot>(); }, [] { return make<Crowd4>(); },
                                                      [] { return make<Crowd1>(); },    [] { return make<Crowd6>(); },
                                                      [] { return make<Crowd7>(); },    [] { return make<Crowd3>(); }};
    std::atomic<int> wrong = 0;
    onThreads(6, [&](int index) {
        for (int round = 0; round < 300; ++round) {
            const auto model = makers[(index + (round ? round % 6 : 0)) % 6]();
            model->mts_setValuesForKeysWithDictionary(json);
            if (model->root() != "r") ++wrong;
            if (auto* deep = objectCast<Crowd4>(model.get()); deep && (deep->value4() != 4 || deep->value3() != 3))
                ++wrong;
            if (model->mts_description().empty()) ++wrong;
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(keysUnder(CrowdRoot::staticClass(), "shared").size(), 9U);
}

class Throwing : public MotisObject {
    FLAREBOX_MODEL(Throwing, MotisObject, (a, setA, Value, "a"))
    static inline std::atomic<int> failures = 3;
    static NSDictionary mts_valueMappingForKey(std::string_view) {
        if (failures-- > 0) throw std::runtime_error("not today");
        return {{1, "one"}};
    }
    bool mts_validateValue(Value& value, std::string_view, Ref<NSError>&) override {
        if (value == Value("throw")) throw std::runtime_error("hook");
        return true;
    }
};

TEST(Concurrency, AnExceptionLeavesNoLockHeld) {
    const auto model = make<Throwing>();
    for (int attempt = 0; attempt < 3; ++attempt) EXPECT_THROW(model->mts_setValue(1, "a"), std::runtime_error);
    std::jthread([&] {
        model->mts_setValue(1, "a");
        EXPECT_EQ(model->a(), Value("one"));
        EXPECT_THROW(model->mts_setValue("throw", "a"), std::runtime_error);
    }).join();
    model->mts_setValue(2, "a");
    EXPECT_EQ(model->a(), Value(2));
}

// --- What a class does not use, it does not pay for ---

class Cheap : public MotisObject {
    FLAREBOX_MODEL(Cheap, MotisObject, (text, setText, NSString, "text"), (list, setList, NSArray, "list"))
};
class Costly : public Cheap {
    FLAREBOX_MODEL(Costly, Cheap)
private:
    bool mts_validateValue(Value&, std::string_view, Ref<NSError>&) override { return false; }
};
class CostlyHeir : public Costly {
    FLAREBOX_MODEL(CostlyHeir, Costly)
};

TEST(Plan, TakesTheShortWayOnlyWhereNothingCanInterfere) {
    EXPECT_TRUE(Cheap::staticClass().plan().property("text")->takesAsIs("x"));
    EXPECT_TRUE(Cheap::staticClass().plan().property("text")->takesAsIs(nullptr));
    EXPECT_FALSE(Cheap::staticClass().plan().property("text")->takesAsIs(1));
    EXPECT_FALSE(Cheap::staticClass().plan().property("list")->takesAsIs(emptyArray()))
        << "elements have to be checked";
    for (const MotisClass* cls : {&Costly::staticClass(), &CostlyHeir::staticClass()}) {
        EXPECT_FALSE(cls->plan().property("text")->takesAsIs("x"));
        Ref<NSObject> object = cls->create();
        objectCast<Cheap>(object.get())->mts_setValue("x", "text");
        EXPECT_FALSE(objectCast<Cheap>(object.get())->text());
    }
}

TEST(Plan, FindsEveryNameAmongMany) {
    const auto& plan = CrowdRoot::staticClass().plan();
    EXPECT_TRUE(plan.key("shared") && plan.key("shared.root"));
    for (const char* stranger : {"", "s", "sh", "share", "shared.", "shared.roo", "shared.roots", "Shared"}) {
        EXPECT_FALSE(plan.key(stranger)) << stranger;
    }
}

TEST(Registry, ModelClassesAreFoundByNameBeforeTheirFirstUse) {
    const Class cls = classFromName("CostlyHeir");
    ASSERT_TRUE(cls);
    EXPECT_TRUE(cls->isSubclassOf(MotisObject::staticClass()));
    EXPECT_TRUE(cls->create()->isKindOfClass(Cheap::staticClass()));
}

}  // namespace
}  // namespace flarebox
