#include <Foundation/NSError.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace flarebox {
namespace {

class Animal : public NSObject {
    FLAREBOX_CLASS(Animal)
public:
    ~Animal() override { ++destroyed; }
    void feed() { ++meals; }
    void greet(Animal* other) { greeted = other; }
    void leave() {
        if (home) *home = nullptr;
        ++meals;
    }

    static inline std::atomic<int> destroyed{0};
    NSString name;
    int meals = 0;
    Animal* greeted = nullptr;
    Ref<Animal>* home = nullptr;
    Weak<Animal> friendOutlet;
};

class Dog : public Animal {
    FLAREBOX_CLASS(Dog)
public:
    NSString trick = "sit";
};

const ClassInfo& Animal::staticClass() {
    static constexpr Property properties[] = {
        {"name", "T@\"NSString\"", [](const NSObject& o) -> Value { return static_cast<const Animal&>(o).name; },
         [](NSObject& o, const Value& v) { static_cast<Animal&>(o).name = v.as<NSString>(); }},
        {"meals", "Ti", [](const NSObject& o) -> Value { return static_cast<const Animal&>(o).meals; }, nullptr},
    };
    static constexpr Action actions[] = {action<&Animal::feed>("feed"), action<&Animal::greet>("greet:"),
                                         action<&Animal::leave>("leave")};
    static constexpr Outlet outlets[] = {outlet<&Animal::friendOutlet>("friend")};
    static const ClassInfo info("TestAnimal", &NSObject::staticClass(), createObject<Animal>,
                                {properties, actions, outlets});
    return info;
}

const ClassInfo& Dog::staticClass() {
    static constexpr Property properties[] = {
        {"name", "T@\"NSString\"",
         [](const NSObject& o) -> Value { return "dog " + static_cast<const Dog&>(o).name.string(); }, nullptr},
        {"trick", "T@\"NSString\"", [](const NSObject& o) -> Value { return static_cast<const Dog&>(o).trick; },
         [](NSObject& o, const Value& v) { static_cast<Dog&>(o).trick = v.as<NSString>(); }},
    };
    static const ClassInfo info("TestDog", &Animal::staticClass(), createObject<Dog>, {properties, {}, {}});
    return info;
}

TEST(ObjectTests, ClassesAreFoundByNameAndKnowTheirAncestors) {
    Dog::staticClass();
    struct {
        const char* name;
        const char* superclass;
    } const classes[] = {
        {"NSNull", "NSObject"},          {"NSString", "NSObject"},
        {"NSMutableString", "NSString"}, {"NSNumber", "NSObject"},
        {"NSDate", "NSObject"},          {"NSURL", "NSObject"},
        {"NSData", "NSObject"},          {"NSMutableData", "NSData"},
        {"NSArray", "NSObject"},         {"NSMutableArray", "NSArray"},
        {"NSSet", "NSObject"},           {"NSMutableSet", "NSSet"},
        {"NSOrderedSet", "NSObject"},    {"NSMutableOrderedSet", "NSOrderedSet"},
        {"NSDictionary", "NSObject"},    {"NSMutableDictionary", "NSDictionary"},
        {"TestDog", "TestAnimal"},
    };
    for (const auto& row : classes) {
        Class type = classFromName(row.name);
        ASSERT_TRUE(type) << row.name;
        EXPECT_EQ(type->name(), row.name);
        EXPECT_EQ(type->superclass(), classFromName(row.superclass)) << row.name;
        EXPECT_TRUE(type->isSubclassOf(NSObject::staticClass())) << row.name;
    }
    EXPECT_FALSE(classFromName("NSArray")->isSubclassOf(*classFromName("NSMutableArray")));
    EXPECT_EQ(classFromName("NoSuchClass"), nullptr);
    EXPECT_EQ(classFromName(""), nullptr);
    EXPECT_TRUE(objectCast<Dog>(classFromName("TestDog")->create().get()));
    EXPECT_FALSE(classFromName("NSString")->create());
    {
        const ClassInfo passing("TestPassing", &Animal::staticClass(), nullptr);
        EXPECT_EQ(classFromName("TestPassing"), &passing);
    }
    EXPECT_EQ(classFromName("TestPassing"), nullptr);
}

TEST(ObjectTests, PropertiesAreReadAndWrittenByNameOwnOnesFirst) {
    auto dog = make<Dog>();
    dog->setValue("Rex", "name");
    EXPECT_FALSE(dog->name) << "the subclass hides the setter of the inherited property";
    dog->name = "Rex";
    dog->setValue("roll", "trick");
    dog->setValue(7, "meals");
    dog->setValue(7, "unknown");
    EXPECT_EQ(dog->valueForKey("name"), Value("dog Rex"));
    EXPECT_EQ(dog->valueForKey("trick"), Value("roll"));
    EXPECT_EQ(dog->valueForKey("meals"), Value(0)) << "a property without a setter cannot be written";
    EXPECT_TRUE(dog->valueForKey("unknown").isAbsent());

    auto animal = make<Animal>();
    animal->setValue("Tom", "name");
    EXPECT_EQ(animal->valueForKey("name"), Value("Tom"));
    EXPECT_TRUE(animal->valueForKey("trick").isAbsent());

    EXPECT_EQ(dog->description().find("<TestDog: 0x"), 0u) << dog->description();
    EXPECT_EQ(Value(dog).description(), dog->description());
    EXPECT_EQ(Value(dog).classOf(), &Dog::staticClass());
    EXPECT_EQ(Value(dog).object<Animal>(), dog.get());
    EXPECT_EQ(Value(animal).object<Dog>(), nullptr);
}

TEST(ObjectTests, ActionsArePerformedByNameWithArgumentsOfTheirClassOnly) {
    auto dog = make<Dog>();
    auto other = make<Animal>();
    auto stranger = make<NSObject>();
    EXPECT_TRUE(dog->respondsToSelector("feed"));
    EXPECT_FALSE(dog->respondsToSelector("fly"));
    EXPECT_TRUE(dog->performSelector("feed"));
    EXPECT_FALSE(dog->performSelector("fly"));
    EXPECT_EQ(dog->meals, 1);
    dog->performSelector("greet:", other.get());
    EXPECT_EQ(dog->greeted, other.get());
    dog->performSelector("greet:", stranger.get());
    EXPECT_EQ(dog->greeted, nullptr);

    const Outlet* friendOutlet = dog->classInfo().outlet("friend");
    ASSERT_TRUE(friendOutlet);
    EXPECT_TRUE(friendOutlet->set(*dog, other.get()));
    EXPECT_FALSE(friendOutlet->set(*dog, stranger.get()));
    EXPECT_EQ(friendOutlet->get(*dog), other.get());
}

TEST(ObjectTests, AnActionMayLetGoOfItsOwnObject) {
    auto animal = make<Animal>();
    animal->home = &animal;
    const int before = Animal::destroyed;
    animal.get()->performSelector("leave");
    EXPECT_FALSE(animal);
    EXPECT_EQ(Animal::destroyed, before + 1);
}

TEST(ObjectTests, WeakReferencesEndWithTheirObject) {
    auto animal = make<Dog>();
    Weak<Animal> weak = animal;
    const Weak<Animal> copy = weak;
    EXPECT_EQ(weak.get(), animal.get());
    {
        const Ref<Animal> locked = weak.lock();
        animal = nullptr;
        EXPECT_TRUE(copy.lock());
    }
    EXPECT_FALSE(weak.lock());
    EXPECT_FALSE(copy);
    EXPECT_FALSE(Weak<Animal>().lock());
}

TEST(ObjectTests, AWeakReferenceMadeDuringDestructionIsEmpty) {
    struct Late : NSObject {
        Late(Weak<Late>& target, bool& saw) : out(target), sawItself(saw) {}
        ~Late() override {
            out = Weak<Late>(this);
            sawItself = static_cast<bool>(out);
        }
        Weak<Late>& out;
        bool& sawItself;
    };
    Weak<Late> weak;
    bool sawItself = true;
    make<Late>(weak, sawItself);
    EXPECT_FALSE(sawItself);
    EXPECT_FALSE(weak.lock());
}

// Several threads try to take a reference while the last owner lets go: each gets a live object or nothing.
TEST(ObjectTests, WeakReferencesAreLockedSafelyAgainstDestruction) {
    const int before = Animal::destroyed;
    constexpr int rounds = 2000;
    constexpr int readers = 3;
    for (int round = 0; round < rounds; ++round) {
        auto owner = make<Animal>();
        owner->meals = round;
        std::vector<std::thread> threads;
        std::atomic<int> ready{0};
        if (round % 100 != 0) {
            // Most rounds race on one thread pair only, which keeps the test short.
            std::thread thread([weak = Weak<Animal>(owner), round] {
                if (auto locked = weak.lock()) {
                    EXPECT_EQ(locked->meals, round);
                }
            });
            owner = nullptr;
            thread.join();
            continue;
        }
        for (int i = 0; i < readers; ++i) {
            threads.emplace_back([weak = Weak<Animal>(owner), &ready, round] {
                ++ready;
                while (auto locked = weak.lock()) {
                    const Weak<Animal> another = locked;
                    EXPECT_EQ(locked->meals, round);
                }
            });
        }
        while (ready < readers) std::this_thread::yield();
        owner = nullptr;
        for (auto& thread : threads) thread.join();
    }
    EXPECT_EQ(Animal::destroyed, before + rounds);
}

TEST(ObjectTests, ErrorsDescribeThemselves) {
    const auto error = NSError::errorWithDomain(NSURLErrorDomain, NSURLErrorTimedOut, "Too late");
    EXPECT_EQ(error->localizedDescription(), "Too late");
    EXPECT_EQ(error->userInfo().objectForKey(NSLocalizedDescriptionKey), Value("Too late"));
    EXPECT_EQ(error->description(), "Error Domain=NSURLErrorDomain Code=-1001 \"Too late\"");
    const auto bare = NSError::errorWithDomain("Mine", 3, NSDictionary());
    EXPECT_NE(bare->localizedDescription().find("Mine error 3"), std::string::npos);
}

}  // namespace
}  // namespace flarebox
