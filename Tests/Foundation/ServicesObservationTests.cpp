#include <Foundation/NSAssertionHandler.h>
#include <Foundation/NSKeyValueObserving.h>
#include <Foundation/NSNotificationCenter.h>
#include <Foundation/Values.h>

#include <gtest/gtest.h>

#include <iterator>
#include <thread>

namespace flarebox {
namespace {

/// Something with a property that can be observed.
class Lamp : public NSObject {
    FLAREBOX_CLASS(Lamp)
public:
    int level() const { return level_; }
    void setLevel(int level) {
        willChangeValueForKey("level");
        level_ = level;
        didChangeValueForKey("level");
    }

private:
    int level_ = 0;
};

const ClassInfo& Lamp::staticClass() {
    static const Property properties[] = {
        {"level", "Ti", [](const NSObject& lamp) { return Value(static_cast<const Lamp&>(lamp).level()); },
         [](NSObject& lamp, const Value& value) {
             static_cast<Lamp&>(lamp).setLevel(value.as<NSNumber>().intValue());
         }}};
    static const ClassInfo info("ServicesLamp", &NSObject::staticClass(), createObject<Lamp>,
                                {.properties = properties});
    return info;
}

/// Writes down what it is told and, if asked to, does something about it.
class Witness : public NSObject {
    FLAREBOX_CLASS(Witness)
public:
    explicit Witness(std::string& journal, char name = 'w') : journal_(journal), name_(name) {}

    void observeValueForKeyPath(std::string_view keyPath, NSObject&, const NSKeyValueChange& change,
                                void* context) override {
        journal_ += name_;
        journal_.append(":").append(keyPath).append(" ").append(change.oldValue.description());
        journal_.append(">").append(change.newValue.description()).append(context ? "* " : " ");
        if (auto now = reaction) now();
    }
    void hear(NSNotification* notification) {
        journal_ += name_;
        journal_.append(":").append(notification->name()).append(" ");
        if (auto now = reaction) now();
    }

