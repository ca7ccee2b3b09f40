#include <Foundation/Clock.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

namespace flarebox {
namespace {

constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t largestUnsigned = std::numeric_limits<std::uint64_t>::max();
const double notANumber = std::nan("");
const double infinity = std::numeric_limits<double>::infinity();

template <class Typed = NSNumber>
Typed typed(const Value& value) {
    return value.as<Typed>();
}

TEST(ValuesTests, NumbersCompareByExactValueWhateverTheirKind) {
    struct {
        Value a, b;
        bool equal;
    } const rows[] = {
        {1, 1u, true},
        {true, 1, true},
        {true, 1.0, true},
        {false, 0, true},
        {true, 2, false},
        {-1, largestUnsigned, false},
        {largest, static_cast<std::uint64_t>(largest), true},
        {largestUnsigned, 0x1p64, false},
        {largestUnsigned, largestUnsigned, true},
        {std::uint64_t{1} << 63, 0x1p63, true},
        {largest, 0x1p63, false},
        {smallest, -0x1p63, true},
        {std::int64_t{1} << 53, 0x1p53, true},
        {(std::int64_t{1} << 53) + 1, 0x1p53, false},
        {0.0, -0.0, true},
        {0, -0.0, true},
        {notANumber, notANumber, true},
        {notANumber, 0, false},
        {infinity, largestUnsigned, false},
        {1.5, 1, false},
        {1, "1", false},
        {0, nullptr, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.a == row.b, row.equal) << row.a.description() << " and " << row.b.description();
        EXPECT_EQ(row.b == row.a, row.equal) << row.b.description() << " and " << row.a.description();
        if (row.equal) {
            EXPECT_EQ(row.a.hash(), row.b.hash()) << row.a.description();
        }
    }
    EXPECT_TRUE(Value(1).isSameAs(1));
    EXPECT_FALSE(Value(1).isSameAs(true));
    EXPECT_FALSE(Value(1).isSameAs(1.0));
    EXPECT_FALSE(Value(0.0).isSameAs(-0.0));
}

TEST(ValuesTests, NumbersConvertBySaturating) {
    struct {
        Value number;
        std::int64_t integer;
        std::uint64_t unsignedInteger;
        int small;
        bool boolean;
        const char* text;
    } const rows[] = {
        {true, 1, 1, 1, true, "1"},
        {-5, -5, 0, -5, true, "-5"},
        {largestUnsigned, largest, largestUnsigned, 2147483647, true, "18446744073709551615"},
        {smallest, smallest, 0, -2147483647 - 1, true, "-9223372036854775808"},
        {notANumber, 0, 0, 0, true, "nan"},
        {infinity, largest, largestUnsigned, 2147483647, true, "inf"},
        {-1e300, smallest, 0, -2147483647 - 1, true, "-1e+300"},
        {0x1p63, largest, std::uint64_t{1} << 63, 2147483647, true, "9223372036854775808"},
        {1.5, 1, 1, 1, true, "1.5"},
        {12.0, 12, 12, 12, true, "12"},
        {0.1, 0, 0, 0, true, "0.1"},
        {-0.0, 0, 0, 0, false, "-0"},
        {Value(), 0, 0, 0, false, ""},
    };
    for (const auto& row : rows) {
        const auto number = typed(row.number);
        EXPECT_EQ(number.integerValue(), row.integer) << row.text;
        EXPECT_EQ(number.unsignedIntegerValue(), row.unsignedInteger) << row.text;
        EXPECT_EQ(number.intValue(), row.small) << row.text;
        EXPECT_EQ(number.boolValue(), row.boolean) << row.text;
        EXPECT_EQ(number.stringValue(), row.text);
    }
    EXPECT_TRUE(NSNumber(true).isBoolean());
    EXPECT_FALSE(NSNumber().isUnsigned());
}

TEST(ValuesTests, TextsReadAsTheirLeadingNumber) {
    struct {
        const char* text;
        double number;
        std::int64_t integer;
    } const rows[] = {
        {"", 0, 0},
        {"12", 12, 12},
        {" \t\n12.75abc", 12.75, 12},
        {"+3", 3, 3},
        {"-3.5e2x", -350, -3},
        {"+-3", 0, 0},
        {"--3", 0, 0},
        {".5", 0.5, 0},
        {"-.5", -0.5, 0},
        {"1e", 1, 1},
        {"1,5", 1, 1},
        {"abc", 0, 0},
        {"nan", 0, 0},
        {"inf", 0, 0},
        {"-infinity", 0, 0},
        {"0x10", 0, 0},
        {"1e999", infinity, 1},
        {"-1e999", -infinity, -1},
        {"1e-999", 0, 1},
        {"99999999999999999999", 1e20, largest},
        {"-99999999999999999999", -1e20, smallest},
        {"9223372036854775807", 9223372036854775808.0, largest},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(NSString(row.text).doubleValue(), row.number) << row.text;
        EXPECT_EQ(NSString(row.text).integerValue(), row.integer) << row.text;
    }
    const std::string zeros(400, '0');
    const std::pair<std::string, double> farOut[] = {
        {"0." + zeros + "1e5", 0},      {"." + zeros + "1e2", 0},         {"1" + zeros + "e-5", infinity},
        {"01" + zeros, infinity},       {"-1" + zeros + ".5", -infinity}, {"1e99999999999999999999", infinity},
        {"1e-99999999999999999999", 0},
    };
    for (const auto& [text, number] : farOut) EXPECT_EQ(NSString(text).doubleValue(), number) << text.substr(0, 8);
    EXPECT_EQ(NSString("0.1").floatValue(), 0.1f);
    EXPECT_EQ(NSString("1e300").floatValue(), std::numeric_limits<float>::infinity());
    EXPECT_EQ(NSString().doubleValue(), 0);
}

TEST(ValuesTests, TextsKeepTheirBytesAndIdentity) {
    const std::string_view bytes("a\0b", 3);
    const NSString text(bytes);
    const Value copy = text;
    EXPECT_EQ(text.text(), bytes);
    EXPECT_TRUE(copy.isSameAs(text));
    EXPECT_FALSE(copy.isSameAs(NSString(bytes)));
    EXPECT_EQ(copy, Value(bytes));
    EXPECT_EQ(NSString::stringWithConstant("a"), NSString("a"));
    EXPECT_EQ(NSString::stringWithConstant("a").hash(), NSString("a").hash());
    EXPECT_TRUE(Value(static_cast<const char*>(nullptr)).isAbsent());
    EXPECT_FALSE(NSString("").isAbsent());
    EXPECT_FALSE(NSString() == "");
    EXPECT_EQ(Value("a").as<NSString>(), "a");
    EXPECT_TRUE(Value("1").as<NSNumber>().isAbsent());
    std::string_view view;
    {
        const NSString inner = text;
        view = inner.text();
    }
    EXPECT_EQ(view.data(), text.text().data()) << "a text does not move with its handle";
}

TEST(ValuesTests, DescriptionsAreForPeople) {
    const NSArray array{1, "two", NSDictionary{{"key", Value::null()}}};
    struct {
        Value value;
        const char* description;
    } const rows[] = {
        {Value(), "(null)"},
        {Value::null(), "<null>"},
        {true, "1"},
        {2.5, "2.5"},
        {"text", "text"},
        {array, "[1, two, {key: <null>}]"},
        {NSArray::array(), "[]"},
        {NSDictionary{{"a", 1}, {2, "b"}}, "{a: 1, 2: b}"},
        {NSSet::setWithValues(std::vector<Value>{"a", "b", "a"}), "{(a, b)}"},
        {NSOrderedSet::orderedSetWithValues(std::vector<Value>{2, 1, 2.0}), "[2, 1]"},
        {NSDate::dateWithTimeIntervalSince1970(0), "1970-01-01 00:00:00 +0000"},
        {NSDate::dateWithTimeIntervalSince1970(-1), "1969-12-31 23:59:59 +0000"},
        {NSDate::dateWithTimeIntervalSince1970(1767225600.75), "2026-01-01 00:00:00 +0000"},
        {NSURL::URLWithString("https://a.example/b"), "https://a.example/b"},
        {NSData::dataWithBytes("\x01\xff"), "<2 bytes: 01ff>"},
        {NSData::dataWithBytes(""), "<0 bytes>"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.value.description(), row.description);
    EXPECT_NE(Value(NSDate::dateWithTimeIntervalSince1970(1e300)).description(), "");
    EXPECT_NE(Value(NSDate::dateWithTimeIntervalSince1970(notANumber)).description(), "");
}

TEST(ValuesTests, DatesTellTimeByTheClockInForce) {
    VirtualClock clock;
    Clock::setCurrent(&clock);
    const NSDate first = NSDate::date();
    clock.advance(90);
    EXPECT_EQ(NSDate::date().timeIntervalSinceDate(first), 90);
    EXPECT_EQ(first, NSDate::dateWithTimeIntervalSince1970(first.timeIntervalSince1970()));
    Clock::setCurrent(nullptr);
}

TEST(ValuesTests, CollectionsCompareElementByElement) {
    const std::vector<Value> ab{"a", 1}, ba{1.0, "a"};
    EXPECT_EQ(Value(NSArray{"a", 1}), Value(NSArray{"a", true}));
    EXPECT_NE(Value(NSArray{"a", 1}), Value(NSArray{1, "a"}));
    EXPECT_NE(Value(NSArray{"a"}), Value(NSArray{"a", 1}));
    EXPECT_EQ(Value(NSSet::setWithValues(ab)), Value(NSSet::setWithValues(ba)));
    EXPECT_EQ(NSSet::setWithValues(ab).hash(), NSSet::setWithValues(ba).hash());
    EXPECT_NE(Value(NSOrderedSet::orderedSetWithValues(ab)), Value(NSOrderedSet::orderedSetWithValues(ba)));
    EXPECT_NE(Value(NSOrderedSet::orderedSetWithValues(ab)), Value(NSArray{"a", 1}));
    EXPECT_EQ(Value(NSDictionary{{"a", 1}, {"b", 2}}), Value(NSDictionary{{"b", 2}, {"a", 1}}));
    EXPECT_NE(Value(NSDictionary{{"a", 1}}), Value(NSDictionary{{"b", 1}}));
    EXPECT_EQ(Value(NSArray{1}), Value(NSArray{1}.mutableCopy()));
}

TEST(ValuesTests, DictionariesKeepTheOrderOfFirstArrivalAndTheLastValue) {
    const NSDictionary dictionary{{"b", 1}, {"a", 2}, {"b", 3}, {"gone", Value()}};
    EXPECT_EQ(dictionary.description(), "{b: 3, a: 2}");
    EXPECT_EQ(Value(dictionary.allKeys()), Value(NSArray{"b", "a"}));
    EXPECT_EQ(Value(dictionary.allValues()), Value(NSArray{3, 2}));
    EXPECT_TRUE(dictionary.objectForKey("c").isAbsent());
    EXPECT_TRUE(NSDictionary().objectForKey("c").isAbsent());
    EXPECT_EQ(NSDictionary({{1, "one"}}).objectForKey(Value(true)), Value("one"));
}

TEST(ValuesTests, LargeDictionariesFindEveryKeyThroughChanges) {
    auto dictionary = NSMutableDictionary::dictionary();
    constexpr int count = 1000;
    for (int i = 0; i < count; ++i) dictionary.setObject(i, std::to_string(i));
    for (int i = 0; i < count; i += 3) dictionary.removeObjectForKey(std::to_string(i));
    for (int i = 0; i < count; i += 7) dictionary.setObject(-i, std::to_string(i));
    for (int i = 0; i < count; ++i) {
        const Value expected = i % 7 == 0 ? Value(-i) : i % 3 == 0 ? Value() : Value(i);
        EXPECT_EQ(dictionary.objectForKey(std::to_string(i)), expected) << i;
    }
    const NSDictionary frozen = dictionary.copy();
    dictionary.setObject(nullptr, "1");
    EXPECT_TRUE(dictionary.objectForKey("1").isAbsent());
    EXPECT_EQ(frozen.objectForKey("1"), Value(1));
    EXPECT_EQ(Value(frozen.mutableCopy()), Value(frozen));

    // The index is built by whichever thread looks first.
    const NSDictionary fresh = frozen.mutableCopy().copy();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread) {
        threads.emplace_back([fresh] {
            for (int i = 1; i < count; i += 21) EXPECT_EQ(fresh.objectForKey(std::to_string(i)), Value(i));
        });
    }
    for (auto& thread : threads) thread.join();
}

TEST(ValuesTests, MutableCollectionsAreSharedByTheirHandlesAndLeftByCopies) {
    auto array = NSMutableArray::array();
    const NSArray alias = array;
    array.addObject(1);
    array.addObject(Value());
    array.addObject(2);
    const NSArray copy = alias.copy();
    array.replaceObjectAtIndex(0, "one");
    array.replaceObjectAtIndex(9, "nine");
    array.removeObjectAtIndex(1);
    array.removeObjectAtIndex(9);
    EXPECT_EQ(alias.description(), "[one]");
    EXPECT_EQ(copy.description(), "[1, 2]");
    EXPECT_TRUE(copy.objectAtIndex(2).isAbsent());
    EXPECT_TRUE(alias.isKindOf(NSMutableArray::staticClass()));
    EXPECT_FALSE(copy.isKindOf(NSMutableArray::staticClass()));
    EXPECT_TRUE(copy.as<NSMutableArray>().isAbsent());
    EXPECT_TRUE(copy.copy().isSameAs(copy));

    NSMutableArray().addObject(1);
    NSMutableDictionary().setObject(1, "a");
    EXPECT_TRUE(NSArray().mutableCopy().isAbsent());

    std::vector<Value> many;
    for (int i = 0; i < 100; ++i) many.push_back(i % 50);
    const auto set = NSMutableSet::setWithValues(many);
    EXPECT_EQ(set.count(), 50u);
    EXPECT_TRUE(set.containsObject(49.0));
    EXPECT_FALSE(set.containsObject(50));
    EXPECT_TRUE(set.isKindOf(*classFromName("NSSet")));
}

TEST(ValuesTests, VeryDeepNestingNeedsNoDeepStack) {
    constexpr int depth = 100000;
    auto nested = [](int levels) {
        Value value = NSArray::array();
        for (int i = 0; i < levels; ++i) {
            value = i % 2 == 0 ? Value(NSArray{value}) : Value(NSDictionary{{"inner", value}});
        }
        return value;
    };
    const Value deep = nested(depth);
    const Value other = nested(depth);
    EXPECT_LT(deep.description().size(), 2000u);
    EXPECT_EQ(deep.hash(), other.hash());
    EXPECT_EQ(deep, Value(deep));
    EXPECT_NE(deep, other) << "beyond the bound only identity counts";
    EXPECT_EQ(nested(500), nested(500));
}

TEST(ValuesTests, LinksAreAcceptedOnlyInTheFormOfRFC3986) {
    struct {
        const char* text;
        const char *scheme, *host, *path, *query;
        int port;
    } const accepted[] = {
        {"https://Example.com", "https", "Example.com", "", "", -1},
        {"HTTPS://user:pw@example.com:8443/a/b?x=1&y=2#top", "https", "example.com", "/a/b", "x=1&y=2", 8443},
        {"http://[::1]:80/", "http", "::1", "/", "", 80},
        {"http://127.0.0.1:/a%20b?c%20d", "http", "127.0.0.1", "/a b", "c%20d", -1},
        {"App-Prefs:root=Privacy&path=Advertising", "app-prefs", "", "root=Privacy&path=Advertising", "", -1},
        {"kestrin://", "kestrin", "", "", "", -1},
        {"file:///tmp/x", "file", "", "/tmp/x", "", -1},
        {"/game/common-assets/?limit=20", "", "", "/game/common-assets/", "limit=20", -1},
        {"relative/path:with-colon", "", "", "relative/path:with-colon", "", -1},
        {"//host/path", "", "host", "/path", "", -1},
        {"?q", "", "", "", "q", -1},
        {"#f?a/b", "", "", "", "", -1},
        {"a?b?c", "", "", "a", "b?c", -1},
    };
    for (const auto& row : accepted) {
        const NSURL url = NSURL::URLWithString(row.text);
        ASSERT_TRUE(url) << row.text;
        EXPECT_EQ(url.absoluteString(), row.text);
        EXPECT_EQ(url.scheme(), row.scheme) << row.text;
        EXPECT_EQ(url.host(), row.host) << row.text;
        EXPECT_EQ(url.path(), row.path) << row.text;
        EXPECT_EQ(url.query(), row.query) << row.text;
        EXPECT_EQ(url.port().value_or(-1), row.port) << row.text;
    }
    const char* const refused[] = {
        "",         "http://a b/", " http://a",     "http://a/\n",    "http://a/\x7f",  "http://a/\xc3\xa9",
        "http://%", "http://a/%2", "http://a/%zz",  "http://a/\"",    "http://a/<b>",   "http://a/\\b",
        "http://^", "http://a/`",  "http://a/{b}",  "http://a/?x|y",  "http://a/[b]",   "http://[::1",
        "http://]", "http://[]/",  "http://[::1]a", "http://a:port/", "http://a:70000", "http://a:-1/",
        "1a:b",     ":no-scheme",  "http://a#b#c",  "http://[a b]/",  "http://a@b@c/",  "http://[::1]:x",
    };
    for (const char* text : refused) EXPECT_FALSE(NSURL::URLWithString(text)) << text;
    EXPECT_FALSE(NSURL::URLWithString(NSString()));
    EXPECT_FALSE(NSURL::URLWithString(std::string_view("a\0b", 3)));
    EXPECT_EQ(Value(NSURL::URLWithString("a")), Value(NSURL::URLWithString("a")));
    EXPECT_NE(Value(NSURL::URLWithString("a")), Value("a"));
}

TEST(ValuesTests, Base64IsReadAndWritten) {
    struct {
        const char* encoded;
        const char* bytes;
    } const rows[] = {
        {"", ""}, {"Zg==", "f"}, {"Zm8=", "fo"}, {"Zm9v", "foo"}, {"Zm9vYg==", "foob"}, {"/+8=", "\xff\xef"},
    };
    for (const auto& row : rows) {
        const NSData data = NSData::dataWithBase64EncodedString(row.encoded);
        ASSERT_TRUE(data) << row.encoded;
        EXPECT_EQ(data.text(), row.bytes);
        EXPECT_EQ(NSData::dataWithBytes(row.bytes).base64EncodedString(), row.encoded);
    }
    EXPECT_EQ(NSData::dataWithBase64EncodedString(" Z\nm-9*v\xc3\xa9 Y g = = ").text(), "foob");
    for (const char* text : {"Z", "Zg", "Zg=", "Zg===", "=", "====", "Zm9v=", "Zg==Zg==", "Zm8=Zm8="}) {
        EXPECT_FALSE(NSData::dataWithBase64EncodedString(text)) << text;
    }
    EXPECT_FALSE(NSData::dataWithBase64EncodedString(NSString()));
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    const NSData data = NSData::dataWithString(std::string(all));
    EXPECT_EQ(Value(NSData::dataWithBase64EncodedString(data.base64EncodedString())), Value(data));
    EXPECT_EQ(data.bytes()[255], std::byte{255});
}

}  // namespace
}  // namespace flarebox
