#include <Foundation/MainQueue.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSProcessInfo.h>
#include <Foundation/NSPropertyListSerialization.h>
#include <Foundation/NSUserDefaults.h>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "Tests/Support/TemporaryDirectory.h"

namespace flarebox {
namespace {

class UserDefaults : public ::testing::Test {
protected:
    UserDefaults() { defaults.setFile(file); }
    ~UserDefaults() override {
        MainQueue::shared().removeAll();
        defaults.setFile("");
    }
    Value stored(std::string_view key) {
        auto table = NSPropertyListSerialization::propertyListWithContentsOfFile(file).as<NSDictionary>();
        return table.objectForKey(key);
    }

    testing::TemporaryDirectory folder;
    std::string file = folder.path("deep/er/UserDefaults.plist");
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
};

TEST_F(UserDefaults, ReadAsThePlatformDoes) {
    struct Case {
        Value value;
        std::int64_t integer;
        double floating;
        bool boolean;
        Value text;
    };
    const Case cases[] = {
        {Value(), 0, 0, false, Value()},
        {15, 15, 15, true, "15"},
        {2.75, 2, 2.75, true, "2.75"},
        {true, 1, 1, true, "1"},
        {" 15 seconds", 15, 15, true, " 15 seconds"},
        {"-1.5x", -1, -1.5, true, "-1.5x"},
        {"abc", 0, 0, false, "abc"},
        {"YES", 0, 0, true, "YES"},
        {" -002", -2, -2, true, " -002"},
        {"000", 0, 0, false, "000"},
        {"", 0, 0, false, ""},
        {NSArray({1}), 0, 0, false, Value()},
        {NSData::dataWithBytes("1"), 0, 0, false, Value()},
    };
    for (const Case& each : cases) {
        EXPECT_TRUE(defaults.setObject(each.value, "key"));
        EXPECT_EQ(defaults.objectForKey("key"), each.value);
        EXPECT_EQ(defaults.integerForKey("key"), each.integer) << each.value.description();
        EXPECT_EQ(defaults.doubleForKey("key"), each.floating) << each.value.description();
        EXPECT_EQ(defaults.boolForKey("key"), each.boolean) << each.value.description();
        EXPECT_EQ(defaults.stringForKey("key"), each.text) << each.value.description();
    }
}

TEST_F(UserDefaults, AreWrittenAtTheNextTurnAndWhenAsked) {
    defaults.setObject(1, "one");
    defaults.setObject(2, "two");
    EXPECT_FALSE(stored("one"));
    MainQueue::shared().run();
    EXPECT_EQ(stored("one"), Value(1));
    defaults.removeObjectForKey("one");
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_FALSE(stored("one"));
    EXPECT_EQ(stored("two"), Value(2));
    // Work that the queue dropped is no reason never to write again.
    defaults.setObject(3, "three");
    MainQueue::shared().removeAll();
    defaults.setObject(4, "four");
    MainQueue::shared().run();
    EXPECT_EQ(stored("three"), Value(3));
    std::size_t entries = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path("deep/er"))) ++entries;
    EXPECT_EQ(entries, 1u) << "a temporary file was left behind";
}

TEST_F(UserDefaults, AreReadAgainFromTheFile) {
    defaults.setObject(NSDictionary({{"inner", NSArray({"a", 1.5})}}), "table");
    defaults.setFile(folder.path("other.plist"));
    EXPECT_FALSE(defaults.objectForKey("table"));
    defaults.setFile(file);
    EXPECT_EQ(defaults.objectForKey("table"), NSDictionary({{"inner", NSArray({"a", 1.5})}}));
}

TEST_F(UserDefaults, KeepCopies) {
    auto array = NSMutableArray::array();
    array.addObject(1);
    defaults.setObject(array, "array");
    array.addObject(2);
    EXPECT_EQ(defaults.objectForKey("array"), NSArray({1}));
}

