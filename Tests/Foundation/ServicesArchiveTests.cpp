#include <Foundation/NSKeyedArchiver.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace flarebox {
namespace {

/// A node of a graph: a value, an owned neighbour and a way back.
class Node : public NSObject, public NSCoding {
    FLAREBOX_CLASS(Node)
public:
    void encodeWithCoder(NSCoder& coder) const override {
        coder.encodeObject(value, "value");
        coder.encodeObject(next, "next");
        coder.encodeObject(back.lock(), "back");
    }
    void initWithCoder(NSCoder& coder) override {
        value = coder.decodeObjectForKey("value");
        next = Ref<Node>(coder.decodeObjectForKey("next").object<Node>());
        back = Weak<Node>(coder.decodeObjectForKey("back").object<Node>());
        missing = coder.decodeObjectForKey("never written");
    }

    Value value;
    Ref<Node> next;
    Weak<Node> back;
    Value missing = "not asked";
};

const ClassInfo& Node::staticClass() {
    static const ClassInfo info("ServicesArchiveNode", &NSObject::staticClass(), createObject<Node>);
    return info;
}

/// Has no part in archiving.
class Stranger : public NSObject {
    FLAREBOX_CLASS(Stranger)
};

const ClassInfo& Stranger::staticClass() {
    static const ClassInfo info("ServicesArchiveStranger", &NSObject::staticClass(), createObject<Stranger>);
    return info;
}

Value throughArchive(const Value& value) {
    Ref<NSError> error;
    NSData data = NSKeyedArchiver::archivedDataWithRootObject(value, &error);
    EXPECT_TRUE(data) << (error ? error->localizedDescription() : "no error");
    Value result = NSKeyedUnarchiver::unarchiveObjectWithData(data, &error);
    EXPECT_TRUE(result) << (error ? error->localizedDescription() : "no error");
    return result;
}

TEST(KeyedArchive, KeepsEveryKindOfValue) {
    auto mutableTable = NSMutableDictionary::dictionary();
    mutableTable.setObject(1, "one");
    const Value some[] = {1, "two"};
    const Value values[] = {
        Value::null(),
        true,
        -3,
        std::numeric_limits<std::int64_t>::min(),
        std::uint64_t{5},
        std::numeric_limits<std::uint64_t>::max(),
        0.1,
        2.0,
        std::numeric_limits<double>::infinity(),
        "",
        "a <b> é\n",
        NSString(std::string_view("\0\1\r", 3)),
        "\xFF not UTF-8",
        NSDate::dateWithTimeIntervalSince1970(1234567890.123456),
        NSURL::URLWithString("https://example.test/a?b=c#d"),
        NSData::dataWithBytes(std::string_view("\0\xFF", 2)),
        NSArray({1, Value::null(), NSArray({})}),
        NSArray({1}).mutableCopy(),
        NSSet::setWithValues(some),
        NSMutableSet::setWithValues(some),
        NSOrderedSet::orderedSetWithValues(some),
        NSMutableOrderedSet::orderedSetWithValues(some),
        NSDictionary({{"$kind", "object"}, {2, NSArray({true})}, {Value::null(), 1.5}}),
        mutableTable,
    };
    for (const Value& value : values) {
        Value result = throughArchive(value);
        EXPECT_EQ(result, value) << value.description();
        ASSERT_EQ(result.kind(), value.kind()) << value.description();
        EXPECT_EQ(result.classOf(), value.classOf()) << value.description();
        auto number = value.as<NSNumber>(), numberAgain = result.as<NSNumber>();
        EXPECT_EQ(numberAgain.isUnsigned(), number.isUnsigned());
        EXPECT_EQ(numberAgain.isFloating(), number.isFloating());
        EXPECT_EQ(numberAgain.isBoolean(), number.isBoolean());
    }
    EXPECT_EQ(throughArchive(values[22]).as<NSDictionary>().allKeys(), values[22].as<NSDictionary>().allKeys());
}

TEST(KeyedArchive, KeepsSharingAndCycles) {
    auto first = make<Node>(), second = make<Node>();
    first->value = "first";
    first->next = second;
    second->back = Weak<Node>(first);
    Value result = throughArchive(NSArray({first, second, first}));
    auto array = result.as<NSArray>();
    auto* one = array.objectAtIndex(0).object<Node>();
    auto* two = array.objectAtIndex(1).object<Node>();
    ASSERT_TRUE(one && two);
    EXPECT_NE(one, first.get());
    EXPECT_EQ(array.objectAtIndex(2).object<Node>(), one);
    EXPECT_EQ(one->next.get(), two);
    EXPECT_EQ(two->back.get(), one);
    EXPECT_EQ(one->value, Value("first"));
    EXPECT_FALSE(two->value) << "absent values are not written";
    EXPECT_FALSE(one->missing);
}

TEST(KeyedArchive, RefusesWhatCannotBeArchived) {
    Ref<Node> chain;
    for (int length = 0; length < 200; ++length) {
        auto node = make<Node>();
        node->next = std::exchange(chain, nullptr);
        chain = node;
    }
    NSArray doubled({1});
    for (int level = 0; level < 40; ++level) doubled = NSArray({doubled, doubled});
    auto endless = NSMutableArray::array();
    endless.addObject(endless);
    auto unable = make<Node>();
    unable->value = make<Stranger>();
    const Value refused[] = {Value(), make<Stranger>(), NSArray({unable}), chain, doubled, endless};
    for (const Value& value : refused) {
        Ref<NSError> error;
        EXPECT_FALSE(NSKeyedArchiver::archivedDataWithRootObject(value, &error));
        ASSERT_TRUE(error);
        EXPECT_EQ(error->code(), NSCoderInvalidValueError);
    }
    endless.removeObjectAtIndex(0);
}

std::string archive(const std::string& top, const std::string& objects = "") {
    return "<plist><dict><key>$archiver</key><string>NSKeyedArchiver</string><key>$version</key><integer>1</integer>"
           "<key>$top</key>" +
           top + "<key>$objects</key><array>" + objects + "</array></dict></plist>";
}

std::string tagged(const std::string& kind, const std::string& rest = "") {
    return "<dict><key>$kind</key><string>" + kind + "</string>" + rest + "</dict>";
}

std::string object(const std::string& name, const std::string& values = "<dict/>") {
    return "<dict><key>class</key><string>" + name + "</string><key>values</key>" + values + "</dict>";
}

TEST(KeyedArchive, RefusesDamagedAndHostileArchives) {
    ASSERT_TRUE(Node::staticClass().create() && Stranger::staticClass().create());  // known by name from here on
    const std::string index = "<key>index</key><integer>0</integer>";
    const std::string values = "<key>values</key>";
    std::string deep = "<true/>";
    for (int level = 0; level < 150; ++level) deep = "<array>" + deep + "</array>";
    const std::string archives[] = {
        "",
        "no archive",
        "<plist><string>a</string></plist>",
        "<plist><dict/></plist>",
        archive("<dict/>"),
        archive("<date>2026-01-01T00:00:00Z</date>"),
        archive(deep),
        archive(tagged("strange", values + "<array/>")),
        archive(tagged("set")),
        archive(tagged("set", values + "<true/>")),
        archive(tagged("dictionary", values + "<array><true/></array>")),
        archive(tagged("unsigned", "<key>value</key><string>-1</string>")),
        archive(tagged("unsigned")),
        archive(tagged("date", "<key>value</key><string>1</string>")),
        archive(tagged("url", "<key>value</key><string>a b</string>")),
        archive(tagged("text", "<key>value</key><string>a</string>")),
        archive(tagged("object", index)),
        archive(tagged("object"), object("ServicesArchiveNode")),
        archive(tagged("object", "<key>index</key><integer>-1</integer>"), object("ServicesArchiveNode")),
        archive(tagged("object", "<key>index</key><real>0</real>"), object("ServicesArchiveNode")),
        archive(tagged("object", index), object("NoSuchClass")),
        archive(tagged("object", index), object("ServicesArchiveStranger")),
        archive(tagged("object", index), object("NSTimer")),
        archive(tagged("object", index), object("NSString")),
        archive(tagged("object", index), object("ServicesArchiveNode", "<array/>")),
        archive(tagged("object", index), "<true/>"),
        archive(tagged("object", index),
                object("ServicesArchiveNode", "<dict><key>value</key>" + tagged("strange") + "</dict>")),
    };
    for (const std::string& text : archives) {
        Ref<NSError> error;
        EXPECT_FALSE(NSKeyedUnarchiver::unarchiveObjectWithData(NSData::dataWithBytes(text), &error))
            << text.substr(0, 400);
        ASSERT_TRUE(error) << text.substr(0, 400);
        EXPECT_EQ(error->code(), NSCoderReadCorruptError);
    }
    EXPECT_FALSE(NSKeyedUnarchiver::unarchiveObjectWithData({}));
    // A known class with a value of another kind than it writes itself: the object copes.
    Value odd = NSKeyedUnarchiver::unarchiveObjectWithData(NSData::dataWithBytes(
        archive(tagged("object", index), object("ServicesArchiveNode", "<dict><key>next</key><true/></dict>"))));
    ASSERT_TRUE(odd.object<Node>());
    EXPECT_FALSE(odd.object<Node>()->next);
}

TEST(KeyedArchive, SurvivesEveryTruncationAndManyMutations) {
    auto first = make<Node>(), second = make<Node>();
    first->value = NSDictionary({{"a", NSArray({1, std::uint64_t{2}, 2.5, Value::null()})}});
    second->back = Weak<Node>(first);
    first->next = second;
    std::string sound(NSKeyedArchiver::archivedDataWithRootObject(NSArray({first, second})).text());
    for (std::size_t length = 0; length + 10 < sound.size(); ++length) {
        EXPECT_FALSE(NSKeyedUnarchiver::unarchiveObjectWithData(NSData::dataWithBytes(sound.substr(0, length))));
    }
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::string damaged = sound;
        for (int change = 0; change < 3; ++change) damaged[random() % damaged.size()] = static_cast<char>(random());
        Ref<NSError> error;
        Value result = NSKeyedUnarchiver::unarchiveObjectWithData(NSData::dataWithBytes(damaged), &error);
        EXPECT_NE(bool(result), bool(error));
        // What owns itself in a ring would outlive the test.
        for (const Value& each : result.as<NSArray>()) {
            if (auto* node = each.object<Node>()) node->next = nullptr;
        }
    }
}

}  // namespace
}  // namespace flarebox
