#include <Foundation/NSJSONSerialization.h>
#include <Foundation/Storage.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <thread>
#include <vector>

namespace flarebox {
namespace {

Value decode(std::string_view text, NSJSONReadingOptions options = NSJSONReadingStrict, Ref<NSError>* error = nullptr) {
    return NSJSONSerialization::JSONObjectWithText(text, options, error);
}

Value fragment(std::string_view text) {
    return decode(text, NSJSONReadingAllowFragments);
}

std::string encode(const Value& value) {
    std::string text;
    Ref<NSError> error;
    if (NSJSONSerialization::writeJSONObject(value, text, NSJSONWritingFragmentsAllowed, &error)) return text;
    return error->localizedDescription();
}

std::string nested(int depth, const char* open = "[", const char* close = "]", const char* middle = "") {
    std::string text;
    for (int i = 0; i < depth; ++i) text += open;
    text += middle;
    for (int i = 0; i < depth; ++i) text += close;
    return text;
}

const char* const sample =
    R"({"uid":"a-1","name":"Caf\u00e9 \"\ud83d\ude00\"","price":12.50,"big":18446744073709551615,"low":-9223372036854775808,)"
    R"("flags":[true,false,null],"nested":{"empty":{},"list":[[],[1,[2,[3]]]]},"tags":["x","","\n\t\/"],"e":1e3})";

TEST(JsonTests, ScalarsKeepTheirKindAndDigits) {
    struct {
        const char* text;
        Value value;
    } const rows[] = {
        {"null", Value::null()},
        {"true", true},
        {"false", false},
        {"0", 0},
        {"-1", -1},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"18446744073709551615", std::numeric_limits<std::uint64_t>::max()},
        {"18446744073709551616", 0x1p64},
        {"-9223372036854775809", -0x1p63},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
        {"1.0", 1.0},
        {"-0.0", -0.0},
        {"1e3", 1000.0},
        {"2.5E-1", 0.25},
        {"\"\"", ""},
        {R"("\"\\\/\b\f\n\r\t\u0041")", "\"\\/\b\f\n\r\tA"},
        {R"("\u0000x")", std::string_view("\0x", 2)},
        {R"("\ud83d\ude00é")", "😀é"},
        {" \n7 ", 7},
        {"\xef\xbb\xbf[7]", NSArray{7}},
    };
    for (const auto& row : rows) {
        const Value value = fragment(row.text);
        EXPECT_EQ(value, row.value) << row.text;
        if (value.kind() != Value::Kind::Number) continue;
        EXPECT_EQ(value.as<NSNumber>().isBoolean(), row.value.as<NSNumber>().isBoolean()) << row.text;
        EXPECT_EQ(value.as<NSNumber>().isFloating(), row.value.as<NSNumber>().isFloating()) << row.text;
    }
    EXPECT_TRUE(std::signbit(fragment("-0.0").as<NSNumber>().doubleValue()));
    EXPECT_FALSE(decode("7"));
    EXPECT_FALSE(decode("\"text\""));
}