    std::function<void()> reaction;

private:
    std::string& journal_;
    char name_;
};

const ClassInfo& Witness::staticClass() {
    static const Action actions[] = {action<&Witness::hear>("hear:")};
    static const ClassInfo info("ServicesWitness", &NSObject::staticClass(), nullptr, {.actions = actions});
    return info;
}

TEST(KeyValueObserving, TellsWhatWasAskedFor) {
    struct Case {
        std::uint32_t options;
        bool withContext;
        const char* expected;
    };
    const Case cases[] = {{0, false, "w:level (null)>(null) "},
                          {NSKeyValueObservingOptionNew, false, "w:level (null)>5 "},
                          {NSKeyValueObservingOptionOld, true, "w:level 2>(null)* "},
                          {NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld, false, "w:level 2>5 "}};
    for (const Case& each : cases) {
        std::string journal;
        auto lamp = make<Lamp>();
        auto witness = make<Witness>(journal);
        lamp->setLevel(2);
        lamp->addObserver(*witness, "level", each.options, each.withContext ? &journal : nullptr);
        lamp->addObserver(*witness, "colour", each.options);
        lamp->setValue(Value(5), "level");
        EXPECT_EQ(journal, each.expected);
        lamp->removeObserver(*witness, "level");
        lamp->removeObserver(*witness, "level");
        lamp->setLevel(6);
        EXPECT_EQ(journal, each.expected);
    }
}

TEST(KeyValueObserving, RegisteringTwiceTellsTwice) {
    std::string journal;
    auto lamp = make<Lamp>();
    auto witness = make<Witness>(journal);
    lamp->addObserver(*witness, "level", NSKeyValueObservingOptionNew);
    lamp->addObserver(*witness, "level", 0);
    lamp->setLevel(1);
    EXPECT_EQ(journal, "w:level (null)>1 w:level (null)>(null) ");
    journal.clear();
    lamp->removeObserver(*witness, "level");
    lamp->setLevel(2);
    EXPECT_EQ(journal, "w:level (null)>2 ");
}

TEST(KeyValueObserving, NestedChangesPairTheirOldValues) {
    std::string journal;
    auto lamp = make<Lamp>();
    auto witness = make<Witness>(journal);
    lamp->addObserver(*witness, "level", NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld);
    witness->reaction = [&] {
        if (lamp->level() < 3) lamp->setLevel(lamp->level() + 1);
    };
    lamp->setLevel(1);
    EXPECT_EQ(journal, "w:level 0>1 w:level 1>2 w:level 2>3 ");
}

TEST(KeyValueObserving, ObserversMayLeaveWhileTheyAreTold) {
    std::string journal;
    auto lamp = make<Lamp>();
    auto first = make<Witness>(journal, '1'), second = make<Witness>(journal, '2'), third = make<Witness>(journal, '3');
    for (auto* witness : {first.get(), second.get(), third.get()}) lamp->addObserver(*witness, "level", 0);
    first->reaction = [&] {
        lamp->removeObserver(*first, "level");
        lamp->removeObserver(*second, "level");
        third = nullptr;
    };
    lamp->setLevel(1);
    lamp->setLevel(2);
    EXPECT_EQ(journal, "1:level (null)>(null) ");
}

TEST(KeyValueObserving, RegistrationsEndWithEitherObject) {
    std::string journal;
    auto lamp = make<Lamp>();
    {
        auto witness = make<Witness>(journal);
        lamp->addObserver(*witness, "level", NSKeyValueObservingOptionNew);
    }
    lamp->setLevel(1);
    EXPECT_EQ(journal, "");

    auto witness = make<Witness>(journal);
    for (int round = 0; round < 100; ++round) {
        auto other = make<Lamp>();
        // Memory used again must not inherit the registrations of the object that was there before.
        other->setLevel(1);
        EXPECT_EQ(journal, "");
        other->addObserver(*witness, "level", 0);
    }
    lamp->addObserver(*witness, "level", 0);
    witness->reaction = [&] { lamp = nullptr; };
    lamp->setLevel(2);
    EXPECT_EQ(journal, "w:level (null)>(null) ");
}

TEST(KeyValueObserving, ObjectsMayEndOnOtherThreads) {
    std::string journal;
    auto witness = make<Witness>(journal);
    std::vector<Ref<Lamp>> lamps;
    for (int index = 0; index < 200; ++index) {
        lamps.push_back(make<Lamp>());
        lamps.back()->addObserver(*witness, "level", 0);
    }
    const auto first = std::make_move_iterator(lamps.begin());
    std::thread ending([half = std::vector<Ref<Lamp>>(first, first + 100)]() mutable { half.clear(); });
    for (std::size_t index = 100; index < lamps.size(); ++index) lamps[index]->setLevel(1);
    ending.join();
    EXPECT_EQ(std::count(journal.begin(), journal.end(), 'w'), 100);
}

TEST(Notifications, AreFilteredByNameAndObject) {
    auto& center = NSNotificationCenter::defaultCenter();
    auto lamp = make<Lamp>(), other = make<Lamp>();
    struct Case {
        const char* name;
        NSObject* object;
        const char* expected;
    };
    const Case cases[] = {{"on", nullptr, "w:on w:on w:on "},
                          {"on", lamp.get(), "w:on "},
                          {"", lamp.get(), "w:on w:off "},
                          {"", nullptr, "w:on w:on w:on w:off "},
                          {"never", nullptr, ""}};
    for (const Case& each : cases) {
        std::string journal;
        auto witness = make<Witness>(journal);
        center.addObserver(*witness, "hear:", each.name, each.object);
        center.postNotificationName("on");
        center.postNotificationName("on", lamp.get(), NSDictionary({{"key", 1}}));
        center.postNotificationName("on", other.get());
        center.postNotificationName("off", lamp.get());
        EXPECT_EQ(journal, each.expected);
        center.removeObserver(*witness);
        center.postNotificationName("on", lamp.get());
        EXPECT_EQ(journal, each.expected);
    }
}

TEST(Notifications, AreUnregisteredByNameAndObject) {
    auto& center = NSNotificationCenter::defaultCenter();
    std::string journal;
    auto witness = make<Witness>(journal);
    auto lamp = make<Lamp>();
    center.addObserver(*witness, "hear:", "a");
    center.addObserver(*witness, "hear:", "a", lamp.get());
    center.addObserver(*witness, "hear:", "b", lamp.get());
    center.removeObserver(*witness, "a", lamp.get());
    for (const char* name : {"a", "b"}) center.postNotificationName(name, lamp.get());
    EXPECT_EQ(journal, "w:a w:b ");
    center.removeObserver(*witness, "", lamp.get());
    for (const char* name : {"a", "b"}) center.postNotificationName(name, lamp.get());
    EXPECT_EQ(journal, "w:a w:b w:a ");
}

TEST(Notifications, SurviveChangesWhilePosting) {
    auto& center = NSNotificationCenter::defaultCenter();
    std::string journal;
    auto first = make<Witness>(journal, '1'), second = make<Witness>(journal, '2'), third = make<Witness>(journal, '3');
    auto late = make<Witness>(journal, '4');
    for (auto* witness : {first.get(), second.get(), third.get()}) center.addObserver(*witness, "hear:", "n");
    first->reaction = [&] {
        center.removeObserver(*first);
        second = nullptr;
        for (int count = 0; count < 50; ++count) center.addObserver(*late, "hear:", "n");
    };
    third->reaction = [&] {
        third->reaction = nullptr;
        center.removeObserver(*late);
        center.postNotificationName("n");
    };
    center.postNotificationName("n");
    EXPECT_EQ(journal, "1:n 3:n 3:n ");
}

TEST(Assertions, FailAsTheHandlerDecides) {
    struct Returning : NSAssertionHandler {
        void handleFailure(std::string_view function, std::string_view file, int line,
                           std::string_view description) override {
            text = description;
            isPlaced = function.find("FailAsTheHandlerDecides") != std::string_view::npos &&
                       file.find("ServicesObservationTests") != std::string_view::npos && line > 0;
        }
        std::string text;
        bool isPlaced = false;
    };
    EXPECT_TRUE(assertParameter(true, "asset"));
    if (!NSAssertionHandler::assertionsActive()) {
        EXPECT_FALSE(assertParameter(false, "asset"));
        return;
    }
    try {
        assertParameter(false, "gameUID");
        ADD_FAILURE() << "nothing raised";
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), "NSInternalInconsistencyException");
        EXPECT_EQ(exception.reason(), "Invalid parameter not satisfying: gameUID");
        EXPECT_STREQ(exception.what(), "Invalid parameter not satisfying: gameUID");
    }
    Returning handler;
    NSAssertionHandler::setCurrentHandler(&handler);
    EXPECT_FALSE(assertParameter(false, "session"));
    NSAssertionHandler::setCurrentHandler(nullptr);
    EXPECT_EQ(handler.text, "Invalid parameter not satisfying: session");
    EXPECT_TRUE(handler.isPlaced);
}

}  // namespace
}  // namespace flarebox