TEST_F(UserDefaults, RefuseValuesWithoutChangingAnything) {
    defaults.setObject(1, "key");
    EXPECT_FALSE(defaults.setObject(Value::null(), "key"));
    EXPECT_TRUE(defaults.lastError());
    EXPECT_FALSE(defaults.setObject(NSURL::URLWithString("http://a"), "key"));
    EXPECT_EQ(defaults.objectForKey("key"), Value(1));
    EXPECT_TRUE(defaults.setObject(2, "key"));
    EXPECT_FALSE(defaults.lastError());
}

TEST_F(UserDefaults, MoveADamagedFileAside) {
    for (const char* name : {".corrupt", ".corrupt-1"}) {
        std::filesystem::create_directories(folder.path("deep/er"));
        folder.write("deep/er/UserDefaults.plist", "<plist><dict><key>half");
        EXPECT_FALSE(defaults.setFile(file));
        ASSERT_TRUE(defaults.lastError());
        EXPECT_NE(defaults.lastError()->localizedDescription().find("UserDefaults.plist:1: "), std::string::npos);
        EXPECT_EQ(folder.read("deep/er/UserDefaults.plist" + std::string(name)), "<plist><dict><key>half");
        EXPECT_FALSE(folder.has("deep/er/UserDefaults.plist"));
    }
    EXPECT_EQ(defaults.file(), file);
    defaults.setObject(7, "key");
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(stored("key"), Value(7));

    folder.write("list.plist", "<plist><array/></plist>");
    EXPECT_FALSE(defaults.setFile(folder.path("list.plist")));
    EXPECT_TRUE(folder.has("list.plist.corrupt"));
}

TEST_F(UserDefaults, LiveInMemoryWhereNoFileCanBeUsed) {
    EXPECT_FALSE(defaults.setFile(folder.path()));  // a folder: neither read nor moved away
    EXPECT_TRUE(defaults.lastError());
    EXPECT_EQ(defaults.file(), "");
    defaults.setObject("kept", "key");
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(defaults.stringForKey("key"), "kept");
    EXPECT_TRUE(std::filesystem::is_directory(folder.path()));

    folder.write("plain", "");
    EXPECT_TRUE(defaults.setFile(folder.path("plain/below.plist")));
    defaults.setObject("kept", "key");
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_TRUE(defaults.lastError());
    EXPECT_EQ(defaults.stringForKey("key"), "kept");
}

TEST_F(UserDefaults, AreReadAndChangedOnManyThreads) {
    std::atomic<bool> consistent = true;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            for (int count = 1; count <= 50; ++count) {
                std::string key = "key" + std::to_string(thread);
                defaults.setObject(count, key);
                if (defaults.integerForKey(key) != count) consistent = false;
                defaults.objectForKey("key0");
            }
        });
    }
    while (MainQueue::shared().run()) {
    }
    for (auto& thread : threads) thread.join();
    MainQueue::shared().run();
    EXPECT_TRUE(consistent);
    EXPECT_EQ(stored("key3"), Value(50));
}

class Bundle : public ::testing::Test {
protected:
    ~Bundle() override { NSBundle::setPreferredLanguages({}); }
    testing::TemporaryDirectory folder;
};

TEST_F(Bundle, HasItsInformationTable) {
    folder.write("Info.plist",
                 "<plist><dict><key>API_URL</key><string>http://one</string>"
                 "<key>CFBundleIdentifier</key><string>game.found</string></dict></plist>");
    auto bundle = NSBundle::bundleWithPath(folder.path());
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle, NSBundle::bundleWithPath(folder.path("x/..")));
    EXPECT_EQ(bundle->objectForInfoDictionaryKey("API_URL"), Value("http://one"));
    EXPECT_FALSE(bundle->objectForInfoDictionaryKey("none"));
    EXPECT_EQ(NSBundle::bundleWithIdentifier("game.found"), bundle);
    EXPECT_FALSE(NSBundle::bundleWithIdentifier("game.lost"));
    EXPECT_FALSE(NSBundle::bundleWithIdentifier(""));

    folder.write("Info.plist", "<plist><dict/></plist>");
    EXPECT_EQ(bundle->objectForInfoDictionaryKey("API_URL"), Value("http://one")) << "read once";
    bundle->setInfoDictionaryValue("API_URL", "http://two");
    EXPECT_EQ(bundle->infoDictionary().objectForKey("API_URL"), Value("http://two"));
    bundle->setInfoDictionaryValue("API_URL", {});
    EXPECT_FALSE(bundle->objectForInfoDictionaryKey("API_URL"));
    folder.write("Info.plist", "<plist><dict><key>API_URL</key><string>http://three</string></dict></plist>");
    bundle->resetInfoDictionaryValue("API_URL");
    bundle->resetInfoDictionaryValue("none");
    EXPECT_EQ(bundle->objectForInfoDictionaryKey("API_URL"), Value("http://three"));
}