TEST(JsonTests, HostileDocumentsAreRefusedWithAReason) {
    std::string longNumber = "[1" + std::string(400, '0') + "]";
    struct {
        std::string text;
        const char* reason;
    } const rows[] = {
        {"", "empty"},
        {"  \n ", "empty"},
        {"[1,\n 2,\n x]", "line 3, column 2"},
        {"[1,]", "line 1, column 4"},
        {"[1 2]", "line 1, column 4"},
        {"[tru]", "true, false and null"},
        {"[nul]", "true, false and null"},
        {"{\"a\" 1}", "malformed"},
        {"{a:1}", "malformed"},
        {"{\"a\":1,}", "malformed"},
        {"[1}", "malformed"},
        {"[1]]", "malformed"},
        {"[1] [2]", "malformed"},
        {"[01]", "number"},
        {"[1.]", "number"},
        {"[.5]", ""},
        {"[+1]", ""},
        {"[NaN]", ""},
        {"[1e400]", "number"},
        {longNumber, "number"},
        {"[\"a]", "closed"},
        {"[\"a\nb\"]", "control character"},
        {R"(["\x"])", "escape"},
        {R"(["\u12"])", "escape"},
        {R"(["\ud83d"])", "escape"},
        {R"(["\ud83dx"])", "escape"},
        {R"(["\ud83d\u0041"])", "escape"},
        {R"(["\ude00"])", ""},
        {"[\"\xff\"]", "UTF-8 at line 1, column 3"},
        {"[\n\"é\xc3\x28\"]", "UTF-8 at line 2, column 4"},
        {"[\"\xed\xa0\x80\"]", "UTF-8"},
        {"[\"\xc0\x80\"]", "UTF-8"},
        {std::string("[1\0]", 4), ""},
        {"\xef\xbb[1]", "UTF-8"},
        {"\xef\xbb\xbf", "empty"},
        {nested(NSJSONSerialization::maximumDepth + 1), "512"},
        {nested(NSJSONSerialization::maximumDepth + 1, "[", "]", "1"), "512"},
        {nested(1000000), "512"},
        {std::string(1000000, '['), ""},
        {nested(100000, "{\"a\":", "}"), ""},
    };
    for (const auto& row : rows) {
        Ref<NSError> error;
        EXPECT_FALSE(decode(row.text, NSJSONReadingStrict, &error)) << row.text.substr(0, 40);
        ASSERT_TRUE(error) << row.text.substr(0, 40);
        EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
        EXPECT_EQ(error->code(), 3840);
        EXPECT_NE(error->localizedDescription().find(row.reason), std::string::npos)
            << row.text.substr(0, 40) << ": " << error->localizedDescription();
    }
    EXPECT_FALSE(NSJSONSerialization::JSONObjectWithData(NSData(), nullptr));
    EXPECT_TRUE(decode(nested(NSJSONSerialization::maximumDepth)));
    EXPECT_TRUE(decode(nested(NSJSONSerialization::maximumDepth, "{\"a\":", "}", "1")));
}

TEST(JsonTests, TruncatedDocumentsAreRefusedAtEveryByte) {
    const std::string_view text = sample;
    ASSERT_TRUE(decode(text));
    for (std::size_t length = 0; length < text.size(); ++length) {
        Ref<NSError> error;
        EXPECT_FALSE(decode(text.substr(0, length), NSJSONReadingStrict, &error)) << length;
        EXPECT_TRUE(error) << length;
    }
}

TEST(JsonTests, DamagedDocumentsNeverDoHarm) {
    std::mt19937 random(7);
    const std::string original = std::string("[") + sample + "," + sample + "]";
    const std::string_view pieces = "{}[]\",:\\u0123456789eE+-. truefalsnl\n\xc3\xff";
    int accepted = 0;
    for (int round = 0; round < 6000; ++round) {
        std::string text = original;
        for (int change = 0; change < 1 + round % 3; ++change) {
            const std::size_t at = random() % text.size();
            if (random() % 3 == 0)
                text.erase(at, 1 + random() % 8);
            else if (random() % 2 == 0)
                text.insert(at, 1, pieces[random() % pieces.size()]);
            else
                text[at] = pieces[random() % pieces.size()];
            if (text.empty()) text = "[]";
        }
        Ref<NSError> error;
        const Value value = decode(text, NSJSONReadingStrict, &error);
        ASSERT_NE(static_cast<bool>(value), static_cast<bool>(error)) << text;
        if (!value) continue;
        ++accepted;
        // Whatever was accepted says the same when written and read again.
        ASSERT_EQ(decode(encode(value)), value) << text;
    }
    EXPECT_GT(accepted, 50);
}

TEST(JsonTests, TheLastOfEqualKeysWinsAtThePlaceOfTheFirst) {
    EXPECT_EQ(decode(R"({"b":1,"a":2,"b":[3],"\u0061":4})").description(), "{b: [3], a: 4}");
    // More keys than are searched one by one, several records with and without repeated keys.
    std::string record;
    for (int i = 0; i < 40; ++i) record += "\"k" + std::to_string(i % 30) + "\":" + std::to_string(i) + ",";
    const std::string repeated = "{" + record + "\"end\":true}";
    std::string distinct = repeated;
    distinct.replace(distinct.find("\"k0\":30"), 7, "\"kX\":30");
    const auto records = decode("[" + repeated + "," + repeated + "," + distinct + "," + repeated + "]").as<NSArray>();
    ASSERT_EQ(records.count(), 4u);
    for (std::size_t r = 0; r < 4; ++r) {
        const auto dictionary = records.objectAtIndex(r).as<NSDictionary>();
        EXPECT_EQ(dictionary.count(), r == 2 ? 32u : 31u);
        EXPECT_EQ(dictionary.entries()[0].first, Value("k0"));
        EXPECT_EQ(dictionary.objectForKey("k0"), Value(r == 2 ? 0 : 30));
        EXPECT_EQ(dictionary.objectForKey("k9"), Value(39));
        EXPECT_EQ(dictionary.objectForKey("k10"), Value(10));
        EXPECT_EQ(dictionary.objectForKey("end"), Value(true));
        EXPECT_TRUE(dictionary.objectForKey("k30").isAbsent());
        EXPECT_TRUE(dictionary.objectForKey(Value(1)).isAbsent());
    }
}

