#include <Foundation/NSPropertyListSerialization.h>
#include <Foundation/StringsTable.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Tests/Support/TemporaryDirectory.h"

namespace flarebox {
namespace {

Value readBody(const std::string& body, Ref<NSError>* error = nullptr) {
    std::string text = "<?xml version=\"1.0\"?>\n<plist version=\"1.0\">" + body + "</plist>";
    return NSPropertyListSerialization::propertyListWithData(NSData::dataWithBytes(text), "T.plist", error);
}

std::string nested(int depth) {
    std::string text;
    for (int level = 0; level < depth; ++level) text += "<array>";
    for (int level = 0; level < depth; ++level) text += "</array>";
    return text;
}

TEST(PropertyList, ReadsEveryElement) {
    struct Case {
        const char* body;
        Value expected;
    };
    const Case cases[] = {
        {"<string>a &lt;b&gt; &amp; &#x41;&apos;</string>", "a <b> & A'"},
        {"<string>  two  blanks </string>", "  two  blanks "},
        {"<string>   </string>", "   "},
        {"<string>one<!-- not this -->two<![CDATA[<three>]]></string>", "onetwo<three>"},
        {"<string/>", ""},
        {"<integer> -12 </integer>", -12},
        {"<integer>+7</integer>", 7},
        {"<integer>0xFF</integer>", 255},
        {"<integer>18446744073709551615</integer>", std::numeric_limits<std::uint64_t>::max()},
        {"<integer>-9223372036854775808</integer>", std::numeric_limits<std::int64_t>::min()},
        {"<real>-1.5e3</real>", -1500.0},
        {"<true/>", true},
        {"<false></false>", false},
        {"<date>1970-01-02T00:00:01Z</date>", NSDate::dateWithTimeIntervalSince1970(86401)},
        {"<date>2024-02-29T12:00:00Z</date>", NSDate::dateWithTimeIntervalSince1970(1709208000)},
        {"<data>\n  aGVs\n  bG8=\n</data>", NSData::dataWithBytes("hello")},
        {"<array> <integer>1</integer> <!-- two --> <array> </array> </array>", NSArray({1, NSArray({})})},
        {"<dict> <key>a</key> <integer>1</integer> <key>a</key> <integer>2</integer> <key/> <dict/> </dict>",
         NSDictionary({{"a", 2}, {"", NSDictionary(std::initializer_list<NSDictionary::Entry>{})}})},
    };
    for (const Case& each : cases) {
        Ref<NSError> error;
        Value value = readBody(each.body, &error);
        EXPECT_EQ(value, each.expected) << each.body << ": " << value.description();
        EXPECT_EQ(value.kind(), each.expected.kind()) << each.body;
        EXPECT_FALSE(error) << each.body;
    }
    EXPECT_TRUE(readBody("<true/>").as<NSNumber>().isBoolean());
    EXPECT_TRUE(readBody("<real>2</real>").as<NSNumber>().isFloating());
    EXPECT_TRUE(std::isnan(readBody("<real>nan</real>").as<NSNumber>().doubleValue()));
}

TEST(PropertyList, RefusesWhatItIsNotAndNamesTheLine) {
    struct Case {
        std::string body;
        const char* line;
    };
    const Case cases[] = {
        {"", ":2: "},
        {"\n\n<string>a</strin>", ":4: "},
        {"\n<integer>12a</integer>", ":3: "},
        {"<integer/>", ":2: "},
        {"<integer>99999999999999999999</integer>", ":2: "},
        {"<real>one</real>", ":2: "},
        {"<date>2026-02-30T00:00:00Z</date>", ":2: "},
        {"<date>2026-02-03 00:00:00</date>", ":2: "},
        {"<dict><key>a</key></dict>", ":2: "},
        {"<dict>\n<string>a</string><true/></dict>", ":3: "},
        {"<dict>\n<key>a<b/></key><true/></dict>", ":3: "},
        {"<array>\n\n text </array>", ":"},
        {"<string>a<b>c</b></string>", ":2: "},
        {"\n<set/>", ":3: "},
        {"<true/><true/>", ":2: "},
        {"<string>\xFF\xFE</string>", ":"},
        {"\n<string>a\x18</string>", ":3: "},
        {"\n<string>&#24;</string>", ":3: "},
        {"<dict>\n<key>&#xD800;</key><true/></dict>", ":3: "},
        {nested(513), ":2: "},
        {"<array>", ":"},
    };
    for (const Case& each : cases) {
        Ref<NSError> error;
        EXPECT_FALSE(readBody(each.body, &error)) << each.body.substr(0, 60);
        ASSERT_TRUE(error) << each.body.substr(0, 60);
        EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
        EXPECT_EQ(error->code(), NSPropertyListReadCorruptError);
        EXPECT_NE(error->localizedDescription().find(std::string("T.plist") + each.line), std::string::npos)
            << error->localizedDescription();
    }
    EXPECT_TRUE(readBody(nested(512)));
    for (const char* text : {"", "{}", "bplist00", "<html/>", "<plist", "<plist><string>"}) {
        EXPECT_FALSE(NSPropertyListSerialization::propertyListWithData(NSData::dataWithBytes(text))) << text;
    }
}

TEST(PropertyList, ExpandsNoEntitiesOfTheFile) {
    std::string text =
        "<?xml version=\"1.0\"?><!DOCTYPE plist SYSTEM \"file:///etc/passwd\" [\n"
        "<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;&a;\"><!ENTITY c SYSTEM \"file:///etc/passwd\">]>\n"
        "<plist><string>&b;&c;</string></plist>";
    Value value = NSPropertyListSerialization::propertyListWithData(NSData::dataWithBytes(text));
    EXPECT_EQ(value, Value("&b;&c;"));
}

TEST(PropertyList, WritesWhatItReads) {
    Value list = NSDictionary({{"text", "a<b>&\"c\" \r\n\té漢😀  "},
                               {"blanks", "  "},
                               {"", ""},
                               {"yes", true},
                               {"no", false},
                               {"small", -5},
                               {"large", std::numeric_limits<std::uint64_t>::max()},
                               {"tenth", 0.1},
                               {"whole", 3.0},
                               {"huge", 1e300},
                               {"endless", -std::numeric_limits<double>::infinity()},
                               {"early", NSDate::dateWithTimeIntervalSince1970(-86400.0 * 365 * 1000)},
                               {"late", NSDate::dateWithTimeIntervalSince1970(4102444799)},
                               {"data", NSData::dataWithBytes(std::string_view("\0\1\xFF", 3))},
                               {"array", NSArray({1, NSArray({}), NSDictionary({{"k", "v"}})})}});
    Ref<NSError> error;
    NSData data = NSPropertyListSerialization::dataWithPropertyList(list, &error);
    ASSERT_TRUE(data) << error->localizedDescription();
    Value again = NSPropertyListSerialization::propertyListWithData(data, {}, &error);
    EXPECT_EQ(again, list) << data.text();
    EXPECT_TRUE(again.as<NSDictionary>().objectForKey("whole").as<NSNumber>().isFloating());
    EXPECT_TRUE(again.as<NSDictionary>().objectForKey("yes").as<NSNumber>().isBoolean());
    EXPECT_EQ(again.as<NSDictionary>().allKeys(), list.as<NSDictionary>().allKeys());
}

TEST(PropertyList, RefusesToWriteWhatItCannotHold) {
    const Value refused[] = {Value(),
                             Value::null(),
                             NSURL::URLWithString("http://a"),
                             NSArray({NSArray({Value::null()})}),
                             NSDictionary({{1, 2}}),
                             NSString(std::string_view("a\0b", 3)),
                             "bell\a",
                             "\xFF",
                             NSDictionary({{"\x01", 1}}),
                             NSDate::dateWithTimeIntervalSince1970(1e15),
                             NSDate::dateWithTimeIntervalSince1970(std::nan("")),
                             NSSet::setWithValues({})};
    for (const Value& value : refused) {
        Ref<NSError> error;
        EXPECT_FALSE(NSPropertyListSerialization::dataWithPropertyList(value, &error)) << value.description();
        ASSERT_TRUE(error) << value.description();
        EXPECT_EQ(error->code(), NSPropertyListWriteInvalidError);
    }
    auto endless = NSMutableArray::array();
    endless.addObject(endless);
    EXPECT_FALSE(NSPropertyListSerialization::dataWithPropertyList(endless));
    endless.removeObjectAtIndex(0);
}

TEST(PropertyList, FilesThatCannotBeReadSaySo) {
    testing::TemporaryDirectory folder;
    folder.write("bad.plist", "<plist>\n<integer>x</integer></plist>");
    folder.write("good.plist", "\xEF\xBB\xBF<plist><true/></plist>");
    Ref<NSError> error;
    EXPECT_EQ(NSPropertyListSerialization::propertyListWithContentsOfFile(folder.path("good.plist")), Value(true));
    EXPECT_FALSE(NSPropertyListSerialization::propertyListWithContentsOfFile(folder.path("bad.plist"), &error));
    EXPECT_NE(error->localizedDescription().find(folder.path("bad.plist") + ":2: "), std::string::npos);
    EXPECT_FALSE(NSPropertyListSerialization::propertyListWithContentsOfFile(folder.path("none"), &error));
    EXPECT_EQ(error->code(), 260);
    EXPECT_FALSE(NSPropertyListSerialization::propertyListWithContentsOfFile(folder.path(), &error));
}

TEST(StringsTables, AreReadUntilTheFirstMistake) {
    using Table = detail::StringsTable;
    struct Case {
        const char* text;
        Table expected;
        const char* failure;
    };
    const Case cases[] = {
        {"", {}, ""},
        {"\xEF\xBB\xBF\"a\" = \"b\";", {{"a", "b"}}, ""},
        {"/* one\n two */ \"Missing required parameter '%@'\"=\"Fehlt: '%@'\" ; // end",
         {{"Missing required parameter '%@'", "Fehlt: '%@'"}},
         ""},
        {"key.name = \"x\";\"a\"=\"1\";\"a\"=\"2\";", {{"key.name", "x"}, {"a", "2"}}, ""},
        {R"("q" = "\"\\\n\t\U00e4\uD83D\uDE00\x";)", {{"q", "\"\\\n\tä😀x"}}, ""},
        {"\"a\"=\"1\";\n\"b\" \"2\";", {{"a", "1"}}, "line 2: '=' is expected"},
        {"\"a\"=\"1\";\n\n\"b\" = \"2\"", {{"a", "1"}}, "line 3: ';' is expected"},
        {"\"a\" = b;", {}, "line 1: a text in quotation marks is expected"},
        {"\"a\" = \"b", {}, "line 1: text without an end"},
        {"\"a\" = \"b\\", {}, "line 1: text without an end"},
        {"/* a", {}, "line 1: comment without an end"},
        {"\"a\" = \"\\U12\";", {}, "line 1: four hexadecimal digits are expected"},
        {"\"a\" = \"\\UD800\";", {}, "line 1: no such character"},
        {"\"a\" = \"\\UD800\\U0041\";", {}, "line 1: half of a pair is missing"},
        {"= \"b\";", {}, "line 1: a key is expected"},
        {"\"a\" = \"\xC3\";", {}, "line 1: not valid UTF-8"},
    };
    for (const Case& each : cases) {
        std::string failure;
        EXPECT_EQ(detail::parseStringsTable(each.text, failure), each.expected) << each.text;
        EXPECT_EQ(failure, each.failure) << each.text;
    }
}

}  // namespace
}  // namespace flarebox