TEST_F(Bundle, WithoutASoundTableIsEmptyAndSaysWhy) {
    struct Case {
        const char* name;
        const char* contents;
        bool isError;
    };
    const Case cases[] = {{"missing", nullptr, false},
                          {"damaged", "<plist><dict><key>", true},
                          {"list", "<plist><array/></plist>", true},
                          {"fine", "<plist><dict/></plist>", false}};
    for (const Case& each : cases) {
        std::filesystem::create_directory(folder.path(each.name));
        if (each.contents) folder.write(std::string(each.name) + "/Info.plist", each.contents);
        auto bundle = NSBundle::bundleWithPath(folder.path(each.name));
        Ref<NSError> error;
        NSDictionary table = bundle->infoDictionary(&error);
        EXPECT_TRUE(table) << each.name;
        EXPECT_EQ(table.count(), 0u) << each.name;
        EXPECT_EQ(bool(error), each.isError) << each.name;
        EXPECT_EQ(bundle->bundleIdentifier(), "");
    }
    EXPECT_FALSE(NSBundle::bundleWithPath(folder.path("nowhere")));
}

TEST_F(Bundle, CanBeRegisteredAndChosenAsMain) {
    auto kit = NSBundle::registerBundle("kit.bundle", folder.path("not/yet/there"));
    EXPECT_EQ(NSBundle::bundleWithIdentifier("kit.bundle"), kit);
    EXPECT_EQ(kit->bundleIdentifier(), "kit.bundle");
    kit->setInfoDictionaryValue("API_URL", "http://x");
    EXPECT_EQ(kit->objectForInfoDictionaryKey("API_URL"), Value("http://x"));

    EXPECT_EQ(NSBundle::mainBundle()->bundlePath(), NSProcessInfo::executableDirectory() + "/Resources");
    NSBundle::setMainBundlePath(folder.path());
    EXPECT_EQ(NSBundle::mainBundle()->bundlePath(), std::filesystem::path(folder.path()).lexically_normal().string());
    NSBundle::setMainBundlePath("");
}

TEST_F(Bundle, FindsItsOwnFilesOnly) {
    testing::TemporaryDirectory outside;
    outside.write("secret.txt", "");
    folder.write("inside/View.xml", "");
    folder.write("inside/sub/Deep.xml", "");
    folder.write("inside/de.lproj/Localised.xml", "");
    folder.write("Above.xml", "");
    NSBundle::setPreferredLanguages({"de-AT"});
    auto bundle = NSBundle::bundleWithPath(folder.path("inside"));
    EXPECT_EQ(bundle->pathForResource("View", "xml").string(), folder.path("inside/View.xml"));
    EXPECT_EQ(bundle->pathForResource("View.xml", "").string(), folder.path("inside/View.xml"));
    EXPECT_EQ(bundle->pathForResource("sub/Deep", "xml").string(), folder.path("inside/sub/Deep.xml"));
    EXPECT_EQ(bundle->pathForResource("Localised", "xml").string(), folder.path("inside/de.lproj/Localised.xml"));
    for (std::string name : {std::string("../Above"), outside.path("secret"), std::string("None"),
                             std::string("a\0b", 3), std::string("sub/../../Above")}) {
        EXPECT_FALSE(bundle->pathForResource(name, "xml")) << name;
        EXPECT_FALSE(bundle->pathForResource(name, "txt")) << name;
    }
}