// Records of one list share what they have in common; each must still say what its own text says.
TEST(JsonTests, RecordsOfUnlikeKeysDoNotMixUp) {
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        std::vector<Value> expected;
        for (int r = 0; r < 12; ++r) {
            auto record = NSMutableDictionary::dictionary();
            const int count = static_cast<int>(random() % 24);
            for (int k = 0; k < count; ++k) {
                const std::string key = "key" + std::to_string(random() % 8 == 0 ? random() % 40 : unsigned(k));
                const bool isNested = random() % 10 == 0;
                record.setObject(isNested ? Value(NSDictionary{{key, k}, {"inner", NSArray{NSDictionary{{"x", k}}}}})
                                          : Value(static_cast<int>(random() % 1000)),
                                 key);
            }
            expected.push_back(record);
        }
        const Value value = NSArray::arrayWithValues(expected);
        const Value decoded = decode(encode(value));
        ASSERT_EQ(decoded, value);
        ASSERT_EQ(decoded.description(), value.description());
    }
}

TEST(JsonTests, PartsOutliveTheirDocumentAndItsThread) {
    NSString text, key;
    NSDictionary inner;
    std::thread([&] {
        const auto root = decode(sample).as<NSDictionary>();
        text = root.objectForKey("name").as<NSString>();
        inner = root.objectForKey("nested").as<NSDictionary>();
        for (const auto& [name, value] : root.entries()) {
            if (value == Value(12.5)) key = name.as<NSString>();
        }
    }).join();
    decode("[\"something else that uses the memory of the parser again\"]");
    EXPECT_EQ(text, "Café \"😀\"");
    EXPECT_EQ(key, "price");
    EXPECT_EQ(inner.description(), "{empty: {}, list: [[], [1, [2, [3]]]]}");
    Value element = inner.objectForKey("list");
    inner = nullptr;
    element = element.as<NSArray>().elements()[1];
    EXPECT_EQ(element.description(), "[1, [2, [3]]]");

    auto copy = decode(sample).as<NSDictionary>().mutableCopy();
    copy.setObject(decode("[{\"a\":[\"b\"]}]"), "more");
    std::vector<Value> moved;
    for (const auto& entry : copy.entries()) moved.push_back(entry.second);
    copy = nullptr;
    EXPECT_EQ(moved.back().description(), "[{a: [b]}]");
}

TEST(JsonTests, BorrowedValuesLeaveTheirOwnerAsCountedCopies) {
    using detail::ValueAccess;
    Value copy, element, replaced;
    {
        const auto owner = decode(sample).as<NSDictionary>();
        Value field = "replaced";
        ValueAccess::borrowLike(field, owner.entries()[0].second);
        Value list;
        ValueAccess::borrowLike(list, owner.objectForKey("flags"));
        EXPECT_EQ(field, owner.entries()[0].second);
        copy = field;
        element = std::move(list);
        ValueAccess::borrowLike(field, Value(std::string("own text")));
        replaced = field;
        ValueAccess::borrowLike(field, 5);
        EXPECT_EQ(field, Value(5));
    }
    EXPECT_EQ(copy, decode(sample).as<NSDictionary>().entries()[0].second);
    EXPECT_EQ(element.description(), "[1, 0, <null>]");
    EXPECT_EQ(replaced, Value("own text"));
}

// A number's bits may look like a text on the parser's tape.
TEST(JsonTests, NumbersThatLookLikeTexts) {
    EXPECT_EQ(decode(R"(["text",2449958197289549824,7782220156096217088])").description(),
              "[text, 2449958197289549824, 7782220156096217088]");
    EXPECT_EQ(decode("[2449958197289549824]").description(), "[2449958197289549824]");
    EXPECT_EQ(decode(R"({"a":["text",7782220156096217088,2449958197289549825]})").description(),
              "{a: [text, 7782220156096217088, 2449958197289549825]}");
}

// Large documents become values in place instead of being copied.
TEST(JsonTests, LargeDocumentsAreReadLikeSmallOnes) {
    const std::string record = sample;
    std::string text = "[" + record;
    while (text.size() < (std::size_t{5} << 20)) text += "," + record;
    text += "]";
    auto records = decode(text).as<NSArray>();
    const Value expected = decode(record);
    ASSERT_GT(records.count(), 1000u);
    for (const Value& element : records) ASSERT_EQ(element, expected);
    const Value last = records.objectAtIndex(records.count() - 1);
    records = nullptr;
    EXPECT_EQ(last, expected);
    const std::string numbers = "[" + std::string(std::size_t{5} << 20, ' ') + "18446744073709551616]";
    EXPECT_EQ(decode(numbers).description(), "[18446744073709551616]");
    EXPECT_FALSE(decode(text.substr(0, text.size() - 1)));
}

TEST(JsonTests, OneDocumentMayBeReadOnSeveralThreads) {
    const auto root = decode(sample).as<NSDictionary>();
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([root] {
            for (int round = 0; round < 500; ++round) {
                const Value name = root.objectForKey("name");
                EXPECT_EQ(name, Value("Café \"😀\""));
                EXPECT_EQ(decode(sample), Value(root));
            }
        });
    }
    for (auto& thread : threads) thread.join();
}

TEST(JsonTests, ValuesAreWrittenAsTheyAreRead) {
    struct {
        Value value;
        const char* text;
    } const rows[] = {
        {Value::null(), "null"},
        {true, "true"},
        {1, "1"},
        {std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
        {0.1, "0.1"},
        {-0.0, "-0"},
        {1e300, "1e+300"},
        {"a/\"\\\b\f\n\r\t\x01\x1f\x7fé😀", R"("a/\"\\\b\f\n\r\t\u0001\u001f)"
                                           "\x7f"
                                           R"(é😀")"},
        {std::string_view("\0", 1), R"("\u0000")"},
        {NSArray::array(), "[]"},
        {NSDictionary{{"b", NSArray{1, "x"}}, {"a", NSDictionary::dictionary()}}, R"({"b":[1,"x"],"a":{}})"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(encode(row.value), row.text);
        EXPECT_EQ(fragment(row.text), row.value) << row.text;
    }
    const Value value = decode(sample);
    EXPECT_EQ(decode(encode(value)), value);
    Ref<NSError> error;
    EXPECT_FALSE(NSJSONSerialization::dataWithJSONObject(1, &error));
    EXPECT_TRUE(error);
    EXPECT_EQ(NSJSONSerialization::dataWithJSONObject(NSArray{1}, nullptr).text(), "[1]");
}

TEST(JsonTests, WhatHasNoJSONFormIsNamedByItsKeyPath) {
    Value deep = NSArray::array();
    for (int i = 0; i < 100000; ++i) deep = NSArray{deep};
    auto inside = [](const Value& value) -> Value {
        return NSDictionary{{"data", NSArray{1, NSDictionary{{"when", value}}}}};
    };
    struct {
        Value value;
        const char* reason;
    } const rows[] = {
        {inside(NSDate::dateWithTimeIntervalSince1970(0)), "a value of class NSDate has no JSON form at data[1].when"},
        {inside(NSData::dataWithBytes("x")), "NSData"},
        {inside(NSURL::URLWithString("http://a")), "NSURL"},
        {inside(NSSet::setWithValues({})), "NSSet"},
        {inside(make<NSObject>()), "NSObject"},
        {inside(std::nan("")), "nan has no JSON form at data[1].when"},
        {inside(std::numeric_limits<double>::infinity()), "inf"},
        {inside("\xff"), "UTF-8 has no JSON form at data[1].when"},
        {inside(NSDictionary{{1, 2}}), "data[1].when.1"},
        {inside(NSDictionary{{"\xff", 2}}), "UTF-8"},
        {deep, "too deep"},
    };
    for (const auto& row : rows) {
        std::string text = "before";
        Ref<NSError> error;
        EXPECT_FALSE(NSJSONSerialization::writeJSONObject(row.value, text, NSJSONWritingStrict, &error));
        EXPECT_EQ(text, "before");
        ASSERT_TRUE(error);
        EXPECT_NE(error->localizedDescription().find(row.reason), std::string::npos) << error->localizedDescription();
        EXPECT_LT(error->localizedDescription().size(), 4000u);
    }
}

}  // namespace
}  // namespace flarebox