TEST_F(Bundle, BuiltInFilesStandInForThoseThatTheFolderLacks) {
    static constexpr BuiltInFile builtIn[] = {
        {"Info.plist", "<plist><dict><key>Name</key><string>built in</string></dict></plist>"},
        {"View.xml", "<view/>"},
        {"de.lproj/Localised.xml", "<german/>"},
        {"de.lproj/Localizable.strings", "\"hello\" = \"Hallo\";"},
        {"en.lproj/Localizable.strings", "\"hello\" = \"Hello\"; \"bye\" = \"Bye\";"}};
    NSBundle::setPreferredLanguages({"de"});
    auto bundle = NSBundle::registerBundle("built.in", folder.path("kit"));
    EXPECT_FALSE(bundle->objectForInfoDictionaryKey("Name"));
    bundle->setBuiltInFiles(builtIn);
    EXPECT_EQ(bundle->objectForInfoDictionaryKey("Name"), Value("built in"));
    EXPECT_EQ(bundle->builtInResource("View", "xml"), "<view/>");
    EXPECT_EQ(bundle->builtInResource("Localised.xml", ""), "<german/>");
    EXPECT_FALSE(bundle->builtInResource("None", "xml"));
    EXPECT_FALSE(bundle->pathForResource("View", "xml"));
    EXPECT_EQ(bundle->localizedStringForKey("hello"), "Hallo");
    EXPECT_EQ(bundle->localizedStringForKey("bye"), "Bye");

    folder.write("kit/Info.plist", "<plist><dict><key>Name</key><string>the host's</string></dict></plist>");
    folder.write("kit/de.lproj/Localizable.strings", "\"hello\" = \"Servus\";");
    bundle->setBuiltInFiles(builtIn);
    EXPECT_EQ(bundle->objectForInfoDictionaryKey("Name"), Value("the host's"));
    EXPECT_EQ(bundle->localizedStringForKey("hello"), "Servus");
    EXPECT_EQ(bundle->localizedStringForKey("bye"), "Bye");
}

TEST_F(Bundle, SpeaksTheUsersLanguage) {
    folder.write("de.lproj/Localizable.strings", "\"hello\" = \"Hallo\";");
    folder.write("de-AT.lproj/Localizable.strings", "\"bye\" = \"Servus\";");
    folder.write("pt_BR.lproj/Localizable.strings", "\"hello\" = \"Oi\";");
    folder.write("en.lproj/Localizable.strings", "\"hello\" = \"Hello\"; \"only\" = \"English\";");
    folder.write("en.lproj/Other.strings", "\"hello\" = \"Other\";");
    auto bundle = NSBundle::bundleWithPath(folder.path());
    struct Case {
        std::vector<std::string> languages;
        const char *key, *value, *table, *expected;
    };
    const Case cases[] = {
        {{"de-AT"}, "hello", "", "", "Hallo"},  {{"de_AT"}, "bye", "", "", "Servus"},
        {{"de"}, "bye", "", "", "bye"},         {{"de"}, "only", "", "", "English"},
        {{"pt-BR"}, "hello", "", "", "Oi"},     {{"fr", "de"}, "hello", "", "", "Hallo"},
        {{"../de"}, "hello", "", "", "Hello"},  {{"fr"}, "hello", "", "Other", "Other"},
        {{"de"}, "lost", "found", "", "found"}, {{"de"}, "lost", "", "", "lost"},
        {{"de"}, "hello", "", "../x", "hello"}, {{"de"}, "", "", "", ""},
    };
    for (const Case& each : cases) {
        NSBundle::setPreferredLanguages(each.languages);
        EXPECT_EQ(bundle->localizedStringForKey(each.key, each.value, each.table), each.expected) << each.key;
    }
}

}  // namespace
}  // namespace flarebox
